// The real program with its companion in a session of KWin: seen and used as by a user.

#include "PlasmaSession.h"

#include <Waiting.h>
#include <WindowManager/ZoneLayout.h>

#include <DesktopSession.h>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>
#include <ostream>

namespace tilewright::testing {
namespace {

const QString panelTitle = QStringLiteral("Tilewright");
const QString companion = QStringLiteral("tilewright");

bool isAmber(const QColor& colour) {
    return std::abs(colour.red() - 209) < 12 && std::abs(colour.green() - 140) < 12 &&
           std::abs(colour.blue() - 51) < 12;
}

struct ProgramInPlasma : ::testing::Test {
    static constexpr QRect start{600, 300, 640, 420};

    explicit ProgramInPlasma(const char* modifier = "control") {
        writeFile(session.home() + QStringLiteral("/.config/Tilewright/Tilewright.conf"),
                  QByteArray("[General]\nsnapActivationModifier=") + modifier + "\n");
        program = &startProgram();
    }

    Subprocess& startProgram() {
        Subprocess& started = session.start(QStringLiteral(TILEWRIGHT_PROGRAM));
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It greets once it has heard of the effects, which KWin tells one after the other.
        session.tell(QStringLiteral("0"));
        return started;
    }
    /// The frame of a zone of the layout that every display begins with.
    [[nodiscard]] static QRect zone(std::size_t index) {
        const Zone zone = ZoneLayout::bentoBox().zones[index];
        const auto edge = [](double part, int whole) { return int(std::lround(part * whole)); };
        return {QPoint(edge(zone.x, 1920), edge(zone.y, 1080)),
                QPoint(edge(zone.x + zone.width, 1920) - 1, edge(zone.y + zone.height, 1080) - 1)};
    }
    /// Whether the overlay highlights that zone, by its border at the foot of the left edge.
    [[nodiscard]] bool isHighlighted(const QRect& zone) {
        return isAmber(session.picture().pixelColor(zone.left() + 5, zone.bottom() - 60));
    }
    void dragToFirstZone(const QString& title, KernelKey key = KernelKey::control) {
        session.grab(title);
        session.input().glide(zone(0).center());
        session.input().pressKey(key);
        // The keys are told with the next motions.
        session.input().glide(zone(0).center() + QPoint(6, 0), 3);
        ASSERT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
    }
    void drop(KernelKey key = KernelKey::control) {
        session.input().release();
        EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
        session.input().releaseKey(key);
    }
    /// Whether a window gets a frame, and keeps it.
    [[nodiscard]] bool endsIn(const QString& title, const QRect& frame) {
        return waitUntil([&] { return session.frame(title) == frame; }) &&
               staysTrue([&] { return session.frame(title) == frame; },
                         std::chrono::milliseconds(400));
    }

    PlasmaSession session;
    Subprocess* program;
};

/// Where, and how, a window is dropped: what KWin would do with it there is another thing.
struct Drop {
    const char* name;
    QPoint at;
    bool isMaximizedBefore = false;
    std::optional<KernelKey> more = std::nullopt;

    friend std::ostream& operator<<(std::ostream& out, const Drop& drop) {
        return out << drop.name;
    }
};

struct ProgramDrag : ProgramInPlasma,
                     ::testing::WithParamInterface<std::tuple<PlasmaClient, Drop>> {};

constexpr QPoint inTheMiddle(1500, 300);

INSTANTIATE_TEST_SUITE_P(
    Of, ProgramDrag,
    ::testing::Values(
        std::tuple(PlasmaClient::qt, Drop{"InTheMiddle", inTheMiddle}),
        std::tuple(PlasmaClient::gtk4, Drop{"InTheMiddle", inTheMiddle}),
        std::tuple(PlasmaClient::xwayland, Drop{"InTheMiddle", inTheMiddle}),
        std::tuple(PlasmaClient::qt, Drop{"WhenItWasMaximized", inTheMiddle, true}),
        std::tuple(PlasmaClient::gtk4, Drop{"WhenItWasMaximized", inTheMiddle, true}),
        std::tuple(PlasmaClient::xwayland, Drop{"WhenItWasMaximized", inTheMiddle, true}),
        std::tuple(PlasmaClient::qt, Drop{"AtTheUpperEdge", {1500, 0}}),
        std::tuple(PlasmaClient::gtk4, Drop{"AtTheRightEdge", {1919, 200}}),
        std::tuple(PlasmaClient::xwayland, Drop{"InTheUpperRightCorner", {1919, 0}}),
        std::tuple(PlasmaClient::gtk4, Drop{"WithShift", inTheMiddle, false, KernelKey::shift})),
    [](const auto& parameter) {
        return std::string(name(std::get<PlasmaClient>(parameter.param))) +
               std::get<Drop>(parameter.param).name;
    });

TEST_P(ProgramDrag, WithControlShowsTheZonesAndEndsInTheOneUnderThePointer) {
    const auto& [client, dropped] = GetParam();
    const QString title = session.startClient(client, start);
    if (dropped.isMaximizedBefore) {
        session.tell(QStringLiteral("active().setMaximize(true, true)"));
        ASSERT_TRUE(waitUntil([&] { return session.frame(title).width() == 1920; }));
    }
    dragToFirstZone(title);
    if (dropped.more)
        session.input().pressKey(*dropped.more);
    session.input().glide(dropped.at);
    // KWin wants a pointer at the edge to go on for a moment.
    session.input().glide(dropped.at - QPoint(0, dropped.at.y() > 0 ? -3 : 0), 3);
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); }));
    EXPECT_FALSE(isHighlighted(zone(0)));
    drop();
    if (dropped.more)
        session.input().releaseKey(*dropped.more);
    EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();
    EXPECT_FALSE(isHighlighted(zone(1)));
}

