// The keep-awake control in a real window, used by pointer and keyboard and read by a client of the
// accessibility bus.

#include "KeepAwakeDesktop.h"

#include <AccessibilityReader.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using namespace tilewright::testing;

namespace {

const auto allowed = u"Display sleep allowed"_s;

QProcessEnvironment accessible(QProcessEnvironment environment) {
    AccessibilityReader::enable(environment);
    return environment;
}

class KeepAwakeControlWindow : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.session().startWindowManager(WindowManagerKind::openbox));
        host.emplace(accessible(desktop.environment()), QStringList{u"--control"_s});
        ASSERT_TRUE(waitUntil([&] { return isInPlace(); }));
    }

    /// Whether the window manager has placed the window and its parts' places are told accordingly.
    bool isInPlace() {
        const auto& inspector = desktop.session().inspector();
        const auto window = inspector.clientTitled(u"Keep Awake Control"_s);
        const auto title = find(u"label"_s, u"Keep Awake"_s);
        if (!window || !title || !says(allowed))
            return false;
        constexpr int padding = 16;
        const QPoint place = title->frame.topLeft() - inspector.clientFrame(*window).topLeft();
        return place.x() == padding && place.y() >= padding && place.y() < 2 * padding;
    }

    std::optional<AccessibleNode> find(const QString& role, const QString& name) {
        return reader.find(host->pid(), role, name);
    }
    bool says(const QString& text) { return find(u"label"_s, text).has_value(); }
    /// The status line; empty while it cannot be read.
    QString status() {
        QStringList texts;
        for (const AccessibleNode& node : reader.showing(host->pid())) {
            if (node.role == u"label"_s)
                texts.append(node.name);
        }
        return texts.value(1);
    }
    bool isSwitchedOn() {
        const auto toggle = find(u"check box"_s, u"Keep Awake"_s);
        return toggle && toggle->is(u"checked"_s);
    }
    bool hasFocus(const QString& role, const QString& name) {
        const auto node = find(role, name);
        return node && node->is(u"focused"_s);
    }
    bool hasSessionRow() { return find(buttonRole, u"15m"_s).has_value(); }

    void click(const QString& role, const QString& name) {
        const auto node = find(role, name);
        ASSERT_TRUE(node) << name.toStdString();
        desktop.session().input().click(node->frame.center());
    }
    void press(quint32 key) { desktop.session().input().tapKey(key); }

    void expectActiveLook(const QString& text) {
        EXPECT_TRUE(waitUntil([&] { return says(text); })) << text.toStdString();
        EXPECT_TRUE(waitUntil([&] { return isSwitchedOn() && !hasSessionRow(); }));
        EXPECT_TRUE(host->isActive());
    }
    void expectInactiveLook() {
        EXPECT_TRUE(waitUntil([&] { return says(allowed); }));
        EXPECT_TRUE(waitUntil([&] { return !isSwitchedOn() && hasSessionRow(); }));
        EXPECT_FALSE(host->isActive());
    }

    const QString buttonRole = u"button"_s;
    KeepAwakeDesktop desktop;
    AccessibilityReader reader{desktop.environment()};
    std::optional<KeepAwakeHost> host;
};

} // namespace

TEST_F(KeepAwakeControlWindow, StartsAQuarterOfAnHourByAClickAndEndsItByTheSwitch) {
    click(buttonRole, u"15m"_s);
    // A second may pass before this is read.
    EXPECT_TRUE(waitUntil([&] {
        const QString text = status();
        return text == u"Active \u2014 15:00 remaining"_s ||
               text == u"Active \u2014 14:59 remaining"_s;
    }));
    expectActiveLook(u"Active \u2014 14:58 remaining"_s);
    click(u"check box"_s, u"Keep Awake"_s);
    expectInactiveLook();
    click(u"check box"_s, u"Keep Awake"_s);
    expectActiveLook(u"Active \u2014 indefinitely"_s);
    click(u"check box"_s, u"Keep Awake"_s);
    expectInactiveLook();
}

TEST_F(KeepAwakeControlWindow, IsUsedByKeysAlone) {
    const auto toggle = u"check box"_s;
    // Some window managers do not give every new window the focus.
    click(u"label"_s, u"Keep Awake"_s);
    ASSERT_TRUE(waitUntil([&] {
        if (hasFocus(toggle, u"Keep Awake"_s))
            return true;
        press(keysym::tab);
        return false;
    }));
    press(keysym::space);
    expectActiveLook(u"Active \u2014 indefinitely"_s);
    press(keysym::enter);
    expectInactiveLook();
    for (const QString& label : {u"15m"_s, u"1h"_s, u"2h"_s}) {
        press(keysym::tab);
        EXPECT_TRUE(waitUntil([&] { return hasFocus(buttonRole, label); })) << label.toStdString();
    }
    press(keysym::enter);
    EXPECT_TRUE(waitUntil([&] { return status().startsWith(u"Active \u2014 1"_s); }));
    EXPECT_TRUE(waitUntil([&] { return hasFocus(toggle, u"Keep Awake"_s); }));
    press(keysym::space);
    expectInactiveLook();
}

TEST_F(KeepAwakeControlWindow, CountsATimedSessionDownToItsEnd) {
    EXPECT_TRUE(host->startTimed(5));
    QStringList seen;
    EXPECT_TRUE(waitUntil([&] {
        const QString now = status();
        if (!now.isEmpty() && (seen.isEmpty() || seen.last() != now))
            seen.append(now);
        return now == allowed && seen.size() > 1;
    }));
    QStringList expected;
    for (int seconds = 5; seconds > 0; --seconds)
        expected.append(u"Active \u2014 0:0%1 remaining"_s.arg(seconds));
    expected.append(allowed);
    // The first text may have passed before the first look.
    if (seen.first() == expected[1])
        expected.removeFirst();
    EXPECT_EQ(seen, expected) << seen.join(u", "_s).toStdString();
    expectInactiveLook();
}

TEST_F(KeepAwakeControlWindow, TellsAScreenReaderWhatTheButtonsDo) {
    const auto button = find(buttonRole, u"1h"_s);
    ASSERT_TRUE(button);
    EXPECT_EQ(button->description, u"Keeps the display awake for 1 hour"_s);
    EXPECT_TRUE(button->is(u"focusable"_s));
    EXPECT_TRUE(button->is(u"enabled"_s));
    const auto toggle = find(u"check box"_s, u"Keep Awake"_s);
    ASSERT_TRUE(toggle);
    EXPECT_TRUE(toggle->is(u"focusable"_s)) << toggle->states.join(u' ').toStdString();
    EXPECT_FALSE(toggle->is(u"checked"_s));
}

TEST_F(KeepAwakeControlWindow, StaysAsItWasWhenTheDesktopRefuses) {
    desktop.startService(u"org.freedesktop.ScreenSaver"_s,
                         {u"--path"_s, u"/org/freedesktop/ScreenSaver"_s, u"--interface"_s,
                          u"org.freedesktop.ScreenSaver"_s, u"--refuse"_s});
    click(buttonRole, u"2h"_s);
    EXPECT_TRUE(waitUntil([&] { return desktop.asked(u"org.freedesktop.ScreenSaver"_s) == 1; }));
    expectInactiveLook();
    click(u"check box"_s, u"Keep Awake"_s);
    EXPECT_TRUE(waitUntil([&] { return desktop.asked(u"org.freedesktop.ScreenSaver"_s) == 2; }));
    expectInactiveLook();
}
