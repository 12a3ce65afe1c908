// Where the desktop lacks what window control needs: the way that the Accessibility tab shows.

#include "ShellUser.h"

#include <ListeningSocket.h>
#include <Waiting.h>

#include <QFile>
#include <algorithm>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {

namespace {

/// The pictures that a window offers to those who list windows.
std::vector<QImage> icons(const XInspector& look, XInspector::Window window) {
    std::vector<QImage> pictures;
    const std::vector<quint32> items = look.property(window, "_NET_WM_ICON");
    for (std::size_t next = 0; next + 2 < items.size();) {
        const std::size_t width = items[next];
        const std::size_t height = items[next + 1];
        next += 2;
        if (width == 0 || height == 0 || width > (items.size() - next) / height)
            return {};
        QImage& picture = pictures.emplace_back(int(width), int(height), QImage::Format_ARGB32);
        for (std::size_t row = 0; row < height; ++row, next += width)
            std::copy_n(&items[next], width,
                        reinterpret_cast<quint32*>(picture.scanLine(int(row))));
    }
    return pictures;
}

/// Whether a window bears the program's icon: round corners, and a large amber tile.
bool bearsOurIcon(const XInspector& look, std::optional<XInspector::Window> window) {
    const std::vector<QImage> pictures = window ? icons(look, *window) : std::vector<QImage>();
    return std::any_of(pictures.begin(), pictures.end(), [](const QImage& picture) {
        const QColor tile = picture.pixelColor(15, 13);
        return picture.size() == QSize(48, 48) && picture.pixelColor(0, 0).alpha() == 0 &&
               tile.red() - tile.blue() > 100;
    });
}

} // namespace

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

TEST(GuidanceOnScreen, TheWindowBearsTheProgramsIconAsTheSettingsDo) {
    ShellDesktop desktop;
    desktop.startTray(TrayHost::systemTray);
    ShellUser user(desktop);
    const PretendedWaylandSession session;
    user.startProgram(session.environment());
    user.openSettings(u"Accessibility"_s);
    user.click(u"button"_s, u"Open Privacy & Security Settings"_s);
    user.place(u"label"_s, u"Windows cannot be moved in this session"_s);
    const XInspector& look = desktop.inspector();
    EXPECT_TRUE(bearsOurIcon(look, look.clientTitled(u"Set Up Window Snapping"_s)));
    EXPECT_TRUE(bearsOurIcon(look, desktop.settingsWindow()));
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
