#include <FakeMainLoop.h>
#include <FreeDesktop/CalmMemory.h>

#include <QApplication>
#include <QFile>
#include <QRegularExpression>
#include <QWidget>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

/// KiB of this process's memory now, by their name in the system's account of it.
int inMemory(const char* kind) {
    QFile status(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    const QRegularExpression line(QStringLiteral("%1:\\s*(\\d+) kB").arg(QLatin1String(kind)));
    return line.match(QString::fromLatin1(status.readAll())).captured(1).toInt();
}

/// KiB of the files that this process has mapped which are in its memory now.
int filesInMemory() {
    return inMemory("RssFile");
}

/// Reads all of the program and its libraries, as a start reads much of it, and answers how much of
/// it is in memory then.
int readEverything() {
    QFile maps(QStringLiteral("/proc/self/maps"));
    EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
    static const QRegularExpression code(
        QStringLiteral("^([0-9a-f]+)-([0-9a-f]+) r-xp .* /.*\\.so"));
    volatile char read = 0;
    for (const QByteArray& entry : maps.readAll().split('\n')) {
        const auto match = code.match(QString::fromLatin1(entry));
        if (!match.hasMatch())
            continue;
        const auto end = match.captured(2).toULongLong(nullptr, 16);
        for (auto at = match.captured(1).toULongLong(nullptr, 16); at < end; at += 4096)
            read = *reinterpret_cast<const volatile char*>(at);
    }
    static_cast<void>(read);
    return filesInMemory();
}

class CalmMemoryTest : public ::testing::Test {
protected:
    /// Runs it in Qt's event loop, which alone tells of windows.
    static void inTheEventLoop(const std::function<void()>& task) {
        QApplication::setQuitOnLastWindowClosed(false);
        QMetaObject::invokeMethod(
            qApp,
            [&] {
                task();
                QCoreApplication::exit();
            },
            Qt::QueuedConnection);
        QApplication::exec();
    }
    /// Whether most of what was in memory has gone from it.
    bool isGivenBack(int before) { return filesInMemory() < before / 2; }

    FakeMainLoop loop;
};

} // namespace

TEST_F(CalmMemoryTest, CodeThatIsGivenBackIsThereAgainWhereItIsCalled) {
    const int before = readEverything();
    giveBackCode();
    EXPECT_TRUE(isGivenBack(before));
    EXPECT_EQ(QString::number(47).toInt(), 47);
}

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
// The address sanitizer has an allocator of its own, which keeps what is freed.
TEST_F(CalmMemoryTest, HeapThatIsGivenBackHadBeenHeldByWhatWasAllocatedLast) {
    constexpr std::size_t size = 1000;
    constexpr int kibibytes = 32 * 1024;
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t i = 0; i < kibibytes * 1024 / size; ++i) {
        blocks.push_back(std::make_unique<char[]>(size));
    }
    const auto last = std::move(blocks.back());
    blocks.clear();
    const int before = inMemory("RssAnon");
    giveBackHeap();
    EXPECT_LT(inMemory("RssAnon"), before - kibibytes * 3 / 4);
    EXPECT_EQ(last[0], 0);
}
#endif

TEST_F(CalmMemoryTest, GivesTheStartsCodeBackOnceItHasSettled) {
    const int before = readEverything();
    const CalmMemory memory(loop);
    loop.advance(CalmMemory::settling - std::chrono::milliseconds(1));
    EXPECT_FALSE(isGivenBack(before));
    loop.advance(std::chrono::milliseconds(1));
    EXPECT_TRUE(isGivenBack(before));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(CalmMemoryTest, GivesAWindowsCodeBackWhenTheLastOneHasClosed) {
    const CalmMemory memory(loop);
    loop.advance(CalmMemory::settling);
    QWidget first;
    QWidget second;
    first.show();
    second.show();
    const int before = readEverything();
    inTheEventLoop([&] { first.close(); });
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    inTheEventLoop([&] { second.close(); });
    EXPECT_EQ(loop.activeTimerCount(), 1U);
    loop.advance(CalmMemory::settling);
    EXPECT_TRUE(isGivenBack(before));
}

TEST_F(CalmMemoryTest, WaitsAnewForEachWindowThatCloses) {
    const CalmMemory memory(loop);
    const int before = readEverything();
    loop.advance(CalmMemory::settling - std::chrono::milliseconds(1));
    QWidget window;
    window.show();
    inTheEventLoop([&] { window.close(); });
    loop.advance(std::chrono::milliseconds(1));
    EXPECT_FALSE(isGivenBack(before));
    EXPECT_EQ(loop.activeTimerCount(), 1U);
}

TEST_F(CalmMemoryTest, IsLeftAloneByWhoeverHasEnded) {
    { const CalmMemory memory(loop); }
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}
