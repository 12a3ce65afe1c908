#include "InhibitingPowerAssertions.h"

#include "FreeDesktopLog.h"
#include "IdleInhibition.h"

#include <QDeadlineTimer>
#include <QThread>
#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace tilewright {

namespace {

using Inhibitions = std::vector<IdleInhibition*>;

bool isAnyHeld(const Inhibitions& inhibitions) {
    return std::any_of(inhibitions.begin(), inhibitions.end(), [](const auto* inhibition) {
        return inhibition->state() == IdleInhibition::State::held;
    });
}

bool areAllAnswered(const Inhibitions& inhibitions) {
    return std::none_of(inhibitions.begin(), inhibitions.end(), [](const auto* inhibition) {
        return inhibition->state() == IdleInhibition::State::unanswered;
    });
}

/// Whether the session bus has nobody who would blank the display on his own account.
bool isDesktopWithoutIdleService(const Inhibitions& inhibitions) {
    return std::all_of(inhibitions.begin(), inhibitions.end(), [](const auto* inhibition) {
        return inhibition->service().bus == IdleService::Bus::system ||
               inhibition->state() == IdleInhibition::State::absent;
    });
}

void waitForFirstGrant(const Inhibitions& inhibitions, const QDeadlineTimer& deadline) {
    // A nested event loop would let the rest of the program run in the middle of the caller's work.
    // Qt receives replies on a thread of its own and offers no bounded wait for several of
    // them, so this looks at short intervals, and takes in nothing but these answers.
    constexpr unsigned long intervalInMicroseconds = 500;
    for (;;) {
        for (IdleInhibition* inhibition : inhibitions)
            inhibition->takeAnswers();
        if (isAnyHeld(inhibitions) || areAllAnswered(inhibitions) || deadline.hasExpired())
            return;
        QThread::usleep(intervalInMicroseconds);
    }
}

} // namespace

InhibitingPowerAssertions::InhibitingPowerAssertions(MainLoop& loop, ScreenSaver* screenSaver,
                                                     MessageBus& sessionBus, MessageBus& systemBus,
                                                     std::chrono::milliseconds bound)
    : loop_(loop)
    , screenSaver_(screenSaver)
    , sessionBus_(sessionBus)
    , systemBus_(systemBus)
    , bound_(bound) {
    for (const IdleService::Bus bus : {IdleService::Bus::session, IdleService::Bus::system}) {
        QObject::connect(&busOf(bus), &MessageBus::left, &owner_, [this, bus] { leave(bus); });
        QObject::connect(&busOf(bus), &MessageBus::joined, &owner_, [this, bus] {
            for (auto& [id, assertion] : assertions_)
                askOn(bus, assertion);
        });
    }
}

InhibitingPowerAssertions::~InhibitingPowerAssertions() = default;

PowerAssertionResult InhibitingPowerAssertions::create(const QString& type, quint32 level,
                                                       const QString& name) {
    constexpr quint32 levelOn = 255;
    if (type != u"PreventUserIdleDisplaySleep"_s || level != levelOn)
        return {EINVAL, 0};
    // One bound for all of it, whoever keeps it waiting.
    const QDeadlineTimer deadline(bound_);
    const Assertion assertion = ask(name);
    waitForFirstGrant(assertion.inhibitions, deadline);
    // Another client may hold the display server: it is waited for only where its word counts.
    const bool isGranted =
        isAnyHeld(assertion.inhibitions) ||
        (screenSaver_ && isDesktopWithoutIdleService(assertion.inhibitions) &&
         screenSaver_->isSuspended(std::chrono::milliseconds(deadline.remainingTime())));
    qCDebug(idleLog, "The computer %s", isGranted ? "is kept awake" : "cannot be kept awake");
    if (!isGranted) {
        end(assertion);
        return {EOPNOTSUPP, 0};
    }
    assertions_.emplace(++lastID_, assertion);
    return {0, lastID_};
}

void InhibitingPowerAssertions::release(PowerAssertionID id) {
    const auto found = assertions_.find(id);
    if (found == assertions_.end())
        return;
    end(found->second);
    assertions_.erase(found);
}

InhibitingPowerAssertions::Assertion InhibitingPowerAssertions::ask(const QString& reason) {
    Assertion assertion;
    assertion.reason = reason;
    for (const IdleService::Bus bus : {IdleService::Bus::session, IdleService::Bus::system})
        askOn(bus, assertion);
    if (screenSaver_)
        screenSaver_->suspend();
    return assertion;
}

void InhibitingPowerAssertions::askOn(IdleService::Bus bus, Assertion& assertion) {
    if (!busOf(bus).isJoined())
        return;
    for (const IdleService& service : idleServices()) {
        if (service.bus == bus)
            assertion.inhibitions.push_back(new IdleInhibition(
                loop_, service, busOf(bus).connection(), assertion.reason, &owner_));
    }
}

void InhibitingPowerAssertions::leave(IdleService::Bus bus) {
    // What was granted has ended with the bus. A descriptor has not: it is given back.
    for (auto& [id, assertion] : assertions_) {
        std::erase_if(assertion.inhibitions, [bus](IdleInhibition* inhibition) {
            if (inhibition->service().bus != bus)
                return false;
            inhibition->end();
            return true;
        });
    }
}

MessageBus& InhibitingPowerAssertions::busOf(IdleService::Bus bus) {
    return bus == IdleService::Bus::session ? sessionBus_ : systemBus_;
}

void InhibitingPowerAssertions::end(const Assertion& assertion) {
    for (IdleInhibition* inhibition : assertion.inhibitions)
        inhibition->end();
    if (screenSaver_)
        screenSaver_->resume();
}

} // namespace tilewright
