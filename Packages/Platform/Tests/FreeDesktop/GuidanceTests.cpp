#include <FakeUserNotifications.h>
#include <FreeDesktop/FreeDesktopGuidance.h>

#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

class OneStep final : public FreeDesktopGuidance {
public:
    using FreeDesktopGuidance::FreeDesktopGuidance;

    GuidanceStep next{QStringLiteral("Title"), QStringLiteral("Text"), QStringLiteral("Do It")};
    int acts = 0;
    void follow() { update(); }

protected:
    [[nodiscard]] Step step() const override { return next; }
    void act() override { ++acts; }
};

struct GuidanceTest : ::testing::Test {
    [[nodiscard]] QString label(const char* name) const {
        return guidance.window()->findChild<QLabel*>(QLatin1String(name))->text();
    }
    [[nodiscard]] QPushButton& action() const {
        return *guidance.window()->findChild<QPushButton*>(QStringLiteral("action"));
    }

    FakeUserNotifications notifications;
    std::vector<QWindow*> broughtForward;
    OneStep guidance{notifications, [this](QWindow& window) { broughtForward.push_back(&window); }};
};

} // namespace

TEST_F(GuidanceTest, ShowsTheStepInAWindowAndDoesWhatItOffers) {
    guidance.show();
    ASSERT_NE(guidance.window(), nullptr);
    EXPECT_TRUE(guidance.window()->isVisible());
    EXPECT_EQ(broughtForward, std::vector<QWindow*>{guidance.window()->windowHandle()});
    EXPECT_EQ(label("title"), QStringLiteral("Title"));
    EXPECT_EQ(label("text"), QStringLiteral("Text"));
    EXPECT_EQ(action().text(), QStringLiteral("Do It"));
    action().click();
    EXPECT_EQ(guidance.acts, 1);
    guidance.next = {QStringLiteral("Other"), QStringLiteral("More"), {}};
    guidance.follow();
    EXPECT_EQ(label("title"), QStringLiteral("Other"));
    EXPECT_FALSE(action().isVisible());
}

TEST_F(GuidanceTest, IsLedToByANotificationAndNeverBegsItself) {
    guidance.notify();
    ASSERT_EQ(notifications.shown.size(), 1U);
    EXPECT_EQ(notifications.shown.front().second, QStringLiteral("Title"));
    EXPECT_EQ(guidance.window(), nullptr);
    notifications.choose();
    EXPECT_NE(guidance.window(), nullptr);
}

} // namespace tilewright::testing
