// The user's wish for reduced motion as an X screen's settings manager tells it.

#include <DesktopSession.h>
#include <SettingsManager.h>
#include <Waiting.h>
#include <X11TestPlatform.h>

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

bool exists(const XClient& client, xcb_window_t window) {
    return XReply<xcb_get_window_attributes_reply_t>(xcb_get_window_attributes_reply(
               client.xcb(), xcb_get_window_attributes(client.xcb(), window), nullptr)) != nullptr;
}

class MotionWishOnScreen : public ::testing::Test {
protected:
    void expect(std::optional<bool> expected) {
        EXPECT_TRUE(
            waitUntil([&] { return platform->appearance.prefersReducedMotion() == expected; }));
    }

    DesktopSession desktop;
    std::optional<X11TestPlatform> platform;
};

} // namespace

TEST_F(MotionWishOnScreen, FollowsTheSettingsManagerAsItChangesAndComesAndGoes) {
    platform.emplace(desktop.display());
    EXPECT_EQ(platform->appearance.prefersReducedMotion(), std::nullopt);
    QSignalSpy changes(&platform->appearance, &Appearance::prefersReducedMotionChanged);
    {
        SettingsManager manager(desktop.display());
        manager.setAnimations(0);
        expect(true);
        manager.setAnimations(1);
        expect(false);
        manager.setAnimations(0);
        expect(true);
    }
    expect(std::nullopt);
    EXPECT_EQ(changes.size(), 4);
    SettingsManager successor(desktop.display());
    successor.setAnimations(0);
    expect(true);
}

TEST_F(MotionWishOnScreen, IsHeardOfAManagerWhoseWindowHasTheNumberOfTheFormerOnes) {
    platform.emplace(desktop.display());
    auto manager = std::make_unique<SettingsManager>(desktop.display());
    manager->setAnimations(1);
    expect(false);
    const xcb_window_t number = manager->window();
    const XClient looking(desktop.display());
    manager.reset();
    // All of it before the platform looks: a number is given out again once its client has gone.
    const QDeadlineTimer deadline(patience);
    while (exists(looking, number) && !deadline.hasExpired())
        looking.sync();
    manager = std::make_unique<SettingsManager>(desktop.display());
    ASSERT_EQ(manager->window(), number);
    manager->setAnimations(1);
    // The platform has heard of the manager now, and what changes is told by its window alone.
    QCoreApplication::processEvents();
    expect(false);
    manager->setAnimations(0);
    expect(true);
}

TEST_F(MotionWishOnScreen, IsKnownFromTheStartWhereAManagerRuns) {
    SettingsManager manager(desktop.display());
    manager.setAnimations(0);
    platform.emplace(desktop.display());
    EXPECT_EQ(platform->appearance.prefersReducedMotion(), true);
}

TEST_F(MotionWishOnScreen, IsKeptWhileTheServerDoesNotAnswerAndReadOnceItDoes) {
    SettingsManager manager(desktop.display());
    manager.setAnimations(0);
    platform.emplace(desktop.display());
    Appearance& appearance = platform->appearance;
    ASSERT_EQ(appearance.prefersReducedMotion(), true);
    std::vector<std::optional<bool>> told;
    QObject::connect(&appearance, &Appearance::prefersReducedMotionChanged, &appearance,
                     [&] { told.push_back(appearance.prefersReducedMotion()); });
    manager.holdServer();
    manager.setAnimations(1);
    EXPECT_TRUE(waitUntil([&] { return platform->connection().isStuck(); }));
    EXPECT_EQ(appearance.prefersReducedMotion(), true);
    manager.letGoOfServer();
    expect(false);
    EXPECT_THAT(told, ::testing::ElementsAre(std::optional(false)));
}

TEST_F(MotionWishOnScreen, IsReadOfAManagerThatCameWhileTheServerDidNotAnswer) {
    platform.emplace(desktop.display());
    SettingsManager manager(desktop.display());
    manager.holdServer();
    manager.setAnimations(0);
    EXPECT_TRUE(waitUntil([&] { return platform->connection().isStuck(); }));
    EXPECT_EQ(platform->appearance.prefersReducedMotion(), std::nullopt);
    manager.letGoOfServer();
    expect(true);
}

} // namespace tilewright::testing
