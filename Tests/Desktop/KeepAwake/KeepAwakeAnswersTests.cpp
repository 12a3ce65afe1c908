// Keep-awake on services that answer in every way they may: late, never, no, elsewhere.

#include "KeepAwakeDesktop.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using namespace tilewright::testing;

namespace {

const auto screenSaver = u"org.freedesktop.ScreenSaver"_s;
const auto powerManagement = u"org.freedesktop.PowerManagement"_s;
const auto sessionManager = u"org.gnome.SessionManager"_s;
const auto portal = u"org.freedesktop.portal.Desktop"_s;
const auto loginManager = u"org.freedesktop.login1"_s;

const QStringList screenSaverObject{u"--path"_s, u"/org/freedesktop/ScreenSaver"_s,
                                    u"--interface"_s, screenSaver};
const QStringList powerManagementObject{u"--path"_s, u"/org/freedesktop/PowerManagement/Inhibit"_s,
                                        u"--interface"_s,
                                        u"org.freedesktop.PowerManagement.Inhibit"_s};
const QStringList portalObject{u"--path"_s,      u"/org/freedesktop/portal/desktop"_s,
                               u"--interface"_s, u"org.freedesktop.portal.Inhibit"_s,
                               u"--kind"_s,      u"portal"_s};
const QStringList loginManagerObject{u"--path"_s,      u"/org/freedesktop/login1"_s,
                                     u"--interface"_s, u"org.freedesktop.login1.Manager"_s,
                                     u"--kind"_s,      u"login"_s};
const QStringList lateByASecond{u"--delay"_s, u"1000"_s};
const QStringList never{u"--delay"_s, u"100000000"_s};
const QStringList refusing{u"--refuse"_s};

class KeepAwakeAnswers : public ::testing::Test {
protected:
    bool becomes(const QString& service, int count) {
        return waitUntil([&] { return desktop.held(service) == count; });
    }

    /// Starts a session. A service that the machine keeps waiting may answer later than the program
    /// waits for; its user tries again.
    bool begins() {
        return waitUntil([&] { return host.startIndefinite(); });
    }

    QString lastCall(const QString& service) {
        return desktop.ask(service, u"/test"_s, u"test.IdleService.Last"_s).value_or(QString());
    }

    KeepAwakeDesktop desktop;
    KeepAwakeHost host{desktop.environment()};
};

} // namespace

TEST_F(KeepAwakeAnswers, EveryServiceIsHeldAndGivenBackTogether) {
    desktop.startService(screenSaver, screenSaverObject);
    desktop.startService(powerManagement, powerManagementObject);
    desktop.startService(sessionManager,
                         {u"--path"_s, u"/org/gnome/SessionManager"_s, u"--interface"_s,
                          sessionManager, u"--kind"_s, u"manager"_s});
    desktop.startService(portal, portalObject);
    desktop.startService(loginManager, loginManagerObject);
    const QStringList services{screenSaver, powerManagement, sessionManager, portal, loginManager};
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(begins());
        for (const QString& service : services)
            EXPECT_TRUE(becomes(service, 1)) << service.toStdString();
        EXPECT_FALSE(host.deactivate());
        for (const QString& service : services)
            EXPECT_TRUE(becomes(service, 0)) << service.toStdString();
    }
    EXPECT_EQ(lastCall(screenSaver), u"('Tilewright', 'Tilewright keep-awake')"_s);
    EXPECT_EQ(lastCall(sessionManager), u"('Tilewright', 0, 'Tilewright keep-awake', 8)"_s);
    EXPECT_TRUE(lastCall(portal).contains(u"'reason': <'Tilewright keep-awake'>"_s));
    EXPECT_EQ(lastCall(loginManager),
              u"('idle', 'Tilewright', 'Tilewright keep-awake', 'block')"_s);
}

