#include "Displays.h"
#include "DragScript.h"

#include <BareClient.h>
#include <InputGrab.h>
#include <Waiting.h>

#include <gtest/gtest.h>
#include <optional>
#include <tuple>

namespace tilewright::testing {
namespace {

struct Desk {
    WindowManagerKind kind;
    Compositing compositing;
    const char* modifier;
    ClientKind client;
    KeyTiming timing;
};

std::string nameOf(const ::testing::TestParamInfo<Desk>& info) {
    return std::string(name(info.param.kind)) +
           (info.param.compositing == Compositing::on ? "Composited" : "Plain") +
           info.param.modifier;
}

/// Two zones with a gap between them, which leave the lower half free: a window manager may have a
/// bar of its own there that nobody else hears of.
ZoneLayout withAGap() {
    return customLayout(QStringLiteral("Gap"), {{0, 0, 0.4, 0.5}, {0.6, 0, 0.4, 0.5}});
}

/// A desktop of two monitors with layouts of their own, the program on it and what is dragged.
struct TwoMonitors {
    TwoMonitors(DesktopSession& itsDesktop, const Desk& itsDesk)
        : desktop(itsDesktop)
        , desk(itsDesk) {
        assignLayouts(desktop, {layout, ZoneLayout::quadrants()});
        program = std::make_unique<RunningProgram>(desktop, QString::fromLatin1(desk.modifier));
        script = std::make_unique<DragScript>(desktop, *program);
    }

    /// Opens a window on the left monitor and waits until it is the active one.
    [[nodiscard]] TestClient open() const {
        const TestClient client = startClient(desktop, desk.client, {200, 160, 400, 300});
        expectActive(client);
        return client;
    }
    void expectActive(const TestClient& client) const {
        EXPECT_TRUE(waitUntil([&] { return inspector.activeWindow() == client.window; }))
            << desktop.describe();
    }
    void expectOverlayOn(const QRect& monitor) const {
        EXPECT_TRUE(waitUntil([&] { return inspector.clientFrame(program->overlay()) == monitor; }))
            << desktop.describe();
    }
    /// Takes the window to drag it about. It is the active one before: some window managers do not
    /// always see that one which draws its own bar was clicked on.
    void grab(const TestClient& client) const {
        const bool isOfTheMutters =
            desk.kind == WindowManagerKind::mutter || desk.kind == WindowManagerKind::muffin;
        if (inspector.activeWindow() != client.window) {
            // As long as it moves a window, mutter makes no other one the active one; and what is
            // asked of it may come to it before the end of the drag, which it hears of elsewhere.
            if (isOfTheMutters) {
                EXPECT_TRUE(InputGrab(desktop.display()).takePointer()) << desktop.describe();
            }
            static_cast<void>(outputOf(
                QStringLiteral("wmctrl"),
                {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(client.window)},
                desktop.environment()));
        }
        expectActive(client);
        if (isOfTheMutters)
            grabUntilItMoves(client);
        else
            script->grab(client, desk.timing);
    }
    /// Takes the window until it follows the pointer. At times, with no other program about, mutter
    /// and muffin do not begin to move a window that was shown or raised a moment ago: they do so
    /// when the pointer next moves above any window's bar, and then it is this one that moves and
    /// becomes the active one, whichever the user has taken.
    void grabUntilItMoves(const TestClient& client) const {
        // Longer than what makes two presses a double click.
        constexpr std::chrono::milliseconds aWhile(600);
        EXPECT_TRUE(waitUntil([&] {
            const QRect before = inspector.outerFrame(client.window);
            script->grab(client, desk.timing);
            const QPoint here = desktop.input().position();
            const bool moves = waitUntil(
                [&] {
                    script->dragTo(here + QPoint(6, 3), 1);
                    script->dragTo(here, 1);
                    return inspector.outerFrame(client.window) != before;
                },
                aWhile);
            if (!moves) {
                // The key first: nothing is snapped.
                script->releaseKey();
                script->expectOverlayGone();
                script->releaseButton();
            }
            return moves;
        })) << desktop.describe();
    }
    /// Drags the window to a place where nothing takes it.
    void dropNowhere(const TestClient& client, QPoint place) const {
        grab(client);
        script->dragTo(place);
        script->drop();
        expectActive(client);
    }
    /// Drops the window that is being dragged, and waits until it fills the frame.
    void dropInto(const TestClient& client, const QRect& frame) const {
        script->drop();
        expectFills(inspector, desk.client, client, frame);
        expectActive(client);
    }

