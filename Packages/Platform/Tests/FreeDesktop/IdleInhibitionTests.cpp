// One service asked to keep the session from idling, whatever it and others on its bus do.

#include "FakeIdleService.h"
#include "PrivateBus.h"

#include <FakeMainLoop.h>
#include <FreeDesktop/IdleInhibition.h>
#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <Waiting.h>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <gtest/gtest.h>
#include <optional>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

using State = IdleInhibition::State;

const auto screenSaver = u"org.freedesktop.ScreenSaver"_s;
const auto portal = u"org.freedesktop.portal.Desktop"_s;
const auto loginManager = u"org.freedesktop.login1"_s;
const auto firstPath = u"/org/freedesktop/ScreenSaver"_s;
const auto olderPath = u"/ScreenSaver"_s;
const auto noSuchObject = u"org.freedesktop.DBus.Error.UnknownObject"_s;

const IdleService& serviceNamed(const QString& name) {
    const auto& all = idleServices();
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const IdleService& service) { return service.name == name; });
    EXPECT_NE(found, all.end());
    return *found;
}

std::vector<QString> pathsOf(const std::vector<QDBusMessage>& calls) {
    std::vector<QString> paths;
    paths.reserve(calls.size());
    for (const QDBusMessage& call : calls)
        paths.push_back(call.path());
    return paths;
}

/// A service that is known at the older path only.
FakeIdleService::Answer atTheOlderPath(uint cookie) {
    return [cookie](const QDBusMessage& call, QDBusConnection& bus) {
        if (call.path() == olderPath)
            bus.send(call.createReply(cookie));
        else
            bus.send(call.createErrorReply(noSuchObject, u"no"_s));
    };
}

class IdleInhibitionTest : public ::testing::Test {
protected:
    ~IdleInhibitionTest() override {
        if (inhibition)
            inhibition->end();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void ask(const QString& service = screenSaver) {
        inhibition = new IdleInhibition(loop, serviceNamed(service), own, u"reason"_s, &parent);
    }
    void end() { std::exchange(inhibition, nullptr)->end(); }
    [[nodiscard]] bool becomes(State state) {
        return waitUntil([&] { return inhibition->state() == state; });
    }
    /// Takes answers in as a caller does that waits for the first: the event loop stands still.
    [[nodiscard]] bool becomesWithoutATurn(State state) {
        QElapsedTimer timer;
        timer.start();
        while (inhibition->state() != state &&
               timer.elapsed() < std::chrono::milliseconds(patience).count()) {
            inhibition->takeAnswers();
            QThread::msleep(1);
        }
        return inhibition->state() == state;
    }
    /// Where the portal is to answer a call.
    [[nodiscard]] QString requestPathOf(const QDBusMessage& call) const {
        const QString token =
            qdbus_cast<QVariantMap>(call.arguments().value(2)).value(u"handle_token"_s).toString();
        return u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
            own.baseService().mid(1).replace(u'.', u'_'), token);
    }
    /// Answers as the portal does that agrees.
    void respond(QDBusConnection from, const QString& path) const {
        QDBusMessage response = QDBusMessage::createTargetedSignal(
            own.baseService(), path, u"org.freedesktop.portal.Request"_s, u"Response"_s);
        response << 0U << QVariantMap();
        from.send(response);
        PrivateBus::takeAllIn(from);
    }
    [[nodiscard]] static bool comesTo(const std::function<std::size_t()>& count,
                                      std::size_t expected) {
        return waitUntil([&] { return count() >= expected; }) && count() == expected;
    }

    PrivateBus bus;
    const QDBusConnection own = bus.connect();
    FakeMainLoop loop;
    QObject parent;
    IdleInhibition* inhibition = nullptr;
};

} // namespace

TEST_F(IdleInhibitionTest, AsksTheNewOwnerWhereTheFormerOneAnsweredTooLate) {
    FakeIdleService former(bus.connect(), FakeIdleService::silent());
    FakeIdleService next(bus.connect(), FakeIdleService::granting(2U));
    former.queueFor(screenSaver);
    next.queueFor(screenSaver);
    ask();
    ASSERT_TRUE(comesTo([&] { return former.asked().size(); }, 1));
    former.giveUp(screenSaver);
    PrivateBus::takeAllIn(own);
    QCoreApplication::processEvents();
    former.bus().send(former.asked()[0].createReply(1U));
    EXPECT_TRUE(becomes(State::held));
    EXPECT_EQ(next.asked().size(), 1U);
    end();
    ASSERT_TRUE(comesTo([&] { return next.released().size(); }, 1));
    EXPECT_EQ(next.released()[0].arguments(), QVariantList{2U});
}

