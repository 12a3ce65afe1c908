// Where the desktop lacks what window control needs: the way that the Accessibility tab shows.

#include "ShellUser.h"

#include <ListeningSocket.h>
#include <Waiting.h>

#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {

TEST(GuidanceOnScreen, TheAccessibilityTabOpensAWindowThatSaysWhatAWaylandSessionLacks) {
    ShellDesktop desktop;
    desktop.startTray(TrayHost::systemTray);
    ShellUser user(desktop);
    const PretendedWaylandSession session;
    const Subprocess& program = user.startProgram(session.environment());
    user.openSettings(u"Accessibility"_s);
    user.click(u"button"_s, u"Open Privacy & Security Settings"_s);
    user.place(u"label"_s, u"Windows cannot be moved in this session"_s);
    user.click(u"button"_s, u"Close"_s);
    EXPECT_TRUE(waitUntil(
        [&] { return !user.find(u"label"_s, u"Windows cannot be moved in this session"_s); }));
    EXPECT_TRUE(program.isRunning());
}

TEST(GuidanceOnScreen, TheWindowFollowsTheWindowManagerAndOpensTheDesktopsOwnSettings) {
    ShellDesktop desktop;
    desktop.startTray(TrayHost::systemTray);
    ShellUser user(desktop);
    const QString folder = desktop.session().home() + u"/bin"_s;
    const QString settings = folder + u"/lxqt-config-session"_s;
    const QString note = desktop.session().home() + u"/opened"_s;
    writeFile(settings, "#!/bin/sh\ntouch '" + note.toUtf8() + "'\n");
    QFile::setPermissions(settings, QFile::ReadOwner | QFile::ExeOwner);
    user.startProgram(
        {{u"XDG_CURRENT_DESKTOP"_s, u"LXQt"_s},
         {u"PATH"_s, folder + u':' + desktop.session().environment().value(u"PATH"_s)}});
    user.openSettings(u"Accessibility"_s);
    desktop.session().killWindowManager();
    user.click(u"button"_s, u"Open Privacy & Security Settings"_s);
    user.place(u"label"_s, u"There is no window manager"_s);
    user.click(u"button"_s, u"Open Settings"_s);
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(note); }));
    ASSERT_TRUE(desktop.session().startWindowManager(WindowManagerKind::openbox));
    user.place(u"label"_s, u"Everything is in place"_s);
    EXPECT_FALSE(user.find(u"button"_s, u"Open Settings"_s));
}

} // namespace tilewright::testing
