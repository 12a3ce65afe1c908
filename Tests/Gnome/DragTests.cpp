// Drags with the real program in a session of GNOME Shell: of every kind of window, from every
// state, with every key, dropped everywhere.

#include "ProgramInGnome.h"

namespace tilewright::testing {
namespace {

constexpr CompositorClient plainClients[] = {CompositorClient::qt, CompositorClient::gtk4,
                                             CompositorClient::xwayland};

struct ProgramDrag : ProgramInGnome, ::testing::WithParamInterface<CompositorClient> {
    /// Drags the window to the first zone and from there into the second one.
    void dragIntoSecondZone(const QString& title) {
        dragToFirstZone(title);
        session.input().glide(zone(1).center());
        EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
        EXPECT_FALSE(isHighlighted(zone(0)));
        drop();
        EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();
        EXPECT_FALSE(isHighlighted(zone(1)));
    }
};

INSTANTIATE_TEST_SUITE_P(Of, ProgramDrag, ::testing::ValuesIn(plainClients),
                         [](const auto& client) { return std::string(name(client.param)); });

TEST_P(ProgramDrag, WithControlShowsTheZonesAndEndsInTheOneUnderThePointer) {
    const QString title = session.startClient(GetParam(), start);
    dragIntoSecondZone(title);

    session.place(title, start);
    session.tell(QStringLiteral("global.display.focus_window.maximize("
                                "imports.gi.Meta.MaximizeFlags?.BOTH ?? 3)"));
    ASSERT_TRUE(waitUntil([&] { return session.frame(title) == workArea(); }));
    SCOPED_TRACE("maximized at the beginning");
    dragIntoSecondZone(title);
}

TEST_P(ProgramDrag, OfAWindowThatTheShellHasTiledEndsInTheZone) {
    const QString title = session.startClient(GetParam(), start);
    // The X server's clients get the keys a little later than their place.
    ASSERT_TRUE(waitUntil([&] { return isInFront(title); })) << session.describe();
    // From 51 on the shell has keys of its own only once somebody has clicked something.
    session.input().move(session.frame(title).center());
    session.input().click();
    session.input().pressKey(KernelKey::super);
    session.input().tap(KernelKey::left);
    session.input().releaseKey(KernelKey::super);
    QRect half = workArea();
    half.setWidth(half.width() / 2);
    ASSERT_TRUE(waitUntil([&] { return session.frame(title) == half; })) << session.describe();
    dragIntoSecondZone(title);
}

TEST_P(ProgramDrag, ToAnEdgeOrACornerEndsInTheZoneThatReachesThere) {
    constexpr int right = 1919;
    constexpr int bottom = 1079;
    const int top = workArea().top();
    // A third of them for each client.
    const std::vector<std::pair<QPoint, std::size_t>> drops[] = {
        {{{1300, top}, 1}, {{right, bottom}, 3}, {{0, 540}, 0}},
        {{{right, top}, 1}, {{1300, bottom}, 2}, {{0, bottom}, 0}},
        {{{0, top}, 0}, {{right, 200}, 1}, {{600, bottom}, 0}}};
    const QString title = session.startClient(GetParam(), start);
    for (const auto& [place, expected] : drops[int(GetParam())]) {
        SCOPED_TRACE(::testing::Message() << place.x() << ", " << place.y());
        session.place(title, start);
        dragToFirstZone(title);
        session.input().glide(place);
        EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(expected)); }));
        drop();
        EXPECT_TRUE(endsIn(title, zone(expected))) << session.describe();
    }
}

} // namespace

TEST_F(ProgramInGnome, LeavesAWindowToTheShellThatIsDroppedOnTheBarWhereNoZoneIs) {
    const QString title = session.startClient(CompositorClient::gtk4, start);
    dragToFirstZone(title);
    session.input().glide({1300, 0});
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_FALSE(isHighlighted(zone(1)));
    drop();
    // Which maximizes what is dropped there.
    EXPECT_TRUE(endsIn(title, workArea())) << session.describe();
}

TEST_F(ProgramInGnome, SnapsWithTheChosenKeyHeldBeforeTheDragOrPressedDuringItAndNoOther) {
    const struct {
        const char* name;
        KernelKey key;
        KernelKey other;
    } modifiers[] = {{"control", KernelKey::control, KernelKey::shift},
                     {"shift", KernelKey::shift, KernelKey::alt},
                     {"option", KernelKey::alt, KernelKey::super},
                     {"command", KernelKey::super, KernelKey::control}};
    const QString title = session.startClient(CompositorClient::qt, start);
    for (const auto& [name, key, other] : modifiers) {
        SCOPED_TRACE(name);
        if (key != KernelKey::control)
            startAgainWith(name);
        session.place(title, start);
        session.input().pressKey(key);
        session.grab(title);
        session.input().glide(zone(1).center());
        EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
        drop(key);
        EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();

        dragToFirstZone(title, key);
        drop(key);
        EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();

        session.place(title, start);
        session.grab(title);
        session.input().pressKey(other);
        session.input().glide(zone(1).center());
        EXPECT_TRUE(
            staysTrue([&] { return !isHighlighted(zone(1)); }, std::chrono::milliseconds(200)));
        drop(other);
        EXPECT_NE(session.frame(title).size(), zone(1).size());
    }
    EXPECT_FALSE(session.ask(QStringLiteral("Main.overview.visible")).toBool())
        << "the shell's own key opened it";
}

TEST_F(ProgramInGnome, LeavesAWindowWhereItIsDroppedOnceTheKeyIsReleasedFirst) {
    const QString title = session.startClient(CompositorClient::gtk4, start);
    dragToFirstZone(title);
    session.input().releaseKey(KernelKey::control);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); })) << session.describe();
    expectToStayWhereDropped(title, start.size());
}

TEST_F(ProgramInGnome, FillsAZoneWithATerminalAsFarAsItsCellsGo) {
    expectToFillAZoneWithATerminal(start);
}

TEST_F(ProgramInGnome, GoesOnWithADragThatAnotherWorkspaceComesInto) {
    // The shell takes a workspace away that has become empty.
    static_cast<void>(session.startClient(CompositorClient::gtk4, start));
    const QString title = session.startClient(CompositorClient::qt, start);
    const auto isOn = [&](int workspace) {
        return session
            .ask(QStringLiteral("global.workspace_manager.get_active_workspace_index() === %1 &&"
                                " global.display.focus_window?.get_workspace()?.index() === %1")
                     .arg(workspace))
            .toBool();
    };
    dragToFirstZone(title);
    session.tell(QStringLiteral("global.workspace_manager.get_workspace_by_index(1)"
                                ".activate(global.get_current_time())"));
    // The window that is dragged comes along.
    ASSERT_TRUE(waitUntil([&] { return isOn(1); })) << session.describe();
    session.input().glide(zone(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();
    EXPECT_TRUE(isOn(1));
    EXPECT_FALSE(isHighlighted(zone(1)));
}

} // namespace tilewright::testing