TEST_F(IdleInhibitionTest, BeginsAtTheFirstPathWithANewOwnerThoughTheFormerOneWasAtAnother) {
    FakeIdleService former(bus.connect(), atTheOlderPath(1));
    former.queueFor(screenSaver);
    ask();
    ASSERT_TRUE(becomes(State::held));
    EXPECT_EQ(pathsOf(former.asked()), (std::vector{firstPath, olderPath}));
    FakeIdleService next(bus.connect(), FakeIdleService::granting(2U));
    next.queueFor(screenSaver);
    former.giveUp(screenSaver);
    ASSERT_TRUE(waitUntil([&] { return !next.asked().empty(); }));
    EXPECT_EQ(next.asked()[0].path(), firstPath);
}

TEST_F(IdleInhibitionTest, BeginsAtTheFirstPathWithAnOwnerThatCameWhileTheFormerOneWasAsked) {
    FakeIdleService former(bus.connect(), [](const QDBusMessage& call, QDBusConnection& peer) {
        if (call.path() == firstPath)
            peer.send(call.createErrorReply(noSuchObject, u"no"_s));
    });
    FakeIdleService next(bus.connect(), FakeIdleService::granting(2U));
    former.queueFor(screenSaver);
    next.queueFor(screenSaver);
    ask();
    ASSERT_TRUE(comesTo([&] { return former.asked().size(); }, 2));
    former.giveUp(screenSaver);
    PrivateBus::takeAllIn(own);
    QCoreApplication::processEvents();
    former.bus().send(former.asked()[1].createReply(1U));
    ASSERT_TRUE(becomes(State::held));
    EXPECT_EQ(pathsOf(next.asked()), std::vector{firstPath});
}

TEST_F(IdleInhibitionTest, AsksAnOwnerOnceWhoseAnswerComesBeforeTheNewsOfIt) {
    FakeIdleService former(bus.connect(), FakeIdleService::silent());
    FakeIdleService next(bus.connect(), FakeIdleService::granting(2U));
    former.queueFor(screenSaver);
    next.queueFor(screenSaver);
    ask();
    ASSERT_TRUE(comesTo([&] { return former.asked().size(); }, 1));
    former.giveUp(screenSaver);
    PrivateBus::takeAllIn(own);
    // The news waits for the event loop; the answer leads to the other path, and to the new owner.
    former.bus().send(former.asked()[0].createErrorReply(noSuchObject, u"no"_s));
    ASSERT_TRUE(becomesWithoutATurn(State::held));
    QCoreApplication::processEvents();
    PrivateBus::takeAllIn(own);
    EXPECT_TRUE(becomes(State::held));
    EXPECT_EQ(next.asked().size(), 1U);
}

