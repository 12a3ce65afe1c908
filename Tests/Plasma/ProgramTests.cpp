// The real program with its companion in a session of KWin: seen and used as by a user.

#include "ProgramInPlasma.h"

#include <QJsonArray>
#include <csignal>
#include <ostream>

namespace tilewright::testing {
namespace {

const QString companion = QStringLiteral("tilewright");

/// What KWin does to a window before it is dragged, as a script says it.
constexpr const char* maximized = "active().setMaximize(true, true)";
constexpr const char* tiled = "workspace.slotWindowQuickTileRight()";

/// Where, and how, a window is dropped: what KWin would do with it there is another thing.
struct Drop {
    const char* name;
    QPoint at;
    const char* before = nullptr;
    std::optional<KernelKey> more = std::nullopt;
    /// Which zone lies there.
    std::size_t zone = 1;

    friend std::ostream& operator<<(std::ostream& out, const Drop& drop) {
        return out << drop.name;
    }
};

struct ProgramDrag : ProgramInPlasma,
                     ::testing::WithParamInterface<std::tuple<CompositorClient, Drop>> {};

constexpr QPoint inTheMiddle(1500, 300);

INSTANTIATE_TEST_SUITE_P(
    Of, ProgramDrag,
    ::testing::Values(
        std::tuple(CompositorClient::qt, Drop{"InTheMiddle", inTheMiddle}),
        std::tuple(CompositorClient::gtk4, Drop{"InTheMiddle", inTheMiddle}),
        std::tuple(CompositorClient::xwayland, Drop{"InTheMiddle", inTheMiddle}),
        std::tuple(CompositorClient::qt, Drop{"WhenItWasMaximized", inTheMiddle, maximized}),
        std::tuple(CompositorClient::gtk4, Drop{"WhenItWasMaximized", inTheMiddle, maximized}),
        std::tuple(CompositorClient::xwayland, Drop{"WhenItWasMaximized", inTheMiddle, maximized}),
        std::tuple(CompositorClient::qt, Drop{"WhenItWasTiled", inTheMiddle, tiled}),
        std::tuple(CompositorClient::gtk4, Drop{"WhenItWasTiled", inTheMiddle, tiled}),
        std::tuple(CompositorClient::xwayland, Drop{"WhenItWasTiled", inTheMiddle, tiled}),
        std::tuple(CompositorClient::qt, Drop{"AtTheUpperEdge", {1500, 0}}),
        std::tuple(CompositorClient::gtk4, Drop{"AtTheRightEdge", {1919, 200}}),
        std::tuple(CompositorClient::xwayland, Drop{"InTheUpperRightCorner", {1919, 0}}),
        std::tuple(CompositorClient::qt,
                   Drop{"InTheLowerRightCorner", {1919, 1079}, nullptr, std::nullopt, 3}),
        std::tuple(CompositorClient::gtk4,
                   Drop{"WithShift", inTheMiddle, nullptr, KernelKey::shift})),
    [](const auto& parameter) {
        return std::string(name(std::get<CompositorClient>(parameter.param))) +
               std::get<Drop>(parameter.param).name;
    });

TEST_P(ProgramDrag, WithControlShowsTheZonesAndEndsInTheOneUnderThePointer) {
    const auto& [client, dropped] = GetParam();
    const QString title = session.startClient(client, start);
    if (dropped.before) {
        session.tell(QString::fromLatin1(dropped.before));
        ASSERT_TRUE(waitUntil([&] { return session.frame(title).height() == 1080; }));
    }
    dragToFirstZone(title);
    if (dropped.more)
        session.input().pressKey(*dropped.more);
    session.input().glide(dropped.at);
    // KWin wants a pointer at the edge to go on for a moment.
    session.input().glide(dropped.at - QPoint(0, dropped.at.y() > 0 ? -3 : 0), 3);
    const QRect wanted = zone(dropped.zone);
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(wanted); }));
    EXPECT_FALSE(isHighlighted(zone(0)));
    drop();
    if (dropped.more)
        session.input().releaseKey(*dropped.more);
    EXPECT_TRUE(endsIn(title, wanted)) << session.describe();
    EXPECT_FALSE(session.isWindow(title, QStringLiteral("tile")));
    EXPECT_FALSE(session.isWindow(title, QStringLiteral("maximizeMode")));
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(wanted); }));
}

TEST_F(ProgramInPlasma, ShowsItsZonesAboveAFullScreenWindowAndLeavesThatAlone) {
    const QString whole = session.startClient(CompositorClient::gtk4, start);
    session.tell(QStringLiteral("find('%1').fullScreen = true").arg(whole));
    const QRect display = session.displays().front();
    ASSERT_TRUE(waitUntil([&] { return session.frame(whole) == display; }));
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    EXPECT_TRUE(session.isWindow(whole, QStringLiteral("fullScreen")));
    EXPECT_EQ(session.frame(whole), display);
}

TEST_F(ProgramInPlasma, FillsAZoneWithATerminalAsFarAsItsCellsGo) {
    expectToFillAZoneWithATerminal(start);
}

