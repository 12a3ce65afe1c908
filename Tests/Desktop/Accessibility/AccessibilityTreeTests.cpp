// Every view of the running program as a client of the accessibility bus reads it: each control
// with its role, name and state, each within reach of the keyboard.

#include <AccessibilityListener.h>
#include <AccessibilityReader.h>
#include <ListeningSocket.h>
#include <ShellDesktop.h>
#include <Waiting.h>

#include <algorithm>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

const auto button = u"button"_s;
const auto toggle = u"check box"_s;
const auto label = u"label"_s;
const auto item = u"list item"_s;

const char* const oneLayoutOfTheUsers = R"({"assignments":{},"customLayouts":[{
    "id":"6A1B2C3D-0000-4000-8000-000000000001","isBuiltIn":false,"name":"Mine",
    "systemImage":"square.dashed","zones":[{"height":1,
    "id":"6A1B2C3D-0000-4000-8000-000000000002","name":"All","width":1,"x":0,"y":0}]}]})";

/// A control by what its user is told, and by its place, since two may have one name.
QString keyOf(const AccessibleNode& node) {
    return u"%1 “%2” at %3,%4"_s.arg(node.role, node.name).arg(node.frame.x()).arg(node.frame.y());
}

class AccessibleViews : public ::testing::Test {
protected:
    explicit AccessibleViews(std::map<QString, QString> more = {}) {
        desktop.writeLayouts(oneLayoutOfTheUsers);
        QProcessEnvironment environment;
        AccessibilityReader::enable(environment);
        for (const QString& key : environment.keys())
            more[key] = environment.value(key);
        program = &desktop.startProgram({}, more);
    }

    std::vector<AccessibleNode> nodes() { return reader.showing(program->pid()); }
    std::optional<AccessibleNode> find(const QString& role, const QString& name) {
        return reader.find(program->pid(), role, name);
    }
    /// All that shows, for the message of a failed test.
    std::string everything() {
        std::string text;
        for (const AccessibleNode& node : nodes())
            text += "\n    " + keyOf(node).toStdString();
        return text;
    }
    /// Waits for a control. Fails the test when it does not come.
    AccessibleNode control(const QString& role, const QString& name) {
        std::optional<AccessibleNode> found;
        EXPECT_TRUE(waitUntil([&] {
            found = find(role, name);
            return found.has_value();
        })) << role.toStdString()
            << " “" << name.toStdString() << "” is not among" << everything();
        return found.value_or(AccessibleNode());
    }
    void click(const QString& role, const QString& name) {
        desktop.input().click(control(role, name).frame.center());
    }
    bool waitForState(const QString& role, const QString& name, const QString& state,
                      bool isSet = true) {
        return waitUntil([&] {
            const auto node = find(role, name);
            return node && node->is(state) == isSet;
        });
    }

    void openPanel() {
        desktop.input().move({960, 540});
        ASSERT_TRUE(waitUntil([&] {
            EXPECT_EQ(desktop.startAgain(), 0);
            return waitUntil([&] { return find(u"dialog"_s, u"Tilewright"_s).has_value(); },
                             std::chrono::seconds(2));
        }));
    }
    /// Opens the settings at a tab, and waits until Qt knows where its window is.
    void openSettings(const QString& tab) {
        openPanel();
        click(button, u"Settings…"_s);
        ASSERT_TRUE(waitUntil([&] {
            const auto window = desktop.settingsWindow();
            const auto frame = find(u"frame"_s, u"Tilewright Settings"_s);
            return window && frame && frame->is(u"active"_s) &&
                   desktop.inspector().activeWindow() == *window &&
                   desktop.inspector().clientFrame(*window) == frame->frame;
        }));
        click(u"page tab"_s, tab);
        ASSERT_TRUE(waitUntil([&] { return find(u"page tab list"_s, tab).has_value(); }));
    }

