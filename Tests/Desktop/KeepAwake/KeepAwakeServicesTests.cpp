// Keep-awake on services that desktops really run, asked by a client that is not ours.

#include "KeepAwakeDesktop.h"

#include <PlasmaPrograms.h>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using namespace tilewright::testing;

namespace {

/// A program of a desktop that keeps a list of who inhibits idling.
struct Service {
    QString program;
    QStringList arguments;
    QString name;
    QString path;
    QString query;
    /// What the answer to the query contains while somebody inhibits.
    QString inhibited;
};

const Service mateScreenSaver{u"mate-screensaver"_s,
                              {u"--no-daemon"_s},
                              u"org.mate.ScreenSaver"_s,
                              u"/org/mate/ScreenSaver"_s,
                              u"org.mate.ScreenSaver.GetInhibitors"_s,
                              u"Tilewright"_s};
const Service powerDevil{plasmaProgram(u"org_kde_powerdevil"_s),
                         {},
                         u"org.freedesktop.PowerManagement"_s,
                         u"/org/freedesktop/PowerManagement/Inhibit"_s,
                         u"org.freedesktop.PowerManagement.Inhibit.HasInhibit"_s,
                         u"true"_s};
const Service xfcePowerManager{u"xfce4-power-manager"_s,
                               {u"--no-daemon"_s},
                               u"org.freedesktop.PowerManagement"_s,
                               u"/org/freedesktop/PowerManagement/Inhibit"_s,
                               u"org.freedesktop.PowerManagement.Inhibit.HasInhibit"_s,
                               u"true"_s};

class RealService : public KeepAwakeDesktop {
public:
    explicit RealService(const Service& service)
        : service_(service) {
        // Xfce's asks at its start who shows messages, and waits for the answer. Where Plasma is
        // installed too, what is started for that waits for Plasma, beyond any patience.
        const QString messages = u"org.freedesktop.Notifications"_s;
        startService(messages, {u"--path"_s, u"/org/freedesktop/Notifications"_s, u"--interface"_s,
                                messages});
        start();
    }

    void start() {
        process_ = &session().start(service_.program, service_.arguments);
        EXPECT_TRUE(waitUntil([&] { return answer().has_value(); }))
            << service_.program.toStdString();
    }

    void killAndRestart() {
        process_->stop();
        EXPECT_TRUE(waitUntil([&] { return !isOnBus(service_.name); }));
        start();
    }

    [[nodiscard]] bool becomes(bool inhibited) {
        return waitUntil([&] {
            const auto now = answer();
            return now && now->contains(service_.inhibited) == inhibited;
        });
    }

private:
    [[nodiscard]] std::optional<QString> answer() {
        return ask(service_.name, service_.path, service_.query);
    }

    const Service& service_;
    Subprocess* process_ = nullptr;
};

void expectInhibitionOfASession(RealService& service, KeepAwakeHost& host) {
    EXPECT_TRUE(service.becomes(false));
    EXPECT_TRUE(host.startIndefinite());
    EXPECT_TRUE(service.becomes(true));
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(service.becomes(false));
}

void expectInhibitionAfterARestart(RealService& service, KeepAwakeHost& host) {
    EXPECT_TRUE(host.startIndefinite());
    EXPECT_TRUE(service.becomes(true));
    service.killAndRestart();
    EXPECT_TRUE(service.becomes(true));
    EXPECT_TRUE(host.isActive());
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(service.becomes(false));
}

void expectNoInhibitionOfTheDead(RealService& service, KeepAwakeHost& host) {
    EXPECT_TRUE(host.startIndefinite());
    EXPECT_TRUE(service.becomes(true));
    host.kill();
    EXPECT_TRUE(service.becomes(false));
}

} // namespace

TEST(KeepAwakeUnderMateScreenSaver, InhibitsItWhileASessionRunsAndAfterItsRestartButNotAfterDeath) {
    RealService service(mateScreenSaver);
    KeepAwakeHost host(service.environment());
    expectInhibitionOfASession(service, host);
    expectInhibitionAfterARestart(service, host);
    expectNoInhibitionOfTheDead(service, host);
}

TEST(KeepAwakeUnderPowerDevil, InhibitsItWhileASessionRunsAndAfterItsRestartButNotAfterDeath) {
    RealService service(powerDevil);
    KeepAwakeHost host(service.environment());
    expectInhibitionOfASession(service, host);
    expectInhibitionAfterARestart(service, host);
    expectNoInhibitionOfTheDead(service, host);
}

// This power manager corrupts its own memory when an inhibition ends and dies of it soon after:
// what it can be asked is whether it is inhibited. It takes its name before its object is there.
TEST(KeepAwakeUnderXfcePowerManager, InhibitsItWhileASessionRunsAndAfterItsRestart) {
    RealService service(xfcePowerManager);
    KeepAwakeHost host(service.environment());
    EXPECT_TRUE(service.becomes(false));
    EXPECT_TRUE(host.startIndefinite());
    EXPECT_TRUE(service.becomes(true));
    service.killAndRestart();
    EXPECT_TRUE(service.becomes(true));
}

TEST(KeepAwakeUnderMateScreenSaver, GivesTheInhibitionBackWhenATimedSessionEnds) {
    RealService service(mateScreenSaver);
    KeepAwakeHost host(service.environment());
    EXPECT_TRUE(host.startTimed(3));
    EXPECT_TRUE(service.becomes(true));
    EXPECT_TRUE(service.becomes(false));
    EXPECT_FALSE(host.isActive());
}

class KeepAwakeUnderTheXServer : public ::testing::Test {
protected:
    KeepAwakeDesktop desktop;
    KeepAwakeHost host{desktop.environment()};
};

TEST_F(KeepAwakeUnderTheXServer, KeepsItsScreenSaverOffWhileASessionRuns) {
    EXPECT_TRUE(host.startIndefinite());
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(staysTrue([&] { return !desktop.isBlanked(); }, 4s));
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeUnderTheXServer, LetsItsScreenSaverComeOnOnceTheProcessIsKilled) {
    EXPECT_TRUE(host.startIndefinite());
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(staysTrue([&] { return !desktop.isBlanked(); }, 3s));
    host.kill();
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeUnderTheXServer, RunsWithoutASessionBus) {
    QProcessEnvironment environment = desktop.environment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent/bus"_s);
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, u"unix:path=/nonexistent/bus"_s);
    KeepAwakeHost alone(environment);
    EXPECT_TRUE(alone.startIndefinite());
    desktop.blankAfterOneSecond();
    EXPECT_TRUE(staysTrue([&] { return !desktop.isBlanked(); }, 3s));
    EXPECT_FALSE(alone.deactivate());
    EXPECT_TRUE(waitUntil([&] { return desktop.isBlanked(); }));
}

TEST_F(KeepAwakeUnderTheXServer, OutlivesItsSessionBus) {
    EXPECT_TRUE(host.startIndefinite());
    desktop.session().bus().stop();
    EXPECT_TRUE(host.isActive());
    EXPECT_FALSE(host.deactivate());
    EXPECT_TRUE(host.startIndefinite());
    EXPECT_TRUE(host.isRunning());
}
