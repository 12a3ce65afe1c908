// Input, windows, displays, window managers and compositors without rest and without sense, for as
// long as TILEWRIGHT_STORM_SECONDS says (an hour unless it does); the program may run under what
// TILEWRIGHT_WATCHED_BY names, such as a memory checker.

#include <Displays.h>
#include <DragScript.h>
#include <ProcessFigures.h>
#include <RunningProgram.h>
#include <Waiting.h>

#include <QElapsedTimer>
#include <array>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>
#include <xcb/xtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

class Storm {
public:
    explicit Storm(DesktopSession& desktop)
        : desktop_(desktop)
        , hands_(desktop.display()) {}

    /// A few hundred events at once, and the next ones when the server has handed these out. While
    /// a window manager holds the input frozen the server keeps all that arrives, and seeks through
    /// all of it for each event that it hands out afterwards: whoever goes on without minding that
    /// storms against the server alone, which soon does nothing else for minutes.
    void gust() {
        const int count = 100 + below(200);
        for (int i = 0; i < count; ++i)
            input();
        hands_.sync();
        windows();
        if (!waitUntil([this] { return hasArrived(); }, std::chrono::seconds(2)))
            ++frozen;
    }
    /// What lasts longer ends or begins anew.
    void catastrophe() {
        switch (below(4)) {
        case 0:
            desktop_.killWindowManager();
            // Held keys and buttons would be taken for a wish about its menus.
            letGo();
            EXPECT_TRUE(desktop_.startWindowManager(below(2) == 0 ? WindowManagerKind::openbox
                                                                  : WindowManagerKind::icewm));
            ++managers;
            break;
        case 1:
            desktop_.stopCompositor();
            ++compositors;
            break;
        case 2:
            EXPECT_TRUE(desktop_.startCompositor());
            ++compositors;
            break;
        default: {
            letGo();
            const int middle = 600 + below(700);
            splitIntoMonitors(desktop_, QRect(0, 0, middle, 1080),
                              QRect(middle, 0, 1920 - middle, 1080));
            ++displays;
        }
        }
    }
    void letGo() {
        for (quint8 button = 1; button <= 3; ++button)
            fake(XCB_BUTTON_RELEASE, button);
        for (const quint8 key : keys)
            fake(XCB_KEY_RELEASE, key);
        held_.fill(false);
        hands_.sync();
    }
    void end() {
        letGo();
        for (const xcb_window_t window : windows_)
            xcb_destroy_window(hands_.xcb(), window);
        windows_.clear();
        hands_.sync();
    }

    long events = 0;
    int managers = 0;
    int compositors = 0;
    int displays = 0;
    /// How often somebody held the input for longer than is waited.
    int frozen = 0;

private:
    /// The usual places of the modifiers, Escape, Tab, Enter, Space and some letters.
    static constexpr std::array<quint8, 12> keys{37, 50, 64, 133, 9, 23, 36, 65, 38, 39, 40, 41};

    int below(int end) { return std::uniform_int_distribution(0, end - 1)(random_); }

    void fake(quint8 type, quint8 detail, qint16 x = 0, qint16 y = 0) {
        xcb_test_fake_input(hands_.xcb(), type, detail, XCB_CURRENT_TIME, hands_.root(), x, y, 0);
        ++events;
    }
    void input() {
        const int what = below(20);
        if (what < 14) {
            place_ = {below(1920), below(1080)};
            fake(XCB_MOTION_NOTIFY, 0, static_cast<qint16>(place_.x()),
                 static_cast<qint16>(place_.y()));
        } else if (what < 17) {
            fake(below(2) == 0 ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE,
                 static_cast<quint8>(1 + below(3)));
        } else {
            const auto key = static_cast<std::size_t>(below(static_cast<int>(keys.size())));
            held_[key] = below(2) == 0;
            fake(held_[key] ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keys[key]);
        }
    }
    /// Whether pointer and keys are as the last events have them.
    [[nodiscard]] bool hasArrived() const {
        const auto pointerAsked = xcb_query_pointer(hands_.xcb(), hands_.root());
        const auto keymapAsked = xcb_query_keymap(hands_.xcb());
        const XReply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(hands_.xcb(), pointerAsked, nullptr));
        const XReply<xcb_query_keymap_reply_t> keymap(
            xcb_query_keymap_reply(hands_.xcb(), keymapAsked, nullptr));
        if (!pointer || !keymap || QPoint(pointer->root_x, pointer->root_y) != place_)
            return false;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (((keymap->keys[keys[i] / 8] >> (keys[i] % 8)) & 1) != (held_[i] ? 1 : 0))
                return false;
        }
        return true;
    }
    /// Comes and goes without waiting for a window manager, which may just be ending.
    void windows() {
        xcb_connection_t* xcb = hands_.xcb();
        if (windows_.size() < 6 && below(4) == 0) {
            const xcb_window_t window = xcb_generate_id(xcb);
            xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, hands_.root(),
                              static_cast<qint16>(below(1500)), static_cast<qint16>(below(800)),
                              static_cast<quint16>(100 + below(400)),
                              static_cast<quint16>(100 + below(300)), 0,
                              XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
            xcb_map_window(xcb, window);
            windows_.push_back(window);
            ++events;
        } else if (!windows_.empty() && below(5) == 0) {
            const auto which = windows_.begin() + below(static_cast<int>(windows_.size()));
            xcb_destroy_window(xcb, *which);
            windows_.erase(which);
            ++events;
        }
    }

    DesktopSession& desktop_;
    const XClient hands_;
    std::mt19937 random_{20260101};
    std::vector<xcb_window_t> windows_;
    /// Where the pointer was put last, and which of the keys were left held.
    QPoint place_;
    std::array<bool, keys.size()> held_{};
};