    static bool takesFocus(const AccessibleNode& node) {
        // A tab is chosen by the arrow keys, once the row of tabs has the focus.
        return node.is(u"focusable"_s) && node.is(u"enabled"_s) && node.role != u"page tab"_s;
    }
    /// Whatever can be used has a role and a name.
    void expectEveryControlNamed() {
        const auto all = nodes();
        EXPECT_FALSE(all.empty());
        for (const AccessibleNode& node : all) {
            EXPECT_NE(node.role, u"unknown"_s) << node.name.toStdString();
            if (!node.is(u"focusable"_s))
                continue;
            EXPECT_FALSE(node.name.isEmpty()) << keyOf(node).toStdString();
            EXPECT_NE(node.role, u"filler"_s) << node.name.toStdString();
            EXPECT_FALSE(node.frame.isEmpty()) << keyOf(node).toStdString();
        }
    }

    QString focused() {
        QString found;
        for (const AccessibleNode& node : nodes()) {
            if (node.is(u"focused"_s) && takesFocus(node))
                found = keyOf(node);
        }
        return found;
    }
    /// Presses Tab until the focus is back where it was first: everything that had it.
    QStringList walk() {
        QStringList visited;
        QString before = focused();
        for (;;) {
            QString now;
            desktop.input().tapKey(keysym::tab);
            EXPECT_TRUE(waitUntil([&] {
                now = focused();
                return !now.isEmpty() && now != before;
            })) << "the focus stays at "
                << before.toStdString();
            if (now.isEmpty() || visited.contains(now))
                return visited;
            visited.append(now);
            before = now;
        }
    }
    void expectTabReachesEverything() {
        QStringList visited = walk();
        QStringList wanted;
        for (const AccessibleNode& node : nodes()) {
            if (takesFocus(node))
                wanted.append(keyOf(node));
        }
        visited.sort();
        wanted.sort();
        EXPECT_EQ(visited, wanted) << "visited:\n"
                                   << visited.join(u'\n').toStdString() << "\nthere are:\n"
                                   << wanted.join(u'\n').toStdString();
    }

    ShellDesktop desktop;
    AccessibilityReader reader{desktop.session().environment()};
    Subprocess* program = nullptr;
};

/// Where windows cannot be moved, and yet a window manager gives the keyboard to one of ours.
class AccessibleViewsWithoutTrust : private PretendedWaylandSession, public AccessibleViews {
protected:
    AccessibleViewsWithoutTrust()
        : AccessibleViews(PretendedWaylandSession::environment()) {}
};

} // namespace

TEST_F(AccessibleViews, ThePanelIsADialogWithAllItsControls) {
    openPanel();
    expectEveryControlNamed();
    EXPECT_FALSE(control(toggle, u"Keep Awake"_s).is(u"checked"_s));
    static_cast<void>(control(label, u"Display sleep allowed"_s));
    EXPECT_EQ(control(button, u"15m"_s).description, u"Keeps the display awake for 15 minutes"_s);
    for (const QString& name : {u"1h"_s, u"2h"_s, u"Snap to Primary"_s, u"Snap to Top Right"_s,
                                u"Snap to Mid Right"_s, u"Snap to Bottom Right"_s, u"Quit"_s})
        static_cast<void>(control(button, name));
    for (const QString& name : {u"Halves"_s, u"Thirds"_s, u"Quadrants"_s, u"Priority Center"_s,
                                u"Bento Box"_s, u"Mine"_s})
        EXPECT_EQ(control(toggle, name).is(u"checked"_s), name == u"Bento Box"_s)
            << name.toStdString();
    const QRect panel = control(u"dialog"_s, u"Tilewright"_s).frame;
    for (const AccessibleNode& node : nodes()) {
        EXPECT_TRUE(!node.is(u"focusable"_s) || panel.contains(node.frame))
            << keyOf(node).toStdString();
    }
}

