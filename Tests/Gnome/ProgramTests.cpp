// The real program with its companion in a session of GNOME Shell: seen and used as by a user.

#include "GnomeSession.h"

#include <Waiting.h>
#include <WindowManager/ZoneLayout.h>

#include <QDir>
#include <QFile>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

const QString panelTitle = QStringLiteral("Tilewright");

bool isAmber(const QColor& colour) {
    return std::abs(colour.red() - 209) < 12 && std::abs(colour.green() - 140) < 12 &&
           std::abs(colour.blue() - 51) < 12;
}

struct ProgramInGnome : ::testing::Test {
    static constexpr QRect start{500, 300, 640, 420};

    explicit ProgramInGnome(const QString& path = QStringLiteral(TILEWRIGHT_PROGRAM))
        : session(path)
        , program(session.start(path)) {
        item = session.waitForItem();
    }
    /// The frame of a zone of the layout that every display begins with.
    [[nodiscard]] QRect zone(std::size_t index) {
        const Zone zone = ZoneLayout::bentoBox().zones[index];
        const int bar = session.ask(QStringLiteral("Main.panel.height")).toInt();
        const auto edge = [](double part, int whole) { return int(std::lround(part * whole)); };
        return {QPoint(edge(zone.x, 1920), bar + edge(zone.y, 1080 - bar)),
                QPoint(edge(zone.x + zone.width, 1920) - 1,
                       bar + edge(zone.y + zone.height, 1080 - bar) - 1)};
    }
    /// Whether the overlay highlights that zone, by its border at the foot of the left edge.
    [[nodiscard]] bool isHighlighted(const QRect& zone) {
        return isAmber(session.pixel({zone.left() + 5, zone.bottom() - 60}));
    }
    void dragToFirstZone(const QString& title) {
        session.grab(title);
        session.input().glide(zone(0).center());
        session.input().pressKey(KernelKey::control);
        // The zones show at the first motion with the key held.
        session.input().glide(zone(0).center() + QPoint(6, 0), 2);
        ASSERT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
    }
    void drop() {
        session.input().release();
        EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
        session.input().releaseKey(KernelKey::control);
    }
    void clickItem() {
        session.input().move(item.center());
        session.input().click();
    }
    [[nodiscard]] bool isPanelOpen() { return !session.frame(panelTitle).isEmpty(); }
    /// What the shell says of the panel's window.
    [[nodiscard]] bool panelIs(const QString& property) {
        return session
            .ask(QStringLiteral("global.get_window_actors().map(a => a.meta_window)"
                                ".some(w => w.get_title() === 'Tilewright' && w.%1)")
                     .arg(property))
            .toBool();
    }

    GnomeSession session;
    Subprocess& program;
    QRect item;
};

struct ProgramDrag : ProgramInGnome, ::testing::WithParamInterface<GnomeClient> {};

INSTANTIATE_TEST_SUITE_P(Of, ProgramDrag,
                         ::testing::Values(GnomeClient::qt, GnomeClient::gtk4,
                                           GnomeClient::xwayland),
                         [](const auto& client) { return std::string(name(client.param)); });

TEST_P(ProgramDrag, WithControlShowsTheZonesAndEndsInTheOneUnderThePointer) {
    const QString title = session.startClient(GetParam(), start);
    dragToFirstZone(title);
    session.input().glide(zone(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); }));
    EXPECT_FALSE(isHighlighted(zone(0)));
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(1); })) << session.describe();
    EXPECT_FALSE(isHighlighted(zone(1)));
}

/// A program whose file can be replaced.
struct UpgradedProgram : ProgramInGnome {
    UpgradedProgram()
        : ProgramInGnome(copyOfTheProgram()) {}
    ~UpgradedProgram() override { QFile::remove(path()); }

    [[nodiscard]] static QString path() {
        return QStringLiteral("%1/tilewright-%2").arg(QDir::tempPath()).arg(::getpid());
    }
    static QString copyOfTheProgram() {
        QFile::remove(path());
        EXPECT_TRUE(QFile::copy(QStringLiteral(TILEWRIGHT_PROGRAM), path()));
        return path();
    }
};

} // namespace

TEST_F(ProgramInGnome, TakesNoPartInADragThatEscapeCancelsOrThatHasNoControl) {
    const QString title = session.startClient(GnomeClient::qt, start);
    dragToFirstZone(title);
    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == start; })) << session.describe();

    session.grab(title);
    session.input().glide({700, 700});
    EXPECT_FALSE(isHighlighted(zone(0)));
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    EXPECT_EQ(session.frame(title).size(), start.size());
}

