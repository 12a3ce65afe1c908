// The real program with its companion in a session of KWin: seen and used as by a user.

#include "ProgramInPlasma.h"

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
        std::tuple(CompositorClient::qt, Drop{"AtTheLeftEdge", {0, 200}, nullptr, std::nullopt, 0}),
        std::tuple(CompositorClient::xwayland, Drop{"InTheUpperRightCorner", {1919, 0}}),
        std::tuple(CompositorClient::qt,
                   Drop{"InTheLowerRightCorner", {1919, 1079}, nullptr, std::nullopt, 3}),
        std::tuple(CompositorClient::gtk4,
                   Drop{"InTheUpperLeftCorner", {0, 0}, nullptr, std::nullopt, 0}),
        std::tuple(CompositorClient::qt,
                   Drop{"InTheLowerLeftCorner", {0, 1079}, nullptr, std::nullopt, 0}),
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
    EXPECT_FALSE(isHighlighted(zone(dropped.zone > 0 ? 0 : 1)));
    drop();
    if (dropped.more)
        session.input().releaseKey(*dropped.more);
    EXPECT_TRUE(endsIn(title, wanted)) << session.describe();
    EXPECT_FALSE(session.isWindow(title, QStringLiteral("tile")));
    EXPECT_FALSE(session.isWindow(title, QStringLiteral("maximizeMode")));
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(wanted); }));
    if (dropped.at == inTheMiddle && !dropped.more)
        return;
    // One that KWin has tiled gets its former size as it is dragged away.
    session.grab(title);
    session.input().glide(inTheMiddle);
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    EXPECT_EQ(session.frame(title).size(), wanted.size());
}

TEST_F(ProgramInPlasma, EndsInTheZoneAtAnEdgeHoweverLateAClientOfTheZonesSizeFollows) {
    const QRect wanted = zone(0);
    const QString title = session.startClient(CompositorClient::qt, start);
    session.place(title, wanted);
    dragToFirstZone(title);
    const auto client = pid_t(session.ask(QStringLiteral("find('%1').pid").arg(title)).toInt());
    ASSERT_GT(client, 0);
    ASSERT_EQ(::kill(client, SIGSTOP), 0);
    session.input().glide({0, 200});
    session.input().glide({0, 197}, 3);
    drop();
    // KWin tiles it at the edge first. After that time nobody looks after the window any longer.
    const auto isThere = [&] { return session.frame(title) == wanted; };
    EXPECT_TRUE(waitUntil(isThere) && staysTrue(isThere, std::chrono::milliseconds(1000)))
        << session.describe();
    EXPECT_EQ(::kill(client, SIGCONT), 0);
    EXPECT_TRUE(waitUntil([&] { return staysTrue(isThere, std::chrono::milliseconds(500)); }))
        << session.describe();
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

TEST_F(ProgramInPlasma, ShowsItsZonesAboveABarThatTakesNoRoomAway) {
    const QRect bar(0, 980, 960, 100);
    ASSERT_TRUE(session.isWindow(session.startBar(bar), QStringLiteral("dock")));
    const QColor green(0x20, 0x80, 0x40);
    const QPoint onBar = bar.center();
    const QString title = session.startClient(CompositorClient::qt, start);
    session.place(title, {200, 700, 900, 380});
    ASSERT_TRUE(waitUntil([&] {
        return session.pixel({onBar.x(), bar.top() - 10}) != Qt::black &&
               session.pixel(onBar) == green;
    })) << "it is above other windows";
    session.place(title, start);
    ASSERT_TRUE(bar.contains(zone(0).left() + 5, zone(0).bottom() - 60));
    dragToFirstZone(title);
    EXPECT_NE(session.pixel(onBar), green);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    EXPECT_TRUE(waitUntil([&] { return session.pixel(onBar) == green; }));
}

TEST_F(ProgramInPlasma, FollowsABarAndAWindowThatWereThereBeforeIt) {
    program->signal(SIGTERM);
    ASSERT_TRUE(program->waitForEnd());
    ASSERT_TRUE(waitUntil([&] { return !session.hasScript(companion); })) << session.describe();
    const int width = session.displays().front().width();
    const QString bar = session.startBar({0, 0, width, 30});
    const auto growTo = [&](int height) {
        session.keepFree(bar, height);
        session.place(bar, {0, 0, width, height});
    };
    // KWin 6.7 gives bars of the X server no room.
    const auto firstZone = [&] {
        const QRect free = session.frameOf(
            QStringLiteral("({frameGeometry: workspace.clientArea(KWin.MaximizeArea, find('%1'))})")
                .arg(bar));
        EXPECT_TRUE(free.top() == session.frame(bar).bottom() + 1 || session.generation() > 5);
        return frameOf(ZoneLayout::bentoBox().zones[0], free);
    };
    growTo(40);
    const QString title = session.startClient(CompositorClient::qt, start);
    program = &session.start(QStringLiteral(TILEWRIGHT_PROGRAM));
    ASSERT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
    session.tell(QStringLiteral("0"));
    dragTo(firstZone(), title);
    drop();
    EXPECT_TRUE(endsIn(title, firstZone())) << session.describe();

    // Not by a drag: what is free is told at the beginning of each.
    growTo(100);
    session.input().move(start.center());
    openPanel();
    session.input().move(firstZoneInPanel());
    session.input().click();
    EXPECT_TRUE(endsIn(title, firstZone())) << session.describe();
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
    // Of a key that is up nothing would be snapped, however soon it were told.
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    const QRect dropped = session.frame(title);
    // An answer is too late after a second.
    EXPECT_TRUE(staysTrue([&] { return session.frame(title) == dropped; },
                          std::chrono::milliseconds(1500)));
    program->signal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)) && !isHighlighted(zone(1)); }));
    EXPECT_TRUE(
        staysTrue([&] { return session.frame(title) == dropped; }, std::chrono::milliseconds(500)));
    session.input().releaseKey(KernelKey::control);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

} // namespace tilewright::testing