bool canBeGrabbed(const XClient& anybody) {
    const XReply<xcb_grab_pointer_reply_t> pointer(xcb_grab_pointer_reply(
        anybody.xcb(),
        xcb_grab_pointer(anybody.xcb(), 0, anybody.root(), 0, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    const XReply<xcb_grab_keyboard_reply_t> keyboard(xcb_grab_keyboard_reply(
        anybody.xcb(),
        xcb_grab_keyboard(anybody.xcb(), 0, anybody.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                          XCB_GRAB_MODE_ASYNC),
        nullptr));
    xcb_ungrab_pointer(anybody.xcb(), XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(anybody.xcb(), XCB_CURRENT_TIME);
    anybody.sync();
    return pointer && pointer->status == XCB_GRAB_STATUS_SUCCESS && keyboard &&
           keyboard->status == XCB_GRAB_STATUS_SUCCESS;
}

Subprocess& startProgram(DesktopSession& desktop) {
    writeFile(desktop.home() + u"/.config/Tilewright/Tilewright.conf"_s,
              "[General]\nsnapActivationModifier=control\n");
    QStringList command =
        qEnvironmentVariable("TILEWRIGHT_WATCHED_BY").split(u' ', Qt::SkipEmptyParts);
    command.append(QStringLiteral(TILEWRIGHT_PROGRAM));
    const QString first = command.takeFirst();
    return desktop.start(first, command);
}

/// A drag with the key held shows the overlay, and its end hides it, wherever the displays are.
void expectOverlayComesAndGoes(DesktopSession& desktop, RunningProgram& program) {
    const TestClient client = startClient(desktop, ClientKind::qt, {300, 300, 400, 300});
    ASSERT_NE(client.window, 0U);
    XInputInjector& input = desktop.input();
    const QRect outer = desktop.inspector().outerFrame(client.window);
    const QPoint grip(outer.x() + outer.width() / 3, outer.y() + 8);
    input.move(grip);
    program.pressKey();
    input.press();
    EXPECT_TRUE(waitUntil([&] {
        input.move(grip + QPoint(30, 30));
        input.move(grip + QPoint(31, 31));
        return program.overlayShows();
    })) << desktop.describe();
    input.release();
    program.releaseKey();
    EXPECT_TRUE(waitUntil([&] { return !program.overlayShows(); }));
}

} // namespace

/// The window managers' menus, on which the storm clicks, start nothing: what dozens of terminals
/// do with it would take the machine away from what is tested.
void emptyMenus(DesktopSession& desktop) {
    writeFile(desktop.home() + u"/.config/openbox/menu.xml"_s,
              R"(<openbox_menu><menu id="root-menu" label="Nothing"/></openbox_menu>)");
    for (const auto& name : {u"menu"_s, u"programs"_s, u"toolbar"_s, u"keys"_s})
        writeFile(desktop.home() + u"/.icewm/"_s + name, "\n");
}

TEST(LongStorm, LeavesNothingShownGrabbedOrGrown) {
    DesktopSession desktop;
    emptyMenus(desktop);
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    assignLayouts(desktop, {ZoneLayout::thirds()});
    RunningProgram program(desktop, startProgram(desktop), RunningProgram::defaultModifier());
    expectOverlayComesAndGoes(desktop, program);
    const bool isWatched = qEnvironmentVariableIsSet("TILEWRIGHT_WATCHED_BY");
    Storm storm(desktop);
    const int told = qEnvironmentVariableIntValue("TILEWRIGHT_STORM_SECONDS");
    const int seconds = told > 0 ? told : 3600;
    QElapsedTimer timer;
    timer.start();
    long memory = 0;
    qint64 nextCatastrophe = 2000;
    while (timer.elapsed() < qint64{seconds} * 1000 && program.isRunning() &&
           !::testing::Test::HasFailure()) {
        storm.gust();
        if (timer.elapsed() > nextCatastrophe) {
            storm.catastrophe();
            nextCatastrophe = timer.elapsed() + 2000;
        }
        // What is loaded once is loaded in the first quarter.
        if (memory == 0 && timer.elapsed() > qint64{seconds} * 250)
            memory = processFigures(program.pid()).anonymousKiB;
    }
    storm.end();
    ASSERT_TRUE(program.isRunning());
    std::printf(
        "%ld events in %lld s; %d window managers, %d compositors and %d displays changed; input "
        "held %d times\n",
        storm.events, timer.elapsed() / 1000, storm.managers, storm.compositors, storm.displays,
        storm.frozen);
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    EXPECT_TRUE(waitUntil([&] { return !program.overlayShows(); }, std::chrono::minutes(2)));
    const XClient anybody(desktop.display());
    EXPECT_TRUE(waitUntil([&] { return canBeGrabbed(anybody); }));
    if (!isWatched) {
        constexpr long littleKiB = 2048;
        long after = 0;
        EXPECT_TRUE(waitUntil([&] {
            after = processFigures(program.pid()).anonymousKiB;
            return after < memory + littleKiB;
        })) << memory
            << " KiB then, " << after << " KiB now";
        std::printf("%ld KiB after a quarter, %ld KiB in the end\n", memory, after);
    }
    expectOverlayComesAndGoes(desktop, program);
    program.process().signal(SIGTERM);
    EXPECT_TRUE(program.process().waitForEnd(60'000));
    EXPECT_EQ(program.process().exitCode(), 0);
}

} // namespace tilewright::testing