    DesktopSession& desktop;
    const Desk& desk;
    const ZoneLayout layout = withAGap();
    const XInspector& inspector = desktop.inspector();
    std::unique_ptr<RunningProgram> program;
    std::unique_ptr<DragScript> script;
};

/// Two monitors with a space between them, and a panel along the bottom of the left one.
struct MonitorsApart {
    /// Splits one screen, or moves real outputs apart. Before the window manager starts.
    enum class Kind { halvesOfOneScreen, outputs };

    explicit MonitorsApart(Kind kind)
        : desktop(kind == Kind::outputs ? XServer::twoOutputs() : XServer::virtualScreen())
        , left(0, 0, kind == Kind::outputs ? 1920 : 900, 1080)
        , right(left.translated(left.width() + 120, 0)) {
        if (kind == Kind::outputs)
            moveRightOutput(desktop, right.topLeft());
        else
            splitIntoMonitors(desktop, left, right);
    }
    /// After the window manager has started.
    void showPanel() {
        const auto thickness = quint32(panelThickness);
        panel.emplace(
            desktop.display(),
            QRect(left.left(), left.bottom() + 1 - panelThickness, left.width(), panelThickness),
            std::vector<quint32>{0, 0, 0, thickness, 0, 0, 0, 0, 0, 0, 0, quint32(left.right())});
    }
    /// Starts the program and drops windows in a gap, over the panel and between the monitors.
    void dropWhereNothingTakesThem(const Desk& whichDesk);

