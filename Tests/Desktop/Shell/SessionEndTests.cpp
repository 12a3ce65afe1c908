// The end of the user's session, as a session manager tells of it.

#include "ShellDesktop.h"

#include <Waiting.h>

#include <QFile>
#include <QProcess>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

class SessionEnd : public ::testing::Test {
protected:
    SessionEnd() {
        manager.setProcessEnvironment(desktop.session().environment());
        manager.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        manager.start(QStringLiteral(TILEWRIGHT_SESSION_MANAGER), {reportFile()});
        EXPECT_TRUE(waitUntil([&] { return manager.canReadLine(); }));
        const QString address = QString::fromUtf8(manager.readLine()).trimmed();
        desktop.startTray(TrayHost::systemTray);
        program = &desktop.startProgram({}, {{u"SESSION_MANAGER"_s, address}});
        // Registered, and its first state saved.
        EXPECT_TRUE(waitUntil([&] { return count("saved") == 1; })) << report().constData();
        desktop.startSession();
        EXPECT_TRUE(waitUntil([&] { return idle.isInhibited(); }));
    }
    ~SessionEnd() override {
        manager.kill();
        manager.waitForFinished();
    }

    [[nodiscard]] QString reportFile() { return desktop.session().home() + u"/session-report"_s; }
    [[nodiscard]] QByteArray report() {
        QFile file(reportFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] qsizetype count(const char* line) { return report().split('\n').count(line); }

    ShellDesktop desktop;
    RecordingIdleService idle{desktop.session().busAddress()};
    QProcess manager;
    Subprocess* program = nullptr;
};

} // namespace

TEST_F(SessionEnd, EndsTheKeepAwakeSessionAndTheProcessWhenTheUserLogsOut) {
    manager.write("log out\n");
    EXPECT_TRUE(program->waitForEnd());
    EXPECT_EQ(program->exitCode(), 0) << "it ended by itself";
    EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
    EXPECT_EQ(idle.releases(), 1) << "it gave back what it held before it went";
    EXPECT_TRUE(waitUntil([&] { return count("closed") == 1; })) << "it took leave";
    constexpr const char* never = "restarts 3";
    EXPECT_GE(count(never), 1) << "starting at login is the user's choice, made elsewhere:\n"
                               << report().constData();
}

TEST_F(SessionEnd, GoesOnWhenTheLogoutIsCancelled) {
    manager.write("cancel\n");
    EXPECT_TRUE(waitUntil([&] { return count("saved") == 2; }));
    EXPECT_FALSE(desktop.openPanel().isEmpty());
    EXPECT_TRUE(program->isRunning());
    EXPECT_TRUE(idle.isInhibited());
}

} // namespace tilewright::testing
