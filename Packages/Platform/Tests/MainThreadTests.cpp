#include <Platform/MainThread.h>

#include <gtest/gtest.h>
#include <thread>

using namespace tilewright;

TEST(MainThread, IsTheOneThatStartedTheProgram) {
    EXPECT_TRUE(isMainThread());
    assertMainThread("Here", 1);
    bool elsewhere = true;
    std::thread([&] { elsewhere = isMainThread(); }).join();
    EXPECT_FALSE(elsewhere);
}

TEST(MainThreadDeathTest, NamesFileAndLineOfACallFromAnotherThread) {
    EXPECT_DEATH(std::thread([] { assertMainThread("LayoutStore", 42); }).join(),
                 "LayoutStore:42: must be called on the main thread");
}
