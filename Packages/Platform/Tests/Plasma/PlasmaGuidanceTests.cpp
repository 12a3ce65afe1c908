#include "GuidanceWords.h"
#include "MockKWin.h"
#include "PrivateBus.h"

#include <Companion/CompanionDecoder.h>
#include <FreeDesktop/FreeDesktopUserNotifications.h>
#include <Plasma/PlasmaGuidance.h>

#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>

namespace tilewright::testing {
namespace {

using Obstacle = PlasmaGuidance::Obstacle;

class PlasmaGuidanceTest : public ::testing::Test {
protected:
    /// A companion inside a KWin of that version introduces itself.
    void greet(const char* version, bool tellsKeys) {
        QByteArray text = helloText().replace("43.9", version);
        text.chop(1);
        state.take(*CompanionDecoder::decode(u"Hello", text + R"(,"tellsKeys":)" +
                                                           (tellsKeys ? "true}" : "false}")));
    }

    PrivateBus bus;
    MessageBus own{bus.connect()};
    CompanionState state;
    QTemporaryDir folder;
    KWinCompanion companion{own, folder.path()};
    FreeDesktopUserNotifications notifications{own};
    int forward = 0;
    int questions = 0;
    PlasmaGuidance guidance{state,
                            companion,
                            notifications,
                            [this](QWindow&) { ++forward; },
                            [this] { ++questions; },
                            KWinKeyFiles({folder.filePath(QStringLiteral("data"))},
                                         folder.filePath(QStringLiteral("offer")),
                                         QStringLiteral("/opt/tilewright"))};
};

} // namespace

TEST(PlasmaGuidanceSteps, SayWhatIsMissingInWordsOfTheirOwn) {
    std::set<QString> texts;
    for (const Obstacle obstacle :
         {Obstacle::none, Obstacle::silence, Obstacle::refusal, Obstacle::effectsMissing,
          Obstacle::effectsNotSeen, Obstacle::entryMissing, Obstacle::entryNotSeen}) {
        const PlasmaGuidance::Step step =
            PlasmaGuidance::stepFor(obstacle, QStringLiteral("/a/place"));
        EXPECT_FALSE(step.title.isEmpty());
        const bool canHelp =
            obstacle == Obstacle::effectsMissing || obstacle == Obstacle::entryMissing;
        EXPECT_EQ(!step.action.isEmpty(), canHelp);
        EXPECT_EQ(step.text.contains(QStringLiteral("place")), canHelp)
            << "what a yes brings about is said before";
        texts.insert(step.text);
    }
    EXPECT_EQ(texts.size(), 7U);
    EXPECT_TRUE(PlasmaGuidance::stepFor(Obstacle::effectsMissing).action.isEmpty())
        << "nothing can be installed";
}

TEST_F(PlasmaGuidanceTest, FollowsWhatKWinSaysAndInstallsTheEntryOnceTheUserWantsIt) {
    guidance.show();
    EXPECT_EQ(guidance.obstacle(), Obstacle::silence);
    greet("6", false);
    EXPECT_EQ(guidance.obstacle(), Obstacle::entryMissing);
    EXPECT_EQ(titleIn(guidance), PlasmaGuidance::stepFor(Obstacle::entryMissing).title);
    EXPECT_FALSE(QDir(folder.filePath(QStringLiteral("data"))).exists()) << "not before a yes";
    questions = 0;
    actionIn(guidance)->click();
    EXPECT_EQ(guidance.obstacle(), Obstacle::entryNotSeen);
    EXPECT_EQ(questions, 1);
    EXPECT_FALSE(actionIn(guidance)->isVisible());
    state.setKeys(ModifierFlags());
    EXPECT_EQ(guidance.obstacle(), Obstacle::none);
    EXPECT_EQ(titleIn(guidance), PlasmaGuidance::stepFor(Obstacle::none).title);
}

TEST_F(PlasmaGuidanceTest, InstallsTheEffectsOfKWin5WhichItTellsKeysByFromItsNextStartOn) {
    for (const QString& effect : KWinCompanion::keyEffects()) {
        const QString offered = folder.filePath(QStringLiteral("offer/") + effect);
        ASSERT_TRUE(QDir().mkpath(offered));
        QFile description(offered + QStringLiteral("/metadata.json"));
        ASSERT_TRUE(description.open(QIODevice::WriteOnly));
    }
    greet("5", false);
    guidance.show();
    EXPECT_EQ(guidance.obstacle(), Obstacle::effectsMissing);
    actionIn(guidance)->click();
    EXPECT_EQ(guidance.obstacle(), Obstacle::effectsNotSeen);
    greet("5", true);
    EXPECT_EQ(guidance.obstacle(), Obstacle::none);
}

TEST_F(PlasmaGuidanceTest, HandsKWinTheCompanionAnewWhenItIsShownWithSomethingMissing) {
    MockKWin kwin(bus.connect());
    kwin.takesScripts = false;
    ASSERT_TRUE(waitUntil([&] { return guidance.obstacle() == Obstacle::refusal; }));
    kwin.takesScripts = true;
    guidance.show();
    EXPECT_TRUE(waitUntil([&] { return kwin.hasCompanion(); }));
    EXPECT_EQ(forward, 1);
}

} // namespace tilewright::testing
