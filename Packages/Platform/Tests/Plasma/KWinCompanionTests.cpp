#include "MockKWin.h"
#include "PrivateBus.h"

#include <Companion/CompanionBus.h>
#include <Platform/QtMainLoop.h>

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// Hears calls and answers none.
class SilentObject final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override {
        ++calls;
        return true;
    }

    int calls = 0;
};

class KWinCompanionTest : public ::testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<KWinCompanion> makeCompanion() {
        return std::make_unique<KWinCompanion>(own, folder.path());
    }
    [[nodiscard]] qsizetype files() const {
        return QDir(folder.path()).entryList(QDir::Files).size();
    }

    PrivateBus bus;
    QTemporaryDir folder;
    MessageBus own{bus.connect()};
};

} // namespace

TEST_F(KWinCompanionTest, IsHandedToTheKWinThatIsThereAndTakenBackAtTheEnd) {
    MockKWin kwin(bus.connect());
    auto companion = makeCompanion();
    EXPECT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
    EXPECT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::loaded; }));
    EXPECT_EQ(kwin.program, own.connection().baseService()) << "it calls nobody else";
    companion.reset();
    EXPECT_TRUE(waitUntil([&] { return !kwin.hasCompanion(); }));
    EXPECT_TRUE(waitUntil([&] { return kwin.unloadedEffects.size() == 4; }));
    EXPECT_EQ(kwin.unloadedEffects, KWinCompanion::keyEffects());
    EXPECT_EQ(files(), 0);
}

TEST_F(KWinCompanionTest, TakesAwayWhatAFormerLifeOfItsProcessHasLeft) {
    const qint64 pid = QCoreApplication::applicationPid();
    const auto write = [&](qint64 process) {
        QFile file(folder.filePath(QStringLiteral("tilewright-%1-abcdef.js").arg(process)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    };
    write(pid);
    write(pid + 1);
    auto companion = makeCompanion();
    EXPECT_EQ(files(), 1);
    MockKWin kwin(bus.connect());
    EXPECT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
    const QStringList names = {QStringLiteral("tilewright-%1-*.js").arg(pid)};
    EXPECT_EQ(QDir(folder.path()).entryList(names, QDir::Files).size(), 1);
    companion.reset();
    EXPECT_EQ(files(), 1) << "another process's";
}

TEST_F(KWinCompanionTest, IsHandedToEveryKWinThatComes) {
    const auto companion = makeCompanion();
    EXPECT_EQ(companion->state(), KWinCompanion::State::unknown);
    for (int i = 0; i < 3; ++i) {
        MockKWin kwin(bus.connect());
        EXPECT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
        EXPECT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::loaded; }));
        kwin.leave();
        EXPECT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::unknown; }));
    }
}

TEST_F(KWinCompanionTest, IsHandedAnewToAKWinThatHasForgottenItsEffects) {
    MockKWin kwin(bus.connect());
    const auto companion = makeCompanion();
    ASSERT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::loaded; }));
    kwin.restartCompositing();
    EXPECT_TRUE(waitUntil(
        [&] { return kwin.loads == 2 && companion->state() == KWinCompanion::State::loaded; }));
    EXPECT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
}

TEST_F(KWinCompanionTest, IsHandedOutOneAtATimeHoweverOftenKWinForgets) {
    MockKWin kwin(bus.connect());
    const auto companion = makeCompanion();
    kwin.onCompanion = [&] {
        kwin.onCompanion = nullptr;
        for (int i = 0; i < 3; ++i)
            kwin.restartCompositing();
    };
    ASSERT_TRUE(waitUntil([&] { return kwin.loads >= 2; }));
    const auto isThere = [&] {
        return kwin.hasCompanion() && companion->state() == KWinCompanion::State::loaded;
    };
    EXPECT_TRUE(waitUntil(isThere));
    EXPECT_TRUE(staysTrue(isThere, std::chrono::milliseconds(200)));
}

TEST_F(KWinCompanionTest, IsHandedAtOnceToTheKWinThatTakesThePlaceOfOneThatHangs) {
    SilentObject silence;
    QDBusConnection hanging = bus.connect();
    ASSERT_TRUE(hanging.registerVirtualObject(QStringLiteral("/Scripting"), &silence));
    ASSERT_TRUE(hanging.registerService(KWinCompanion::compositorName()));
    const auto companion = makeCompanion();
    ASSERT_TRUE(waitUntil([&] { return silence.calls > 0; }));
    ASSERT_TRUE(hanging.unregisterService(KWinCompanion::compositorName()));
    const MockKWin kwin(bus.connect());
    // Long before the bus gives up on the one that hangs.
    EXPECT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::loaded; },
                          std::chrono::seconds(10)));
}

