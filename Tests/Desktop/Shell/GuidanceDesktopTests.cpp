// Where the desktop lacks what window control needs: the way that the Accessibility tab shows.

#include "ShellUser.h"

#include <ListeningSocket.h>
#include <Waiting.h>

#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

class GuidanceOnScreen : public ::testing::Test {
protected:
    /// Puts a document handler of the test's own before those of the machine: it notes what it is
    /// asked to open, and on which platform Qt's programs are to run.
    QString pathWithHandler() {
        const QString folder = desktop.session().home() + u"/bin"_s;
        const QString handler = folder + u"/xdg-open"_s;
        writeFile(handler, "#!/bin/sh\n(echo \"$1\"; echo \"$QT_QPA_PLATFORM\") > '" +
                               notes().toUtf8() + ".new'\nmv '" + notes().toUtf8() + ".new' '" +
                               notes().toUtf8() + "'\n");
        QFile::setPermissions(handler, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return folder + u':' + desktop.session().environment().value(u"PATH"_s);
    }
    [[nodiscard]] QString notes() { return desktop.session().home() + u"/opened"_s; }

    ShellDesktop desktop;
};

} // namespace

TEST_F(GuidanceOnScreen, TheAccessibilityTabOpensAPageThatSaysWhatAWaylandSessionLacks) {
    desktop.startTray(TrayHost::systemTray);
    ShellUser user(desktop);
    const PretendedWaylandSession session;
    std::map<QString, QString> environment = session.environment();
    environment[u"PATH"_s] = pathWithHandler();
    environment[u"QT_QPA_PLATFORM"_s] = u"wayland"_s;
    const Subprocess& program = user.startProgram(environment);
    user.openSettings(u"Accessibility"_s);
    user.click(u"button"_s, u"Open Privacy & Security Settings"_s);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(notes()); }));
    QFile note(notes());
    ASSERT_TRUE(note.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(note.readAll()).split(u'\n');
    const QString page = lines.value(0);
    EXPECT_EQ(lines.value(1), u"wayland"_s) << "what serves this program is not the handler's";
    EXPECT_TRUE(page.endsWith(u"/tilewright/help/x11-session.html"_s)) << page.toStdString();
    QFile opened(page);
    ASSERT_TRUE(opened.open(QIODevice::ReadOnly)) << page.toStdString();
    EXPECT_TRUE(opened.readAll().contains("Windows can be moved in X11 sessions"));
    EXPECT_TRUE(program.isRunning());
}

} // namespace tilewright::testing
