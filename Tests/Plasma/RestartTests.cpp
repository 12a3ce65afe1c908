// The real program in a session whose KWin ends and comes back, or does not.

#include "PassingCompositor.h"
#include "ProgramInPlasma.h"

#include <Platform/QtMainLoop.h>
#include <RecordingIdleService.h>
#include <Tilewright/Legacy.h>

#include <QFile>
#include <csignal>

namespace tilewright::testing {
namespace {

struct ProgramWithoutKWin : ProgramInPlasma {
    /// Starts a keep-awake session by the panel, whose first control is the switch.
    void keepAwake() {
        openPanel();
        session.input().tap(KernelKey::space);
        ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); })) << session.describe();
        session.input().tap(KernelKey::escape);
        ASSERT_TRUE(waitUntil([&] { return session.frame(panelTitle).isEmpty(); }));
    }
    /// Has the program begin its life with what a former one has handed on.
    void startWith(const Legacy& former) {
        program->signal(SIGTERM);
        ASSERT_TRUE(program->waitForEnd());
        program = &session.start(QStringLiteral(TILEWRIGHT_PROGRAM),
                                 {QString::fromStdString(former.asArgument())});
        ASSERT_TRUE(waitUntil([&] { return idle.isInhibited(); })) << session.describe();
    }
    /// What the program has handed on to itself, once it has begun anew.
    [[nodiscard]] std::optional<Legacy> legacy() const {
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(program->pid()));
        if (!commandLine.open(QIODevice::ReadOnly))
            return std::nullopt;
        QList<QByteArray> arguments = commandLine.readAll().split('\0');
        std::vector<char*> pointers;
        for (QByteArray& argument : arguments)
            pointers.push_back(argument.data());
        return Legacy::in(pointers);
    }
    void endKWin() {
        const std::optional<Legacy> former = legacy();
        session.killCompositor();
        EXPECT_TRUE(waitUntil([&] { return legacy() && legacy() != former; }))
            << session.describe();
        EXPECT_TRUE(waitUntil([&] { return !idle.isInhibited(); }));
        EXPECT_TRUE(program->isRunning());
    }
    /// One comes that is gone again while the program makes Qt's application object.
    void haveKWinPass(PassingCompositor::Gone gone) {
        QDBusConnection bus = session.bus();
        const std::optional<Legacy> former = legacy();
        PassingCompositor kwin(session.socketPath(), gone);
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.kde.KWin")));
        EXPECT_TRUE(waitUntil([&] { return kwin.isGone(); })) << session.describe();
        // Only then has the program surely seen that this one was on the bus, too.
        EXPECT_TRUE(waitUntil([&] { return legacy() && legacy() != former; }))
            << session.describe();
        EXPECT_TRUE(bus.unregisterService(QStringLiteral("org.kde.KWin")));
        EXPECT_TRUE(program->isRunning());
    }
    void startKWin() {
        session.startCompositor();
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It greets once it has heard of the effects, which KWin tells one after the other.
        session.tell(QStringLiteral("0"));
    }

    RecordingIdleService idle{session.busAddress()};
};

} // namespace

TEST_F(ProgramWithoutKWin, GoesOnWithTheNextOneAsIfThereHadBeenNoDragAndKeepsTheComputerAwake) {
    keepAwake();
    dragToFirstZone(session.startClient(CompositorClient::qt, start));
    endKWin();
    startKWin();
    EXPECT_TRUE(waitUntil([&] { return idle.isInhibited(); })) << session.describe();
    EXPECT_EQ(idle.releases(), 0) << "it began anew";

    const QString title = session.startClient(CompositorClient::qt, start);
    EXPECT_TRUE(session.frame(panelTitle).isEmpty());
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(0).center());
    EXPECT_FALSE(isHighlighted(zone(0))) << "nothing is dragged";
    session.input().releaseKey(KernelKey::control);

    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    startAgain();
    EXPECT_TRUE(waitUntil([&] { return !session.frame(panelTitle).isEmpty(); }))
        << "it is the one instance";
    EXPECT_TRUE(program->isRunning());
}

TEST_F(ProgramWithoutKWin, KeepsTheComputerAwakeUntilTheMomentThatTheUserHasChosen) {
    const Legacy::Session former{KeepAwakeSession::timed(900),
                                 QtMainLoop().now() + std::chrono::seconds(100)};
    startWith({0, former});
    for (int lives = 1; lives <= 2; ++lives) {
        endKWin();
        const std::optional<Legacy> handedOn = legacy();
        ASSERT_TRUE(handedOn && handedOn->session);
        EXPECT_EQ(handedOn->shortLives, lives);
        EXPECT_EQ(handedOn->session->session, former.session);
        EXPECT_NEAR(double(handedOn->session->end.count()), double(former.end.count()), 2000);
        startKWin();
        EXPECT_TRUE(waitUntil([&] { return idle.isInhibited(); })) << session.describe();
    }
}

TEST_F(ProgramWithoutKWin, LivesOnWhenTheNextOneEndsWhileItBeginsAnew) {
    keepAwake();
    endKWin();
    haveKWinPass(PassingCompositor::Gone::beforeTheNext);
    haveKWinPass(PassingCompositor::Gone::withTheNext);
    startKWin();
    EXPECT_TRUE(waitUntil([&] { return idle.isInhibited(); })) << session.describe();
}

TEST_F(ProgramWithoutKWin, EndsWhenItIsToldTo) {
    endKWin();
    program->signal(SIGTERM);
    EXPECT_TRUE(program->waitForEnd());
    EXPECT_EQ(program->exitCode(), -1) << "not for want of a KWin";
}

TEST_F(ProgramWithoutKWin, EndsWhenNoOtherComes) {
    keepAwake();
    endKWin();
    constexpr int longerThanItHopes = 90'000;
    EXPECT_TRUE(program->waitForEnd(longerThanItHopes));
    EXPECT_FALSE(idle.isInhibited());
}

} // namespace tilewright::testing