TEST_F(KWinCompanionTest, TakesThePlaceOfOneThatAKilledProgramLeftBehind) {
    MockKWin kwin(bus.connect());
    kwin.running[KWinCompanion::scriptName()] = QStringLiteral("the former one");
    const auto companion = makeCompanion();
    EXPECT_TRUE(waitUntil([&] {
        return kwin.hasCompanion() && kwin.running.at(KWinCompanion::scriptName())
                                          .contains(own.connection().baseService());
    }));
}

TEST_F(KWinCompanionTest, SaysThatKWinHasRefusedItAndTriesAgainOnRequest) {
    MockKWin kwin(bus.connect());
    kwin.takesScripts = false;
    const auto companion = makeCompanion();
    const QSignalSpy changed(companion.get(), &KWinCompanion::changed);
    EXPECT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::refused; }));
    EXPECT_EQ(changed.size(), 1);
    kwin.takesScripts = true;
    companion->reload();
    EXPECT_TRUE(waitUntil([&] { return companion->state() == KWinCompanion::State::loaded; }));
}

TEST_F(KWinCompanionTest, IsRefusedWhereItCannotBeWrittenOut) {
    MockKWin kwin(bus.connect());
    const KWinCompanion companion(own, folder.filePath(QStringLiteral("nowhere")));
    EXPECT_TRUE(waitUntil([&] { return companion.state() == KWinCompanion::State::refused; }));
    EXPECT_EQ(kwin.loads, 0);
}

TEST_F(KWinCompanionTest, CarriesCommandsByScriptsOfTheirOwnAndKeepsFewFiles) {
    MockKWin kwin(bus.connect());
    const auto companion = makeCompanion();
    ASSERT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
    for (int i = 1; i <= 20; ++i) {
        companion->carry(
            QStringLiteral(R"({"do":[{"c":"front","title":"it's number %1"}]})").arg(i));
        ASSERT_TRUE(waitUntil([&] { return kwin.fronts.size() == i; }));
    }
    EXPECT_EQ(kwin.fronts.last(), QStringLiteral("it's number 20"));
    EXPECT_TRUE(kwin.hasCompanion()) << "which stays";
    EXPECT_LE(files(), 8);
}

TEST_F(KWinCompanionTest, CarriesNothingWithoutAKWin) {
    const auto companion = makeCompanion();
    companion->carry(QStringLiteral("{}"));
    EXPECT_EQ(files(), 0);
}

TEST_F(KWinCompanionTest, IsHeardByTheBusWhichHandsCommandsToTheCarrierThatNobodyAskedFor) {
    QtMainLoop loop;
    CompanionOutbox outbox;
    const auto companion = makeCompanion();
    CompanionBus heard(loop, own, outbox, KWinCompanion::compositorName(),
                       [&](const QString& commands) { companion->carry(commands); });
    std::vector<CompanionMessage> told;
    QObject::connect(&heard, &CompanionBus::told, &heard, [&](const CompanionMessage& message) {
        told.push_back(message);
        if (std::holds_alternative<CompanionFocus>(message)) {
            outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
            outbox.bringForward(QStringLiteral("Settings"));
        }
    });
    MockKWin kwin(bus.connect());
    ASSERT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
    kwin.greet();
    ASSERT_TRUE(waitUntil([&] { return kwin.isAnswered(); }));
    EXPECT_EQ(told.size(), 1U);
    EXPECT_TRUE(kwin.errors.isEmpty());

    kwin.call("Focus", R"({"focus":null})");
    ASSERT_TRUE(waitUntil([&] { return kwin.isAnswered() && !kwin.fronts.isEmpty(); }));
    EXPECT_TRUE(kwin.answers.contains(
        QStringLiteral(R"({"do":[{"c":"frame","frame":[1,2,3,4],"window":7}]})")))
        << "frames belong to the call that brought them about";
    kwin.frames.clear();
    outbox.setFrame(CompanionWindowID{8}, {1, 2, 3, 4});
    EXPECT_TRUE(waitUntil([&] { return kwin.frames.contains(8); })) << "of nobody's bringing about";
    EXPECT_TRUE(outbox.isEmpty());

    const int scripts = kwin.loads;
    CompanionPanel panel;
    panel.isShown = true;
    outbox.setPanel(panel);
    EXPECT_TRUE(waitUntil([&] { return kwin.panel.has_value(); }));
    panel.isShown = false;
    outbox.setPanel(panel);
    EXPECT_TRUE(
        staysTrue([&] { return kwin.loads == scripts + 1; }, std::chrono::milliseconds(100)))
        << "a panel that is closed needs no script";
    EXPECT_TRUE(outbox.isEmpty());
}

} // namespace tilewright::testing