TEST_F(ProgramInPlasma, ShowsItsZonesAndTakesThemAwayWithNoneOfKWinsEffects) {
    const QString title = session.startClient(CompositorClient::qt, start);
    const QPoint at = zone(3).center();
    const QColor ground = session.pixel(at);
    const auto firstAfter = [&](const QColor& before) {
        QColor colour;
        EXPECT_TRUE(waitUntil([&] {
            colour = session.pixel(at);
            return colour != before;
        }));
        return colour;
    };
    // The overlay is made when it is needed for the first time, and stays, unseen, from then on.
    dragToFirstZone(title);
    drop();
    ASSERT_TRUE(waitUntil([&] { return session.pixel(at) == ground; }));

    session.grab(title);
    session.input().glide(zone(0).center());
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(0).center() + QPoint(6, 0), 3);
    const QColor first = firstAfter(ground);
    ASSERT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
    EXPECT_EQ(session.pixel(at), first);
    drop();
    EXPECT_EQ(firstAfter(first), ground);
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
                                           Modifier{"command", KernelKey::super}),
                         [](const auto& modifier) { return std::string(modifier.param.name); });

TEST_P(ProgramWithModifier, SnapsWithThatKeyAndNoOther) {
    /// Not the fixture itself, which is to be told the modifier.
    struct Bench : ProgramInPlasma {
        using ProgramInPlasma::ProgramInPlasma;
        void TestBody() override {}
    } bench(GetParam().name);
    const QString title = bench.session.startClient(CompositorClient::qt, Bench::start);
    bench.dragToFirstZone(title, GetParam().key);
    bench.drop(GetParam().key);
    EXPECT_TRUE(bench.endsIn(title, bench.zone(0))) << bench.session.describe();

    bench.session.grab(title);
    bench.session.input().pressKey(KernelKey::control);
    bench.session.input().glide(bench.zone(1).center());
    bench.drop();
    EXPECT_FALSE(bench.isHighlighted(bench.zone(1)));
    EXPECT_NE(bench.session.frame(title), bench.zone(1));
}

} // namespace

TEST_F(ProgramInPlasma, TakesNoPartInADragThatEscapeCancelsOrThatHasNoControl) {
    expectNoPartAfterEscapeAndWithoutControl(session.startClient(CompositorClient::qt, start));
}

TEST_F(ProgramInPlasma, TakesNoPartInAMoveOrAResizeByTheKeyboard) {
    const QString title = session.startClient(CompositorClient::qt, start);
    const auto isAskedForZones = [&] {
        session.input().pressKey(KernelKey::control);
        session.input().glide(zone(1).center());
        const bool shows =
            !staysTrue([&] { return !isHighlighted(zone(1)); }, std::chrono::milliseconds(500));
        session.input().releaseKey(KernelKey::control);
        session.input().tap(KernelKey::enter);
        return shows;
    };
    session.tell(QStringLiteral("workspace.slotWindowMove()"));
    ASSERT_TRUE(waitUntil([&] { return session.isDragging(); }));
    EXPECT_FALSE(isAskedForZones());
    ASSERT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    EXPECT_EQ(session.frame(title).size(), start.size());
    EXPECT_TRUE(session.frame(title).contains(zone(1).center()));

    session.place(title, start);
    session.tell(QStringLiteral("workspace.slotWindowResize()"));
    ASSERT_TRUE(waitUntil([&] { return session.isWindow(title, QStringLiteral("resize")); }));
    EXPECT_FALSE(isAskedForZones());
    ASSERT_TRUE(waitUntil([&] { return !session.isWindow(title, QStringLiteral("resize")); }));
    EXPECT_EQ(session.frame(title).topLeft(), start.topLeft());

    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

TEST_F(ProgramInPlasma, LeavesNothingWhenItIsKilledInMidDrag) {
    const QString title = session.startClient(CompositorClient::qt, start);
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
    const QString title = session.startClient(CompositorClient::qt, start);
    dragWhileItIsStopped(title, *program);
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

TEST_F(ProgramInPlasma, ShowsItsPanelNowhereElseBeforeItIsBelowThePointer) {
    constexpr QPoint pointer(600, 300);
    session.input().move(pointer);
    // Where it is a way to the bus and back after it has come.
    const QString watch = session.begin(
        QStringLiteral("(workspace.windowAdded || workspace.clientAdded).connect(window => {"
                       " if (String(window.caption) === '%1')"
                       "  callDBus('org.freedesktop.DBus', '/', 'org.freedesktop.DBus', 'GetId',"
                       "   () => answer([window.frameGeometry.x, window.frameGeometry.y]));"
                       "})")
            .arg(panelTitle));
    startAgain();
    const QJsonArray first = session.answerTo(watch).toArray();
    expectPanelBelow(pointer);
    const QPoint place = session.frame(panelTitle).topLeft();
    EXPECT_EQ(first, (QJsonArray{place.x(), place.y()}));
}

TEST_F(ProgramInPlasma, OpensItsPanelBelowThePointerAtASecondStartAndClosesItInEveryWay) {
    constexpr QPoint pointer(600, 300);
    const auto open = [&] {
        session.input().move(pointer);
        startAgain();
        EXPECT_TRUE(waitUntil([&] {
            // A new window is active before it is dressed as the panel.
            return session.isWindow(panelTitle, QStringLiteral("active && w.keepAbove"));
        })) << session.describe();
    };
    const auto isOpen = [&] { return !session.frame(panelTitle).isEmpty(); };
    const QString other = session.startClient(CompositorClient::qt, {1200, 500, 400, 300});
    open();
    for (const char* property : {"keepAbove", "onAllDesktops", "skipTaskbar", "skipPager"})
        EXPECT_TRUE(session.isWindow(panelTitle, QString::fromLatin1(property))) << property;
    expectPanelBelow(pointer);

    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); })) << "Escape";
    open();
    session.input().move(session.frame(other).center());
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); })) << "another window";

    session.place(other, {0, 0, 1900, 1000});
    open();
    session.input().move(QPoint(session.frame(panelTitle).left() + 4, 400));
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); })) << "another window, through the shadow";
}

} // namespace tilewright::testing
