#include "GuidanceWords.h"
#include "MockCompanion.h"
#include "PrivateBus.h"
#include "SettingsProgram.h"

#include <Companion/CompanionDecoder.h>
#include <FreeDesktop/FreeDesktopUserNotifications.h>
#include <Gnome/GnomeGuidance.h>

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <set>

namespace tilewright::testing {
namespace {

using State = GnomeExtension::State;

class GnomeGuidanceTest : public ::testing::Test {
protected:
    [[nodiscard]] bool stands(State wanted) {
        return waitUntil([&] { return extension.state() == wanted; });
    }

    PrivateBus bus;
    MessageBus own{bus.connect()};
    CompanionState state;
    QTemporaryDir folder;
    SettingsProgram settings;
    GnomeExtension extension{own,
                             GnomeCompanionFiles({folder.filePath(QStringLiteral("data"))},
                                                 folder.filePath(QStringLiteral("offer"))),
                             settings.program()};
    FreeDesktopUserNotifications notifications{own};
    int forward = 0;
    GnomeGuidance guidance{state, extension, notifications, [this](QWindow&) { ++forward; }};
};

} // namespace

TEST(GnomeGuidanceSteps, SayWhatIsMissingInWordsOfTheirOwn) {
    std::set<QString> titles;
    for (const State state : {State::unknown, State::notInstalled, State::notSeen, State::off,
                              State::refused, State::active}) {
        const GnomeGuidance::Step step = GnomeGuidance::stepFor(state, false);
        EXPECT_FALSE(step.title.isEmpty());
        EXPECT_FALSE(step.text.isEmpty());
        EXPECT_EQ(step.action.isEmpty(), state != State::off) << "one click turns it on";
        titles.insert(step.title);
        EXPECT_TRUE(GnomeGuidance::stepFor(state, true).action.isEmpty());
    }
    EXPECT_EQ(titles.size(), 6U);
}

TEST_F(GnomeGuidanceTest, FollowsTheStateWhileItsWindowIsOpenAndTurnsTheExtensionOn) {
    MockCompanion shell(bus.connect());
    ASSERT_TRUE(stands(State::notInstalled));
    guidance.show();
    ASSERT_NE(guidance.window(), nullptr);
    EXPECT_EQ(forward, 1);
    EXPECT_EQ(titleIn(guidance), GnomeGuidance::stepFor(State::notInstalled, false).title);
    EXPECT_FALSE(actionIn(guidance)->isVisible());
    shell.extensionState = 2;
    shell.announceExtension();
    ASSERT_TRUE(stands(State::off));
    EXPECT_EQ(titleIn(guidance), GnomeGuidance::stepFor(State::off, false).title);
    ASSERT_TRUE(actionIn(guidance)->isVisible());
    actionIn(guidance)->click();
    ASSERT_TRUE(stands(State::active));
    EXPECT_EQ(shell.enablings, 1);
    EXPECT_FALSE(actionIn(guidance)->isVisible());
    state.take(*CompanionDecoder::decode(u"Hello", helloText()));
    EXPECT_EQ(titleIn(guidance), GnomeGuidance::stepFor(State::active, true).title);
}

TEST_F(GnomeGuidanceTest, InstallsWhatTheBuildBringsAlongOnceTheUserWantsIt) {
    const QString offer = folder.filePath(QStringLiteral("offer"));
    ASSERT_TRUE(QDir().mkpath(offer));
    QFile description(offer + QStringLiteral("/metadata.json"));
    ASSERT_TRUE(description.open(QIODevice::WriteOnly));
    description.close();
    MockCompanion shell(bus.connect());
    ASSERT_TRUE(stands(State::notInstalled));
    guidance.show();
    ASSERT_TRUE(waitUntil([&] { return actionIn(guidance)->isVisible(); }));
    EXPECT_FALSE(extension.files().areInstalled()) << "not before that";
    actionIn(guidance)->click();
    EXPECT_TRUE(stands(State::notSeen));
    EXPECT_TRUE(extension.files().areInstalled());
    EXPECT_EQ(titleIn(guidance), GnomeGuidance::stepFor(State::notSeen, false).title);
    EXPECT_FALSE(actionIn(guidance)->isVisible());
    EXPECT_TRUE(waitUntil([&] {
        return settings.started() == "['" + GnomeCompanionFiles::buildsName().toUtf8() + "']";
    })) << "no click is needed after the next login";
}

TEST_F(GnomeGuidanceTest, HasOneWindowAtATime) {
    guidance.show();
    const QPointer<GuidanceWindow> first = guidance.window();
    guidance.show();
    EXPECT_EQ(guidance.window(), first);
    EXPECT_EQ(forward, 2);
    QTest::keyClick(first, Qt::Key_Escape);
    EXPECT_EQ(guidance.window(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    guidance.show();
    EXPECT_NE(guidance.window(), nullptr);
}

} // namespace tilewright::testing