TEST_F(KeepAwakeAnswers, EveryServiceIsFreeOnceTheProcessIsKilled) {
    desktop.startService(screenSaver, screenSaverObject);
    desktop.startService(loginManager, loginManagerObject);
    EXPECT_TRUE(begins());
    EXPECT_TRUE(becomes(screenSaver, 1));
    EXPECT_TRUE(becomes(loginManager, 1));
    host.kill();
    EXPECT_TRUE(becomes(screenSaver, 0));
    EXPECT_TRUE(becomes(loginManager, 0));
}

TEST_F(KeepAwakeAnswers, ReplacingASessionLeavesOneInhibition) {
    desktop.startService(screenSaver, screenSaverObject);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(waitUntil([&] { return host.startTimed(900); }));
    EXPECT_TRUE(waitUntil([&] { return desktop.asked(screenSaver) >= 5; }));
    EXPECT_TRUE(becomes(screenSaver, 1));
}

TEST_F(KeepAwakeAnswers, ALateAcceptanceIsKeptWhileTheSessionRuns) {
    desktop.startService(screenSaver, screenSaverObject);
    desktop.startService(powerManagement, powerManagementObject + lateByASecond);
    EXPECT_TRUE(begins());
    EXPECT_TRUE(becomes(powerManagement, 1));
    EXPECT_TRUE(host.isActive());
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(becomes(powerManagement, 0));
}

TEST_F(KeepAwakeAnswers, ALateAcceptanceIsGivenBackWhenTheSessionHasEnded) {
    desktop.startService(screenSaver, screenSaverObject);
    desktop.startService(powerManagement, powerManagementObject + lateByASecond);
    EXPECT_TRUE(begins());
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(waitUntil([&] { return desktop.granted(powerManagement) == 1; }));
    EXPECT_TRUE(becomes(powerManagement, 0));
}

TEST_F(KeepAwakeAnswers, AServiceThatIsTooLateStartsNoSessionAndIsFreeAgain) {
    desktop.startService(screenSaver, screenSaverObject + lateByASecond);
    EXPECT_FALSE(host.startIndefinite());
    EXPECT_TRUE(waitUntil([&] { return desktop.granted(screenSaver) == 1; }));
    EXPECT_TRUE(becomes(screenSaver, 0));
    EXPECT_FALSE(host.isActive());
}

TEST_F(KeepAwakeAnswers, AServiceThatNeverAnswersDoesNotKeepTheOthersFromCounting) {
    desktop.startService(screenSaver, screenSaverObject + never);
    desktop.startService(powerManagement, powerManagementObject);
    EXPECT_TRUE(begins());
    EXPECT_TRUE(becomes(powerManagement, 1));
}

TEST_F(KeepAwakeAnswers, ARefusalStartsNoSessionAndLetsTheScreenSaverBe) {
    desktop.startService(screenSaver, screenSaverObject + refusing);
    EXPECT_FALSE(host.startIndefinite());
    EXPECT_EQ(desktop.asked(screenSaver), 1);
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeAnswers, ARefusalOfOneIsMadeUpForByAnother) {
    desktop.startService(screenSaver, screenSaverObject + refusing);
    desktop.startService(loginManager, loginManagerObject);
    EXPECT_TRUE(begins());
    EXPECT_TRUE(becomes(loginManager, 1));
}

TEST_F(KeepAwakeAnswers, AScreenSaverIsFoundAtItsOlderPath) {
    desktop.startService(screenSaver,
                         {u"--path"_s, u"/ScreenSaver"_s, u"--interface"_s, screenSaver});
    EXPECT_TRUE(begins());
    EXPECT_TRUE(becomes(screenSaver, 1));
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(becomes(screenSaver, 0));
}

TEST_F(KeepAwakeAnswers, ThePortalsRefusalAfterItsReplyStartsNoSession) {
    desktop.startService(portal, portalObject + refusing);
    EXPECT_FALSE(host.startIndefinite());
    EXPECT_EQ(desktop.asked(portal), 1);
}

