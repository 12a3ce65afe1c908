#include "ShellUser.h"

#include <Waiting.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {

ShellUser::ShellUser(ShellDesktop& desktop)
    : desktop_(desktop)
    , reader_(desktop.session().environment()) {}

Subprocess& ShellUser::startProgram(std::map<QString, QString> moreEnvironment) {
    moreEnvironment.emplace(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
    program_ = &desktop_.startProgram({}, moreEnvironment);
    return *program_;
}

std::optional<AccessibleNode> ShellUser::find(const QString& role, const QString& name) {
    for (const AccessibleNode& node : reader_.showing(program_->pid())) {
        if ((role.isNull() || node.role == role) && (name.isNull() || node.name == name))
            return node;
    }
    return std::nullopt;
}

AccessibleNode ShellUser::waitUntilStill(const std::function<std::optional<AccessibleNode>()>& look,
                                         const QString& name) {
    std::optional<AccessibleNode> last;
    EXPECT_TRUE(waitUntil([&] {
        const std::optional<AccessibleNode> now = look();
        const bool isStill = now && last && now->frame == last->frame;
        last = now;
        return isStill;
    })) << name.toStdString()
        << " is not shown, but " << whatIsShown();
    return last.value_or(AccessibleNode());
}

std::string ShellUser::whatIsShown() {
    QStringList parts;
    for (const AccessibleNode& node : reader_.showing(program_->pid()))
        parts.append(node.role + u" \""_s + node.name + u"\" ("_s + node.states.join(u' ') + u')');
    return parts.join(u'\n').toStdString();
}

AccessibleNode ShellUser::place(const QString& role, const QString& name) {
    return waitUntilStill([&] { return find(role, name); }, name);
}

void ShellUser::click(const QString& role, const QString& name) {
    desktop_.input().click(place(role, name).frame.center());
}

void ShellUser::drag(const QString& role, const QString& name, QPoint by) {
    const QPoint from = place(role, name).frame.center();
    desktop_.input().move(from);
    desktop_.input().press();
    desktop_.input().glide(from, from + by, 15);
    desktop_.input().release();
}

void ShellUser::openSettings(const QString& tab) {
    const QRect panel = desktop_.openPanel();
    desktop_.input().click(ShellDesktop::settingsButton(panel));
    EXPECT_TRUE(desktop_.waitForPanel(false));
    EXPECT_TRUE(waitUntil([&] {
        const auto window = desktop_.settingsWindow();
        return window && desktop_.inspector().activeWindow() == *window;
    }));
    click(u"page tab"_s, tab);
}

void ShellUser::closeSettings() {
    const auto window = desktop_.settingsWindow();
    ASSERT_TRUE(window);
    static_cast<void>(outputOf(u"wmctrl"_s, {u"-i"_s, u"-c"_s, QString::number(*window)},
                               desktop_.session().environment()));
    EXPECT_TRUE(waitUntil([&] { return !desktop_.settingsWindow(); }));
}

void ShellUser::chooseBelow(int steps) {
    const std::size_t before = popups();
    click(u"combo box"_s, {});
    ASSERT_TRUE(waitUntil([&] { return popups() > before; }));
    for (int i = 0; i < steps; ++i)
        desktop_.input().tapKey(keysym::down);
    desktop_.input().tapKey(keysym::enter);
    EXPECT_TRUE(waitUntil([&] { return popups() == before; }));
}

std::size_t ShellUser::popups() {
    const XInspector& look = desktop_.inspector();
    std::size_t count = 0;
    for (const XInspector::Window window : look.windowsOf(program_->pid())) {
        if (look.isOverrideRedirect(window) && look.isMapped(window))
            ++count;
    }
    return count;
}

void ShellUser::quit() {
    const QRect panel = desktop_.openPanel();
    desktop_.input().click(ShellDesktop::quitButton(panel));
    EXPECT_TRUE(program_->waitForEnd());
    EXPECT_EQ(program_->exitCode(), 0);
}

} // namespace tilewright::testing