    static constexpr int panelThickness = 48;
    DesktopSession desktop;
    const QRect left;
    const QRect right;
    std::optional<BareClient> panel;
};

void MonitorsApart::dropWhereNothingTakesThem(const Desk& whichDesk) {
    SCOPED_TRACE(std::string(name(whichDesk.client)) +
                 (whichDesk.timing == KeyTiming::beforeThePress ? ", key first" : ", press first"));
    const TwoMonitors desk(desktop, whichDesk);
    const XInspector& inspector = desktop.inspector();
    const auto& zones = ZoneLayout::quadrants().zones;

    const TestClient stays = desk.open();
    const QSize before = inspector.outerFrame(stays.window).size();
    desk.dropNowhere(stays, {left.center().x(), 420});

    // What snaps comes after what does not: what was to happen to the other has happened by then.
    const TestClient client = desk.open();
    desk.grab(client);
    desk.expectOverlayOn(left);
    desk.script->dragTo(zoneFrame(zones[0], right).center());
    desk.expectOverlayOn(right);
    // Between the monitors it stays as it was.
    desk.script->dragTo({left.right() + 60, 300});
    EXPECT_TRUE(desk.program->overlayShows()) << desktop.describe();
    desk.dropInto(client, zoneFrame(zones[0], right));
    EXPECT_EQ(inspector.outerFrame(stays.window).size(), before)
        << "in the gap" << desktop.describe();

    desk.dropNowhere(stays, {150, left.bottom() - panelThickness / 2});
    QSize after = before;
    // Muffin itself tiles what is dropped below the space that panels leave.
    if (whichDesk.kind == WindowManagerKind::muffin) {
        EXPECT_TRUE(waitUntil([&] {
            after = inspector.outerFrame(stays.window).size();
            return inspector.hasAtom(stays.window, "_NET_WM_STATE",
                                     "_NET_WM_STATE_MAXIMIZED_VERT") &&
                   after != before;
        })) << desktop.describe();
    }
    desk.grab(client);
    desk.expectOverlayOn(right);
    desk.script->dragTo(zoneFrame(zones[1], right).center());
    desk.dropInto(client, zoneFrame(zones[1], right));
    EXPECT_EQ(inspector.outerFrame(stays.window).size(), after)
        << "over the panel" << desktop.describe();
    stays.process->stop();
    client.process->stop();
}

struct WindowManagerPlaces : ::testing::TestWithParam<Desk> {};

TEST_P(WindowManagerPlaces, GapsPanelsAndTheSpaceBetweenMonitorsTakeNothing) {
    // Xfwm4 keeps windows on the outputs.
    MonitorsApart monitors(GetParam().kind == WindowManagerKind::xfwm4
                               ? MonitorsApart::Kind::outputs
                               : MonitorsApart::Kind::halvesOfOneScreen);
    ASSERT_TRUE(monitors.desktop.startWindowManager(GetParam().kind, GetParam().compositing));
    monitors.showPanel();
    monitors.dropWhereNothingTakesThem(GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Under, WindowManagerPlaces,
    ::testing::Values(Desk{WindowManagerKind::fluxbox, Compositing::off, "shift",
                           ClientKind::gtkClientDecorated, KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::i3, Compositing::off, "option", ClientKind::xterm,
                           KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::icewm, Compositing::off, "shift", ClientKind::qt,
                           KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::kwin, Compositing::off, "command", ClientKind::qt,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::marco, Compositing::on, "option", ClientKind::qt,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::mutter, Compositing::on, "option", ClientKind::qt,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::muffin, Compositing::on, "control", ClientKind::xterm,
                           KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::xfwm4, Compositing::on, "command",
                           ClientKind::gtkClientDecorated, KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::icewm, Compositing::on, "control",
                           ClientKind::gtkClientDecorated, KeyTiming::afterTheDragBegan}),
    nameOf);

/// Every key, with both timings and every kind of client.
struct OpenboxPlaces : ::testing::TestWithParam<std::tuple<const char*, Compositing, KeyTiming>> {};

TEST_P(OpenboxPlaces, GapsPanelsAndTheSpaceBetweenMonitorsTakeNothing) {
    const auto [modifier, compositing, timing] = GetParam();
    MonitorsApart monitors(MonitorsApart::Kind::halvesOfOneScreen);
    ASSERT_TRUE(monitors.desktop.startWindowManager(WindowManagerKind::openbox, compositing));
    monitors.showPanel();
    for (const ClientKind kind :
         {ClientKind::xterm, ClientKind::qt, ClientKind::gtkClientDecorated})
        monitors.dropWhereNothingTakesThem(
            {WindowManagerKind::openbox, compositing, modifier, kind, timing});
}

INSTANTIATE_TEST_SUITE_P(
    Plain, OpenboxPlaces,
    ::testing::Combine(::testing::Values("control", "shift", "option", "command"),
                       ::testing::Values(Compositing::off),
                       ::testing::Values(KeyTiming::beforeThePress)),
    [](const auto& one) { return std::string(std::get<0>(one.param)) + "KeyFirst"; });

INSTANTIATE_TEST_SUITE_P(
    Composited, OpenboxPlaces,
    ::testing::Combine(::testing::Values("control", "shift", "option", "command"),
                       ::testing::Values(Compositing::on),
                       ::testing::Values(KeyTiming::afterTheDragBegan)),
    [](const auto& one) { return std::string(std::get<0>(one.param)) + "PressFirst"; });

/// Two outputs, as the window manager sees them too.
struct SnapOnTwoOutputs : ::testing::TestWithParam<Desk> {};

TEST_P(SnapOnTwoOutputs, EachHasItsOwnLayoutAndADragGoesFromOneToTheOther) {
    DesktopSession desktop(XServer::twoOutputs());
    ASSERT_TRUE(desktop.startWindowManager(GetParam().kind, GetParam().compositing));
    const QSize screen = desktop.inspector().screenSize();
    const QRect left(0, 0, screen.width() / 2, screen.height());
    const QRect right = left.translated(left.width(), 0);
    const TwoMonitors desk(desktop, GetParam());
    const TestClient client = desk.open();
    desk.grab(client);
    desk.expectOverlayOn(left);
    const QRect quadrant = zoneFrame(ZoneLayout::quadrants().zones[1], right);
    desk.script->dragTo(quadrant.center());
    desk.expectOverlayOn(right);
    desk.dropInto(client, quadrant);
    desk.grab(client);
    desk.expectOverlayOn(right);
    const QRect back = zoneFrame(desk.layout.zones[1], left);
    desk.script->dragTo(back.center());
    desk.expectOverlayOn(left);
    desk.dropInto(client, back);
}

INSTANTIATE_TEST_SUITE_P(
    Under, SnapOnTwoOutputs,
    ::testing::Values(Desk{WindowManagerKind::openbox, Compositing::off, "control", ClientKind::qt,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::xfwm4, Compositing::on, "option",
                           ClientKind::gtkClientDecorated, KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::kwin, Compositing::off, "command", ClientKind::xterm,
                           KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::marco, Compositing::off, "control",
                           ClientKind::gtkClientDecorated, KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::mutter, Compositing::on, "command", ClientKind::qt,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::muffin, Compositing::on, "option", ClientKind::xterm,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::fluxbox, Compositing::off, "control",
                           ClientKind::xterm, KeyTiming::beforeThePress},
                      Desk{WindowManagerKind::i3, Compositing::off, "shift", ClientKind::qt,
                           KeyTiming::afterTheDragBegan},
                      Desk{WindowManagerKind::icewm, Compositing::off, "shift", ClientKind::xterm,
                           KeyTiming::beforeThePress}),
    nameOf);

} // namespace
} // namespace tilewright::testing
