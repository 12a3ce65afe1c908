#include <Platform/Lifetime.h>

#include <gtest/gtest.h>
#include <optional>

using tilewright::Lifetime;

TEST(Lifetime, LetsItsTasksRunAsOftenAsTheyAreCalledWhileItLasts) {
    const Lifetime life;
    int calls = 0;
    const auto task = life.guard([&] { ++calls; });
    task();
    task();
    EXPECT_EQ(calls, 2);
}

TEST(Lifetime, LetsNoTaskRunOnceItHasEnded) {
    std::optional<Lifetime> life(std::in_place);
    int calls = 0;
    const auto task = life->guard([&] { ++calls; });
    life.emplace();
    task();
    EXPECT_EQ(calls, 0) << "a later life is another one";
}

TEST(Lifetime, MayBeEndedByATaskOfItsOwn) {
    std::optional<Lifetime> life(std::in_place);
    int calls = 0;
    const auto task = life->guard([&] {
        ++calls;
        life.reset();
    });
    task();
    task();
    EXPECT_EQ(calls, 1);
}
