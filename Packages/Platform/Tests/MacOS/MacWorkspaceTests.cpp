#include "MacTestPlatform.h"

#include <gtest/gtest.h>
#include <limits>
#include <unistd.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

class MacWorkspaceTest : public ::testing::Test {
protected:
    void activate(std::optional<ProcessID> process) {
        appKit.frontmost = process;
        appKit.announce(appkit::Notification::applicationActivated);
    }
    FakeAppKit appKit;
};

} // namespace

TEST_F(MacWorkspaceTest, AnswersTheApplicationInFront) {
    appKit.frontmost = 7;
    const MacWorkspace workspace;
    EXPECT_EQ(workspace.frontmostApplication(), 7);
    // Asked afresh, also before it is announced.
    appKit.frontmost = 8;
    EXPECT_EQ(workspace.frontmostApplication(), 8);
    appKit.frontmost.reset();
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
}

TEST_F(MacWorkspaceTest, GoesOnAnsweringTheApplicationBehindThisProgram) {
    appKit.frontmost = 7;
    const MacWorkspace workspace;
    activate(getpid());
    EXPECT_EQ(workspace.frontmostApplication(), 7);
    activate(8);
    activate(getpid());
    EXPECT_EQ(workspace.frontmostApplication(), 8);
}

TEST_F(MacWorkspaceTest, StartedInFrontKnowsNoOtherApplicationYet) {
    appKit.frontmost = getpid();
    const MacWorkspace workspace;
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
}

TEST_F(MacWorkspaceTest, AnnouncesOtherApplicationsAndNotThisOne) {
    const MacWorkspace workspace;
    int announced = 0;
    QObject::connect(&workspace, &Workspace::activeWindowChanged, [&] { ++announced; });
    activate(getpid());
    EXPECT_EQ(announced, 0);
    activate(7);
    EXPECT_EQ(announced, 1);
}

TEST_F(MacWorkspaceTest, OpensTheAccessibilityPaneOfTheSystemSettings) {
    MacWorkspace workspace;
    workspace.openAccessibilitySettings();
    EXPECT_EQ(appKit.openedURLs,
              std::vector<QString>{u"x-apple.systempreferences:com.apple.preference.security"
                                   u"?Privacy_Accessibility"_s});
}

TEST_F(MacWorkspaceTest, LeavesItToTheAppearanceToTellOfTheWishForReducedMotion) {
    const MacAppearance appearance;
    int announced = 0;
    QObject::connect(&appearance, &Appearance::prefersReducedMotionChanged, [&] { ++announced; });
    EXPECT_EQ(appearance.prefersReducedMotion(), false);
    appKit.reducesMotion = true;
    appKit.announce(appkit::Notification::displayOptionsChanged);
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(appearance.prefersReducedMotion(), true);
}

TEST_F(MacWorkspaceTest, BringsThisApplicationForwardWhenAsked) {
    MacWorkspace workspace;
    EXPECT_EQ(appKit.activations, 0);
    workspace.activateThisApplication();
    EXPECT_EQ(appKit.activations, 1);
}

TEST_F(MacWorkspaceTest, ASecondInstanceAsksTheFirstForItsPanel) {
    MacInstanceActivation first;
    ASSERT_EQ(first.claim(), InstanceActivation::Claim::first);
    int requested = 0;
    QObject::connect(&first, &InstanceActivation::activationRequested, [&] { ++requested; });
    appKit.instances = {{getpid(), 20}, {getpid() + 1, 10}};
    MacInstanceActivation second;
    EXPECT_EQ(second.claim(), InstanceActivation::Claim::another);
    EXPECT_EQ(appKit.panelRequests, 1);
    appKit.announce(appkit::Notification::panelRequested);
    EXPECT_EQ(requested, 1);
}

TEST_F(MacWorkspaceTest, AsksForThePanelWhereTheRunningProgramIsOpenedOnceMore) {
    MacInstanceActivation activation;
    int requested = 0;
    QObject::connect(&activation, &InstanceActivation::activationRequested, [&] { ++requested; });
    appKit.announce(appkit::Notification::reopened);
    EXPECT_EQ(requested, 0) << "not before it is the one instance";
    ASSERT_EQ(activation.claim(), InstanceActivation::Claim::first);
    appKit.announce(appkit::Notification::reopened);
    EXPECT_EQ(requested, 1);
}

TEST_F(MacWorkspaceTest, OfInstancesThatStartTogetherExactlyOneStays) {
    constexpr double unknown = std::numeric_limits<double>::infinity();
    const ProcessID own = getpid();
    const auto claimAmong = [&](std::vector<appkit::RunningInstance> instances) {
        appKit.instances = std::move(instances);
        return MacInstanceActivation().claim();
    };
    using enum InstanceActivation::Claim;
    EXPECT_EQ(claimAmong({}), first);
    EXPECT_EQ(claimAmong({{own, 10}}), first);
    // The older one stays, whatever the order of the list.
    EXPECT_EQ(claimAmong({{own, 10}, {own + 1, 11}}), first);
    EXPECT_EQ(claimAmong({{own + 1, 11}, {own, 10}}), first);
    EXPECT_EQ(claimAmong({{own, 11}, {own + 1, 10}}), another);
    // Of two of the same age, the one with the lower number.
    EXPECT_EQ(claimAmong({{own, 10}, {own + 1, 10}}), first);
    EXPECT_EQ(claimAmong({{own, 10}, {own - 1, 10}}), another);
    EXPECT_EQ(claimAmong({{own, unknown}, {own + 1, unknown}}), first);
    EXPECT_EQ(claimAmong({{own, unknown}, {own - 1, unknown}}), another);
    // One of unknown age is the newer one.
    EXPECT_EQ(claimAmong({{own, 10}, {own - 1, unknown}}), first);
    EXPECT_EQ(claimAmong({{own, unknown}, {own + 1, 10}}), another);
    // The system does not know of this one yet.
    EXPECT_EQ(claimAmong({{own + 1, 10}}), another);
}