TEST_F(KeepAwakeAnswers, AServiceWithoutSuchAMethodDoesNotCountAsOne) {
    desktop.startService(screenSaver,
                         {u"--path"_s, u"/elsewhere"_s, u"--interface"_s, u"test.Other"_s});
    EXPECT_TRUE(begins());
    EXPECT_EQ(desktop.held(screenSaver), 0);
}

TEST_F(KeepAwakeAnswers, AServiceThatAppearsDuringTheSessionIsAskedToo) {
    EXPECT_TRUE(begins());
    desktop.startService(screenSaver, screenSaverObject);
    EXPECT_TRUE(becomes(screenSaver, 1));
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(becomes(screenSaver, 0));
}

TEST_F(KeepAwakeAnswers, AServiceThatTakesItsNameBeforeItsObjectIsThereIsAskedAgain) {
    EXPECT_TRUE(begins());
    desktop.startService(screenSaver,
                         screenSaverObject + QStringList{u"--object-late"_s, u"1000"_s});
    EXPECT_TRUE(becomes(screenSaver, 1));
    EXPECT_EQ(desktop.granted(screenSaver), 1);
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(becomes(screenSaver, 0));
}

TEST_F(KeepAwakeAnswers, AServiceThatDiesBeforeItAnswersIsAskedAgainWhenItIsBack) {
    desktop.startService(powerManagement, powerManagementObject);
    Subprocess& dying = desktop.startService(screenSaver, screenSaverObject + never);
    EXPECT_TRUE(begins());
    EXPECT_TRUE(waitUntil([&] { return desktop.asked(screenSaver) == 1; }));
    dying.stop();
    EXPECT_TRUE(waitUntil([&] { return !desktop.isOnBus(screenSaver); }));
    desktop.startService(screenSaver, screenSaverObject);
    EXPECT_TRUE(becomes(screenSaver, 1));
    EXPECT_EQ(desktop.asked(screenSaver), 1);
}

TEST_F(KeepAwakeAnswers, AServiceThatComesAndGoesAfterTheSessionIsLeftAlone) {
    Subprocess& first = desktop.startService(screenSaver, screenSaverObject);
    EXPECT_TRUE(begins());
    EXPECT_FALSE(host.deactivate());
    first.stop();
    EXPECT_TRUE(waitUntil([&] { return !desktop.isOnBus(screenSaver); }));
    desktop.startService(screenSaver, screenSaverObject);
    EXPECT_FALSE(host.isActive());
    EXPECT_TRUE(staysTrue([&] { return desktop.asked(screenSaver) == 0; }, 500ms));
}

TEST(KeepAwakeActivation, NoServiceIsStartedForASession) {
    KeepAwakeDesktop desktop;
    const QString home = desktop.session().home();
    const QString marker = home + u"/started"_s;
    writeFile(home + u"/.local/share/dbus-1/services/saver.service"_s,
              "[D-BUS Service]\nName=org.freedesktop.ScreenSaver\nExec=/usr/bin/touch " +
                  marker.toUtf8() + "\n");
    const auto reload = [&] {
        return outputOf(u"dbus-send"_s,
                        {u"--session"_s, u"--print-reply"_s, u"--dest=org.freedesktop.DBus"_s,
                         u"/"_s, u"org.freedesktop.DBus.ReloadConfig"_s},
                        desktop.environment());
    };
    EXPECT_FALSE(reload().isEmpty());
    KeepAwakeHost host(desktop.environment());
    EXPECT_TRUE(host.startIndefinite());
    EXPECT_FALSE(host.deactivate());
    EXPECT_FALSE(QFile::exists(marker));
    // The bus would have started it for a caller that asks for it.
    (void)outputOf(u"dbus-send"_s,
                   {u"--session"_s, u"--dest=org.freedesktop.ScreenSaver"_s,
                    u"/org/freedesktop/ScreenSaver"_s, u"org.freedesktop.ScreenSaver.Lock"_s},
                   desktop.environment());
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(marker); }));
}
