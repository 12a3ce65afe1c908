#include "MockKWin.h"
#include "PrivateBus.h"

#include <FakeCompositor.h>
#include <FakeMainLoop.h>
#include <Plasma/KWinReturn.h>
#include <Waiting.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>

namespace tilewright::testing {
namespace {

class KWinReturnTest : public ::testing::Test {
protected:
    void listen() { compositor.emplace(folder.path(), QStringLiteral("wayland-test")); }
    /// What is posted and what others have sent by now is taken in.
    void expectUndecided() {
        EXPECT_TRUE(staysTrue([&] { return returned.isEmpty() && missing.isEmpty(); },
                              std::chrono::milliseconds(100)));
    }
    void expectReturned() {
        EXPECT_TRUE(waitUntil([&] { return returned.count() == 1; }));
        time.advance(KWinReturn::patienceWithListener);
        EXPECT_EQ(returned.count(), 1);
        EXPECT_TRUE(missing.isEmpty());
    }

    PrivateBus bus;
    QTemporaryDir folder;
    FakeMainLoop time;
    MessageBus own{bus.connect()};
    std::optional<FakeCompositor> compositor;
    KWinReturn kwin{time, own, folder.filePath(QStringLiteral("wayland-test"))};
    QSignalSpy returned{&kwin, &KWinReturn::returned};
    QSignalSpy missing{&kwin, &KWinReturn::missing};
};

} // namespace

TEST_F(KWinReturnTest, IsTheCompositorsAnswerAndThenTheName) {
    expectUndecided();
    listen();
    expectUndecided();
    const MockKWin mock(bus.connect());
    expectReturned();
}

TEST_F(KWinReturnTest, IsTheNameAndThenTheCompositorsAnswer) {
    // As of a KWin that has just ended.
    const MockKWin mock(bus.connect());
    expectUndecided();
    listen();
    expectReturned();
}

TEST_F(KWinReturnTest, FailsWhenNobodyHasListenedForLong) {
    time.advance(KWinReturn::patience - std::chrono::milliseconds(1));
    expectUndecided();
    time.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(missing.count(), 1);
    listen();
    const MockKWin mock(bus.connect());
    EXPECT_TRUE(staysTrue([&] { return returned.isEmpty(); }, std::chrono::milliseconds(100)));
    EXPECT_EQ(missing.count(), 1);
}

TEST_F(KWinReturnTest, FailsWhenWhoeverListensHasNotComeForMuchLonger) {
    listen();
    time.advance(KWinReturn::patienceWithListener - std::chrono::milliseconds(1));
    expectUndecided();
    time.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(missing.count(), 1);
}

TEST_F(KWinReturnTest, FailsWhenTheBusEnds) {
    expectUndecided();
    bus.stop();
    EXPECT_TRUE(waitUntil([&] { return missing.count() == 1; }));
    EXPECT_TRUE(returned.isEmpty());
}

TEST(KWinReturn, FailsWhereThereIsNoBus) {
    const QTemporaryDir folder;
    FakeMainLoop time;
    MessageBus none{QDBusConnection(QString())};
    const KWinReturn kwin(time, none, folder.filePath(QStringLiteral("wayland-test")));
    QSignalSpy missing(&kwin, &KWinReturn::missing);
    EXPECT_TRUE(waitUntil([&] { return missing.count() == 1; }));
}

} // namespace tilewright::testing