/// A snap modifier, and the key that it is.
struct Modifier {
    const char* name;
    KernelKey key;

    friend std::ostream& operator<<(std::ostream& out, const Modifier& modifier) {
        return out << modifier.name;
    }
};

struct ProgramWithModifier : ::testing::TestWithParam<Modifier> {};

INSTANTIATE_TEST_SUITE_P(Of, ProgramWithModifier,
                         ::testing::Values(Modifier{"shift", KernelKey::shift},
                                           Modifier{"option", KernelKey::alt},
                                           Modifier{"command", KernelKey::meta}),
                         [](const auto& modifier) { return std::string(modifier.param.name); });

TEST_P(ProgramWithModifier, SnapsWithThatKeyAndNoOther) {
    /// Not the fixture itself, which is to be told the modifier.
    struct Bench : ProgramInPlasma {
        using ProgramInPlasma::ProgramInPlasma;
        void TestBody() override {}
    } bench(GetParam().name);
    const QString title = bench.session.startClient(PlasmaClient::qt, Bench::start);
    bench.dragToFirstZone(title, GetParam().key);
    bench.drop(GetParam().key);
    EXPECT_TRUE(bench.endsIn(title, Bench::zone(0))) << bench.session.describe();

    bench.session.grab(title);
    bench.session.input().pressKey(KernelKey::control);
    bench.session.input().glide(Bench::zone(1).center());
    bench.drop();
    EXPECT_FALSE(bench.isHighlighted(Bench::zone(1)));
    EXPECT_NE(bench.session.frame(title), Bench::zone(1));
}

} // namespace

TEST_F(ProgramInPlasma, TakesNoPartInADragThatEscapeCancelsOrThatHasNoControl) {
    const QString title = session.startClient(PlasmaClient::qt, start);
    dragToFirstZone(title);
    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    drop();
    EXPECT_TRUE(endsIn(title, start)) << session.describe();

    session.grab(title);
    session.input().glide({700, 700});
    EXPECT_FALSE(isHighlighted(zone(0)));
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    EXPECT_EQ(session.frame(title).size(), start.size());
}

TEST_F(ProgramInPlasma, LeavesNothingWhenItIsKilledInMidDrag) {
    const QString title = session.startClient(PlasmaClient::qt, start);
    dragToFirstZone(title);
    program->signal(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    drop();
    EXPECT_EQ(session.frame(title).size(), start.size());
    // What is left inside KWin goes at the next drag, which nobody answers.
    EXPECT_TRUE(session.hasScript(companion));
    session.grab(title);
    EXPECT_TRUE(waitUntil([&] { return !session.hasScript(companion); })) << session.describe();
    EXPECT_FALSE(session.hasCompanion());
    session.input().release();
}

TEST_F(ProgramInPlasma, TakesItsCompanionAlongWhenItEnds) {
    program->signal(SIGTERM);
    EXPECT_TRUE(program->waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return !session.hasScript(companion); })) << session.describe();
}

TEST_F(ProgramInPlasma, DoesNotHoldUpADragWhileItIsStoppedAndMovesNothingAfterwards) {
    const QString title = session.startClient(PlasmaClient::qt, start);
    dragToFirstZone(title);
    program->signal(SIGSTOP);
    session.input().glide({1300, 700}, 20);
    EXPECT_TRUE(waitUntil([&] { return session.frame(title).contains(1300, 710); }));
    drop();
    const QRect dropped = session.frame(title);
    // An answer is too late after a second.
    EXPECT_TRUE(staysTrue([&] { return session.frame(title) == dropped; },
                          std::chrono::milliseconds(1500)));
    program->signal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)) && !isHighlighted(zone(1)); }));
    EXPECT_TRUE(
        staysTrue([&] { return session.frame(title) == dropped; }, std::chrono::milliseconds(500)));
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

TEST_F(ProgramInPlasma, OpensItsPanelBelowThePointerAtASecondStartAndClosesItInEveryWay) {
    constexpr QPoint pointer(600, 300);
    const auto open = [&] {
        session.input().move(pointer);
        Subprocess& second = session.start(QStringLiteral(TILEWRIGHT_PROGRAM));
        EXPECT_TRUE(second.waitForEnd());
        EXPECT_EQ(second.exitCode(), 0);
        EXPECT_TRUE(waitUntil([&] {
            return session.isWindow(panelTitle, QStringLiteral("active"));
        })) << session.describe();
    };
    const auto isOpen = [&] { return !session.frame(panelTitle).isEmpty(); };
    const QString other = session.startClient(PlasmaClient::qt, {1200, 500, 400, 300});
    open();
    for (const char* property : {"keepAbove", "onAllDesktops", "skipTaskbar", "skipPager"})
        EXPECT_TRUE(session.isWindow(panelTitle, QString::fromLatin1(property))) << property;
    const QRect frame = session.frame(panelTitle);
    EXPECT_NEAR(frame.center().x(), pointer.x(), 1);
    // Its shadow begins above it.
    constexpr int shadow = 60;
    EXPECT_GT(frame.top(), pointer.y() - shadow);
    EXPECT_LT(frame.top(), pointer.y() + shadow);

    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); })) << "Escape";
    open();
    session.input().move(session.frame(other).center());
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); })) << "another window";
}

} // namespace tilewright::testing
