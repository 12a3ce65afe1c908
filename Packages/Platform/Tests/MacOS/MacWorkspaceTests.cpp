#include "MacTestPlatform.h"

#include <gtest/gtest.h>
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

TEST_F(MacWorkspaceTest, TellsOfTheWishForReducedMotionAndOfItsChange) {
    const MacWorkspace workspace;
    int announced = 0;
    QObject::connect(&workspace, &Workspace::prefersReducedMotionChanged, [&] { ++announced; });
    EXPECT_EQ(workspace.prefersReducedMotion(), false);
    appKit.reducesMotion = true;
    appKit.announce(appkit::Notification::displayOptionsChanged);
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(workspace.prefersReducedMotion(), true);
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
    appKit.instances = 2;
    MacInstanceActivation second;
    EXPECT_EQ(second.claim(), InstanceActivation::Claim::another);
    EXPECT_EQ(appKit.panelRequests, 1);
    appKit.announce(appkit::Notification::panelRequested);
    EXPECT_EQ(requested, 1);
}