TEST_F(ProgramInGnome, LeavesNothingWhenItIsKilledInMidDrag) {
    const QString title = session.startClient(GnomeClient::qt, start);
    dragToFirstZone(title);
    program.signal(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_TRUE(session.item().isEmpty());
    drop();
    EXPECT_EQ(session.frame(title).size(), start.size());
}

TEST_F(ProgramInGnome, DoesNotHoldUpADragWhileItIsStopped) {
    const QString title = session.startClient(GnomeClient::qt, start);
    dragToFirstZone(title);
    program.signal(SIGSTOP);
    session.input().glide({1300, 700}, 20);
    EXPECT_TRUE(waitUntil([&] { return session.frame(title).contains(1300, 710); }));
    drop();
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    program.signal(SIGCONT);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); })) << session.describe();
}

TEST_F(ProgramInGnome, OpensItsPanelBelowTheItemWithTheFocusAndClosesItInEveryWay) {
    clickItem();
    ASSERT_TRUE(waitUntil([&] { return panelIs(QStringLiteral("has_focus()")); }))
        << session.describe();
    EXPECT_TRUE(panelIs(QStringLiteral("is_above()")));
    EXPECT_TRUE(panelIs(QStringLiteral("is_on_all_workspaces()")));
    EXPECT_TRUE(panelIs(QStringLiteral("skip_taskbar")));
    const QRect frame = session.frame(panelTitle);
    // The shadow aside, which is at most as wide as the panel is from the screen's edge.
    constexpr int shadow = 60;
    EXPECT_GT(frame.top(), item.bottom() - shadow);
    EXPECT_LT(frame.top(), item.bottom() + shadow);
    EXPECT_LT(frame.right(), 1920 + shadow);
    EXPECT_GT(frame.right(), item.left());

    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "Escape";

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return panelIs(QStringLiteral("has_focus()")); }));
    // On nothing: no window gets the focus by it.
    session.input().move({300, 900});
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "a press outside";

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return panelIs(QStringLiteral("has_focus()")); }));
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "the item";
    EXPECT_TRUE(staysTrue([&] { return !isPanelOpen(); }, std::chrono::milliseconds(300)));

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return panelIs(QStringLiteral("has_focus()")); }));
    session.tell(QStringLiteral("Main.overview.show()"));
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "the overview";
}

TEST_F(ProgramInGnome, OpensItsPanelBelowThePointerAtASecondStart) {
    constexpr QPoint pointer(600, 500);
    session.input().move(pointer);
    Subprocess& second = session.start(QStringLiteral(TILEWRIGHT_PROGRAM));
    EXPECT_TRUE(second.waitForEnd());
    EXPECT_EQ(second.exitCode(), 0);
    ASSERT_TRUE(waitUntil([&] { return panelIs(QStringLiteral("has_focus()")); }))
        << session.describe();
    const QRect frame = session.frame(panelTitle);
    EXPECT_NEAR(frame.center().x(), pointer.x(), 1);
    // Its shadow begins above it.
    constexpr int shadow = 60;
    EXPECT_GT(frame.top(), pointer.y() - shadow);
    EXPECT_LT(frame.top(), pointer.y() + shadow);
}

TEST_F(ProgramInGnome, BringsItsSettingsToTheFrontAgainWhenTheyAreAskedForAgain) {
    const QString settings = QStringLiteral("Tilewright Settings");
    const auto isInFront = [&] {
        return session.ask(QStringLiteral("global.display.focus_window?.get_title()")).toString() ==
               settings;
    };
    const auto askFor = [&] {
        clickItem();
        EXPECT_TRUE(waitUntil([&] { return panelIs(QStringLiteral("has_focus()")); }));
        // The word in the lower left corner of the panel.
        session.input().move(session.frame(panelTitle).bottomLeft() + QPoint(60, -45));
        session.input().click();
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        EXPECT_TRUE(waitUntil(isInFront)) << session.describe();
    };
    askFor();
    static_cast<void>(session.startClient(GnomeClient::gtk4, start));
    ASSERT_TRUE(waitUntil([&] { return !isInFront(); }));
    askFor();
}

TEST_F(ProgramInGnome, ShowsNothingBehindTheLockAndGoesOnAfterIt) {
    const QString title = session.startClient(GnomeClient::qt, start);
    dragToFirstZone(title);
    session.tell(QStringLiteral("Main.sessionMode.pushMode('unlock-dialog')"));
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_TRUE(session.item().isEmpty());
    drop();
    session.tell(QStringLiteral("Main.sessionMode.popMode('unlock-dialog')"));
    static_cast<void>(session.waitForItem());
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); })) << session.describe();
}

TEST_F(UpgradedProgram, IsStillBelievedWhenItsFileHasBeenReplacedBelowIt) {
    copyOfTheProgram();
    session.setCompanionEnabled(false);
    EXPECT_TRUE(session.item().isEmpty());
    session.setCompanionEnabled(true);
    static_cast<void>(session.waitForItem());
    const QString title = session.startClient(GnomeClient::qt, start);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); })) << session.describe();
}

} // namespace tilewright::testing