TEST_F(AccessibleViews, ThePanelTellsWhatAClickChanges) {
    openPanel();
    click(toggle, u"Mine"_s);
    EXPECT_TRUE(waitForState(toggle, u"Mine"_s, u"checked"_s));
    EXPECT_TRUE(waitForState(toggle, u"Bento Box"_s, u"checked"_s, false));
    static_cast<void>(control(button, u"Snap to All"_s));
    click(toggle, u"Keep Awake"_s);
    EXPECT_TRUE(waitForState(toggle, u"Keep Awake"_s, u"checked"_s));
    static_cast<void>(control(label, u"Active — indefinitely"_s));
    EXPECT_TRUE(waitUntil([&] { return !find(button, u"15m"_s); })) << "the buttons slide out";
}

TEST_F(AccessibleViews, TabReachesEverythingInThePanel) {
    openPanel();
    expectTabReachesEverything();
}

TEST_F(AccessibleViews, TabReachesEverythingInThePanelDuringASession) {
    openPanel();
    click(toggle, u"Keep Awake"_s);
    ASSERT_TRUE(waitForState(toggle, u"Keep Awake"_s, u"checked"_s));
    ASSERT_TRUE(waitUntil([&] { return !find(button, u"15m"_s); })) << "the buttons slide out";
    expectEveryControlNamed();
    expectTabReachesEverything();
}

TEST_F(AccessibleViews, ThePanelsMenuIsReadToo) {
    openPanel();
    desktop.input().click(control(toggle, u"Mine"_s).frame.center(), 3);
    static_cast<void>(control(u"popup menu"_s, u"Mine"_s));
    static_cast<void>(control(u"menu item"_s, u"Delete Layout"_s));
}

TEST_F(AccessibleViews, TheEditorIsAListOfZonesWithHandles) {
    openSettings(u"Layouts"_s);
    expectEveryControlNamed();
    for (const QString& tab : {u"Layouts"_s, u"Manage"_s, u"General"_s, u"Accessibility"_s})
        static_cast<void>(control(u"page tab"_s, tab));
    static_cast<void>(control(u"list"_s, u"Canvas"_s));
    EXPECT_TRUE(control(u"text"_s, u"Layout name"_s).is(u"editable"_s));
    EXPECT_TRUE(control(toggle, u"Snap to edges"_s).is(u"checked"_s));
    EXPECT_FALSE(control(button, u"Delete"_s).is(u"enabled"_s)) << "no zone is selected";
    EXPECT_FALSE(find(button, u"Top left corner"_s));

    const auto topRight = u"Top Right, 38 % × 55 %"_s;
    EXPECT_FALSE(control(item, topRight).is(u"selected"_s));
    click(item, topRight);
    EXPECT_TRUE(waitForState(item, topRight, u"selected"_s));
    EXPECT_TRUE(waitForState(button, u"Delete"_s, u"enabled"_s));
    for (const QString& corner : {u"Top left corner"_s, u"Top right corner"_s,
                                  u"Bottom left corner"_s, u"Bottom right corner"_s})
        EXPECT_EQ(control(button, corner).description, topRight) << corner.toStdString();
    expectEveryControlNamed();
    expectTabReachesEverything();
}

TEST_F(AccessibleViews, TheEditorsMessagesAreAnnounced) {
    openSettings(u"Layouts"_s);
    // Only now: Qt asks who listens before it hears who comes to, and misses whoever comes in
    // between, as the program starts.
    AccessibilityListener listener(desktop.session().environment());
    const auto announced = [&](const QStringList& expected) {
        return waitUntil([&] { return listener.shown(u"alert"_s) == expected; });
    };
    const QString none = u"No space for another zone"_s;
    click(button, u"Add Zone"_s);
    EXPECT_TRUE(announced({none})) << listener.shown(u"alert"_s).join(u'|').toStdString();
    static_cast<void>(control(u"alert"_s, none));
    // In place of the one that is still shown.
    click(button, u"Save Layout"_s);
    EXPECT_TRUE(announced({none, u"Layout saved"_s}))
        << listener.shown(u"alert"_s).join(u'|').toStdString();
}