TEST_F(IdleInhibitionTest, AsksAServiceWhoseObjectIsLateFiveTimesMore) {
    FakeIdleService service(bus.connect(), FakeIdleService::failing(noSuchObject));
    ask();
    ASSERT_TRUE(becomes(State::absent));
    service.queueFor(screenSaver);
    ASSERT_TRUE(comesTo([&] { return service.asked().size(); }, 2)) << "at each of its paths";
    std::size_t expected = 2;
    for (MainLoop::Interval interval{250}; interval.count() <= 4000; interval *= 2) {
        ASSERT_TRUE(waitUntil([&] { return loop.activeTimerCount() == 1; })) << interval.count();
        loop.advance(interval - MainLoop::Interval(1));
        EXPECT_EQ(loop.activeTimerCount(), 1U);
        loop.advance(MainLoop::Interval(1));
        expected += 2;
        ASSERT_TRUE(comesTo([&] { return service.asked().size(); }, expected)) << interval.count();
    }
    EXPECT_TRUE(becomes(State::absent));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(IdleInhibitionTest, CountsAServiceThatVanishesBeforeItAnswersAsAbsentAndNotAsRefusing) {
    for (const auto& error :
         {u"org.freedesktop.DBus.Error.NoReply"_s, u"org.freedesktop.DBus.Error.ServiceUnknown"_s,
          u"org.freedesktop.DBus.Error.NameHasNoOwner"_s,
          u"org.freedesktop.DBus.Error.Disconnected"_s}) {
        FakeIdleService service(bus.connect(), FakeIdleService::failing(error));
        service.queueFor(screenSaver);
        ask();
        EXPECT_TRUE(becomes(State::absent)) << error.toStdString();
        end();
    }
    FakeIdleService service(bus.connect(), FakeIdleService::failing(u"org.example.No"_s));
    service.queueFor(screenSaver);
    ask();
    EXPECT_TRUE(becomes(State::refused));
}

TEST_F(IdleInhibitionTest, TakesAGrantOfAnotherTypeForARefusalAndHasNothingToGiveBack) {
    for (const QString& name : {screenSaver, portal, loginManager}) {
        FakeIdleService service(bus.connect(), FakeIdleService::granting(u"granted"_s));
        service.queueFor(name);
        ask(name);
        EXPECT_TRUE(becomes(State::refused)) << name.toStdString();
        end();
        PrivateBus::takeAllIn(own);
        PrivateBus::takeAllIn(service.bus());
        EXPECT_TRUE(service.released().empty()) << name.toStdString();
    }
}

TEST_F(IdleInhibitionTest, GivesBackToWhoeverGrantedThoughTheNameHasAnotherOwner) {
    FakeIdleService former(bus.connect(), FakeIdleService::granting(1U));
    FakeIdleService next(bus.connect(), FakeIdleService::granting(2U));
    former.queueFor(screenSaver);
    next.queueFor(screenSaver);
    ask();
    ASSERT_TRUE(becomes(State::held));
    former.giveUp(screenSaver);
    end();
    ASSERT_TRUE(comesTo([&] { return former.released().size(); }, 1));
    EXPECT_EQ(former.released()[0].arguments(), QVariantList{1U});
    EXPECT_TRUE(next.released().empty());
}

TEST_F(IdleInhibitionTest, BelievesNobodyButThePortalThatItHasAgreed) {
    FakeIdleService service(bus.connect(), FakeIdleService::silent());
    service.queueFor(portal);
    ask(portal);
    ASSERT_TRUE(comesTo([&] { return service.asked().size(); }, 1));
    const QDBusMessage call = service.asked()[0];
    const QString path = requestPathOf(call);
    const QDBusConnection liar = bus.connect();
    for (int i = 0; i < 100; ++i)
        respond(liar, path);
    service.bus().send(call.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    PrivateBus::takeAllIn(service.bus());
    respond(liar, path);
    PrivateBus::takeAllIn(own);
    QCoreApplication::processEvents();
    EXPECT_EQ(inhibition->state(), State::unanswered);
    respond(service.bus(), path);
    EXPECT_TRUE(becomes(State::held));
}

TEST_F(IdleInhibitionTest, RemembersThatThePortalAgreedUntilItIsKnownWhoThePortalIs) {
    FakeIdleService service(bus.connect(), FakeIdleService::silent());
    service.queueFor(portal);
    ask(portal);
    ASSERT_TRUE(comesTo([&] { return service.asked().size(); }, 1));
    const QDBusMessage call = service.asked()[0];
    const QString path = requestPathOf(call);
    respond(service.bus(), path);
    PrivateBus::takeAllIn(own);
    QCoreApplication::processEvents();
    EXPECT_EQ(inhibition->state(), State::unanswered);
    service.bus().send(call.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    EXPECT_TRUE(becomes(State::held));
}

TEST_F(IdleInhibitionTest, HearsAPortalThatAgreesBeforeItsMethodHasReturned) {
    FakeIdleService service(bus.connect(), [this](const QDBusMessage& call, QDBusConnection& peer) {
        const QString path = requestPathOf(call);
        respond(peer, path);
        peer.send(call.createReply(QVariant::fromValue(QDBusObjectPath(path))));
    });
    service.queueFor(portal);
    ask(portal);
    EXPECT_TRUE(becomesWithoutATurn(State::held));
}

namespace {

class FakeScreenSaver final : public ScreenSaver {
public:
    void suspend() override { ++suspensions; }
    bool isSuspended(std::chrono::milliseconds bound) override {
        bounds.push_back(bound);
        return isGranting;
    }
    void resume() override { ++resumptions; }

    int suspensions = 0;
    int resumptions = 0;
    bool isGranting = true;
    std::vector<std::chrono::milliseconds> bounds;
};

class InhibitingPowerAssertionsTest : public ::testing::Test {
protected:
    [[nodiscard]] static PowerAssertionResult createWith(InhibitingPowerAssertions& assertions) {
        return assertions.create(u"PreventUserIdleDisplaySleep"_s, 255, u"test"_s);
    }

    PrivateBus bus;
    PrivateBus systemBus;
    FakeMainLoop loop;
    MessageBus ownSession{bus.connect()};
    MessageBus ownSystem{systemBus.connect()};
    FakeScreenSaver saver;
};

} // namespace

TEST_F(InhibitingPowerAssertionsTest, AreGrantedWithTheFirstServiceThatAccepts) {
    FakeIdleService slow(bus.connect(), FakeIdleService::silent());
    slow.queueFor(screenSaver);
    FakeIdleService quick(systemBus.connect(), FakeIdleService::granting(u"no descriptor"_s));
    FakeIdleService granting(bus.connect(), FakeIdleService::granting(1U));
    granting.queueFor(u"org.mate.ScreenSaver"_s);
    InhibitingPowerAssertions assertions(loop, &saver, ownSession, ownSystem,
                                         std::chrono::hours(1));
    // The slow one answers at the deadline of the test's, if it has to be waited for.
    std::promise<void> done;
    auto isInTime = std::async(std::launch::async, [&slow, done = done.get_future()] {
        if (done.wait_for(patience) == std::future_status::ready)
            return true;
        for (const QDBusMessage& call : slow.asked())
            slow.bus().send(call.createReply(1U));
        return false;
    });
    EXPECT_EQ(createWith(assertions).status, 0);
    done.set_value();
    EXPECT_TRUE(isInTime.get()) << "it was waited for all services";
    EXPECT_TRUE(saver.bounds.empty()) << "nor is the display server waited for";
}

TEST_F(InhibitingPowerAssertionsTest, HaveOneBoundForAllThatMayKeepThemWaiting) {
    FakeIdleService slow(systemBus.connect(), FakeIdleService::silent());
    slow.queueFor(loginManager);
    InhibitingPowerAssertions assertions(loop, &saver, ownSession, ownSystem);
    EXPECT_EQ(createWith(assertions).status, 0);
    EXPECT_EQ(saver.bounds, std::vector{std::chrono::milliseconds(0)})
        << "nothing is left for the display server";
}

TEST_F(InhibitingPowerAssertionsTest, DoNotWaitForADisplayServerWhoseWordDoesNotCount) {
    FakeIdleService refusing(bus.connect(), FakeIdleService::failing(u"org.example.No"_s));
    refusing.queueFor(screenSaver);
    InhibitingPowerAssertions assertions(loop, &saver, ownSession, ownSystem);
    EXPECT_NE(createWith(assertions).status, 0);
    EXPECT_TRUE(saver.bounds.empty());
    EXPECT_EQ(saver.suspensions, saver.resumptions);
}

TEST_F(InhibitingPowerAssertionsTest, AreRefusedWhereTheDisplayServerAloneIsThereAndDoesNotGrant) {
    saver.isGranting = false;
    InhibitingPowerAssertions assertions(loop, &saver, ownSession, ownSystem);
    EXPECT_NE(createWith(assertions).status, 0);
    EXPECT_EQ(saver.resumptions, 1);
}

TEST_F(InhibitingPowerAssertionsTest, AreAskedForAgainOnTheBusThatFollows) {
    MessageBus following(loop, bus.address());
    ASSERT_TRUE(waitUntil([&] { return following.isJoined(); }));
    InhibitingPowerAssertions assertions(loop, &saver, following, ownSystem);
    const PowerAssertionResult session = createWith(assertions);
    ASSERT_EQ(session.status, 0) << "by the display server";
    bus.stop();
    ASSERT_TRUE(waitUntil([&] { return !following.isJoined(); }));
    bus.start();
    FakeIdleService service(bus.connect(), FakeIdleService::granting(1U));
    service.queueFor(screenSaver);
    loop.advance(std::chrono::seconds(1));
    ASSERT_TRUE(waitUntil([&] { return service.asked().size() == 1; }));
    EXPECT_EQ(service.asked()[0].arguments().value(1), u"test"_s);
    PrivateBus::takeAllIn(following.connection());
    QCoreApplication::processEvents();
    assertions.release(session.id);
    EXPECT_TRUE(waitUntil([&] { return service.released().size() == 1; }));
}

TEST_F(InhibitingPowerAssertionsTest, AreGivenBackOnceHoweverOftenTheyAreReleased) {
    FakeIdleService service(bus.connect(), FakeIdleService::granting(1U));
    service.queueFor(screenSaver);
    InhibitingPowerAssertions assertions(loop, &saver, ownSession, ownSystem);
    const PowerAssertionResult first = createWith(assertions);
    const PowerAssertionResult second = createWith(assertions);
    ASSERT_EQ(first.status, 0);
    ASSERT_EQ(second.status, 0);
    ASSERT_TRUE(waitUntil([&] { return service.asked().size() == 2; }));
    assertions.release(first.id);
    assertions.release(first.id);
    EXPECT_EQ(saver.resumptions, 1);
    PrivateBus::takeAllIn(ownSession.connection());
    EXPECT_TRUE(waitUntil([&] { return service.released().size() == 1; }));
    assertions.release(second.id);
    EXPECT_TRUE(waitUntil([&] { return service.released().size() == 2; }));
    EXPECT_EQ(saver.resumptions, 2);
}

} // namespace tilewright::testing
