#include <FakePlatform.h>

#include <gtest/gtest.h>
#include <thread>

using namespace tilewright;
using tilewright::testing::FakeDesktop;

namespace {

std::vector<std::string> events; // NOLINT: what the services below did, in order

class First {
public:
    ~First() { events.emplace_back("first ends"); }

private:
    friend class SharedInstance<First>;
    First() { events.emplace_back("first begins"); }
};

class Second {
public:
    Second()
        : first(SharedInstance<First>::get()) {
        events.emplace_back("second begins");
    }
    ~Second() { events.emplace_back("second ends"); }
    First& first;
};

} // namespace

TEST(SharedInstance, IsMadeOnFirstUseAndDestroyedInReverseOrderWithThePlatform) {
    events.clear();
    {
        FakeDesktop desktop;
        EXPECT_TRUE(events.empty());
        auto& second = SharedInstance<Second>::get();
        EXPECT_EQ(&second, &SharedInstance<Second>::get());
        EXPECT_EQ(&second.first, &SharedInstance<First>::get());
    }
    EXPECT_EQ(events, (std::vector<std::string>{"first begins", "second begins", "second ends",
                                                "first ends"}));
}

TEST(SharedInstance, IsFreshUnderEachPlatform) {
    events.clear();
    for (int i = 0; i < 2; ++i) {
        FakeDesktop desktop;
        (void)SharedInstance<First>::get();
    }
    EXPECT_EQ(events.size(), 4U);
}

TEST(PlatformDeathTest, UsingNoPlatformIsFatal) {
    EXPECT_DEATH((void)Platform::current(), "no platform is installed");
    EXPECT_DEATH((void)SharedInstance<First>::get(), "no platform is installed");
}

TEST(PlatformDeathTest, MakingASharedInstanceOnAnotherThreadIsFatal) {
    FakeDesktop desktop;
    EXPECT_DEATH(std::thread([] { (void)SharedInstance<First>::get(); }).join(), "main thread");
}

TEST(PlatformDeathTest, InstallingASecondPlatformIsFatal) {
    FakeDesktop desktop;
    EXPECT_DEATH(FakeDesktop(), "a platform is installed already");
}