TEST_F(AccessibleViews, OnlyTheChosenTabIsSelectedAndItIsFocusedOnlyWhenItIs) {
    openSettings(u"General"_s);
    const auto tab = u"page tab"_s;
    for (const QString& name : {u"Layouts"_s, u"Manage"_s, u"General"_s, u"Accessibility"_s})
        EXPECT_EQ(control(tab, name).is(u"selected"_s), name == u"General"_s) << name.toStdString();
    ASSERT_TRUE(waitUntil([&] {
        if (focused().startsWith(u"combo box"_s))
            return true;
        desktop.input().tapKey(keysym::tab);
        return false;
    }));
    EXPECT_FALSE(control(tab, u"General"_s).is(u"focused"_s));
    EXPECT_TRUE(control(tab, u"General"_s).is(u"selected"_s));
}

TEST_F(AccessibleViews, TheEditorsMenuIsReadToo) {
    openSettings(u"Layouts"_s);
    click(button, u"Open"_s);
    static_cast<void>(control(u"popup menu"_s, u"Open"_s));
    EXPECT_FALSE(control(u"menu item"_s, u"Start from preset"_s).is(u"enabled"_s));
    EXPECT_TRUE(control(u"menu item"_s, u"Halves"_s).is(u"enabled"_s));
    click(u"menu item"_s, u"Mine"_s);
    static_cast<void>(control(label, u"Editing"_s));
    static_cast<void>(control(button, u"Update Layout"_s));
    static_cast<void>(control(button, u"Save as New"_s));
}

TEST_F(AccessibleViews, TheManagerAsksInADialogThatTheKeyboardReaches) {
    openSettings(u"Manage"_s);
    expectEveryControlNamed();
    for (const QString& text : {u"Your Layouts"_s, u"Mine"_s, u"1 zones"_s, u"Built-in Layouts"_s,
                                u"Presets that ship with Tilewright."_s, u"Bento Box"_s})
        static_cast<void>(control(label, text));
    expectTabReachesEverything();
    click(button, u"Delete Mine"_s);
    static_cast<void>(
        control(label, u"This removes the layout and clears it from any displays using it."_s));
    static_cast<void>(control(label, u"Delete “Mine”?"_s));
    static_cast<void>(control(button, u"Delete"_s));
    EXPECT_TRUE(waitForState(button, u"Cancel"_s, u"focused"_s)) << "nothing is lost by Enter";
    desktop.input().tapKey(keysym::tab);
    EXPECT_TRUE(waitForState(button, u"Delete"_s, u"focused"_s));
    desktop.input().tapKey(keysym::escape);
    EXPECT_TRUE(waitUntil([&] { return !find(button, u"Cancel"_s); }));
    EXPECT_TRUE(desktop.layouts().contains("Mine"));
}

TEST_F(AccessibleViews, TheGeneralSettingsOfferTheModifierByKeyboard) {
    openSettings(u"General"_s);
    expectEveryControlNamed();
    // Qt gives the choice shown as the name, and ours as the description.
    EXPECT_EQ(control(u"combo box"_s, u"⌃ Control"_s).description, u"Snap modifier"_s);
    expectTabReachesEverything();
    ASSERT_TRUE(waitUntil([&] {
        if (focused().startsWith(u"combo box"_s))
            return true;
        desktop.input().tapKey(keysym::tab);
        return false;
    }));
    desktop.input().tapKey(keysym::down);
    static_cast<void>(control(u"combo box"_s, u"⇧ Shift"_s));
}

TEST_F(AccessibleViews, TheAccessibilitySettingsTellWhatIsMissing) {
    openSettings(u"Accessibility"_s);
    static_cast<void>(control(label, u"Accessibility access granted."_s));
    expectEveryControlNamed();
    // Nobody is left who could move a window.
    desktop.session().killWindowManager();
    static_cast<void>(control(label, u"Accessibility access is required for window snapping."_s));
    static_cast<void>(control(button, u"Open Privacy & Security Settings"_s));
    expectEveryControlNamed();
}

TEST_F(AccessibleViewsWithoutTrust, TabReachesTheWayToIt) {
    openSettings(u"Accessibility"_s);
    static_cast<void>(control(button, u"Open Privacy & Security Settings"_s));
    expectEveryControlNamed();
    expectTabReachesEverything();
}

} // namespace tilewright::testing
