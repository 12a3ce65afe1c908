// What keep-awake tells for a user's report, where it is asked to.

#include "FakeIdleService.h"
#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/IdleInhibition.h>
#include <KeptMessages.h>
#include <Waiting.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace tilewright::testing {
namespace {

const auto screenSaver = u"org.freedesktop.ScreenSaver"_s;

const IdleService& theScreenSaver() {
    const auto& all = idleServices();
    const auto found = std::find_if(all.begin(), all.end(), [](const IdleService& service) {
        return service.name == screenSaver;
    });
    EXPECT_NE(found, all.end());
    return *found;
}

struct IdleLog : ::testing::Test {
    ~IdleLog() override { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    /// Asks a service that answers so, waits for its word and gives the grant back.
    void holdOnce(FakeIdleService::Answer answer, IdleInhibition::State becomes) {
        FakeIdleService service(bus.connect(), std::move(answer));
        service.queueFor(screenSaver);
        auto* inhibition =
            new IdleInhibition(loop, theScreenSaver(), own, u"a secret reason"_s, &parent);
        EXPECT_TRUE(waitUntil([&] { return inhibition->state() == becomes; }));
        inhibition->end();
    }

    PrivateBus bus;
    const QDBusConnection own = bus.connect();
    FakeMainLoop loop;
    QObject parent;
};

} // namespace

TEST_F(IdleLog, TellsNothingUnlessItIsAskedTo) {
    const KeptMessages messages;
    holdOnce(FakeIdleService::granting(1U), IdleInhibition::State::held);
    EXPECT_EQ(messages.of("tilewright"), QStringList());
}

TEST_F(IdleLog, TellsWhoWasAskedAndWhatWasAnsweredAndWhatWasGivenBack) {
    const KeptMessages messages(u"tilewright.idle=true"_s);
    holdOnce(FakeIdleService::granting(1U), IdleInhibition::State::held);
    EXPECT_THAT(messages.of("tilewright"),
                ElementsAre(u"Asked "_s + screenSaver + u" to inhibit idling"_s,
                            screenSaver + u" answered: granted"_s,
                            u"Gave the grant back to "_s + screenSaver));
}

TEST_F(IdleLog, TellsOfARefusalByItsName) {
    const KeptMessages messages(u"tilewright.idle=true"_s);
    holdOnce(FakeIdleService::failing(u"org.freedesktop.DBus.Error.AccessDenied"_s),
             IdleInhibition::State::refused);
    EXPECT_THAT(messages.of("tilewright"),
                ElementsAre(u"Asked "_s + screenSaver + u" to inhibit idling"_s,
                            screenSaver + u": refused, org.freedesktop.DBus.Error.AccessDenied"_s));
}

} // namespace tilewright::testing
