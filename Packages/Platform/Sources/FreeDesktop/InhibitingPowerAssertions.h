#pragma once

#include "IdleService.h"
#include "MessageBus.h"
#include "ScreenSaver.h"

#include <Platform/MainLoop.h>
#include <Platform/PowerAssertions.h>

#include <QObject>
#include <chrono>
#include <map>
#include <vector>

namespace tilewright {

class IdleInhibition;

/// Holds an assertion through every idle-inhibit service that the session offers, together with the
/// display server's own screen saver.
///
/// All services are asked at once, none is started for it. The assertion is granted when one has
/// accepted; those that accept later are held too, as are those that appear, or come back, while it
/// lasts. Suspending the display server's screen saver alone is enough only where no such service
/// is on the session bus. The status of a refused assertion is an errno value.
class InhibitingPowerAssertions final : public PowerAssertions {
public:
    /// How long `create` takes at most, the display server included.
    static constexpr std::chrono::milliseconds answerBound{300};

    /// `screenSaver` may be null where there is none; it, the loop and the buses outlive this. A
    /// bus that is not there counts as one with nothing on it until it comes, or comes back.
    InhibitingPowerAssertions(MainLoop& loop, ScreenSaver* screenSaver, MessageBus& sessionBus,
                              MessageBus& systemBus, std::chrono::milliseconds bound = answerBound);
    ~InhibitingPowerAssertions() override;

    [[nodiscard]] PowerAssertionResult create(const QString& type, quint32 level,
                                              const QString& name) override;
    void release(PowerAssertionID id) override;

private:
    struct Assertion {
        QString reason;
        /// Children of `owner_` that destroy themselves after their end.
        std::vector<IdleInhibition*> inhibitions;
    };

    [[nodiscard]] Assertion ask(const QString& reason);
    void askOn(IdleService::Bus bus, Assertion& assertion);
    void leave(IdleService::Bus bus);
    [[nodiscard]] MessageBus& busOf(IdleService::Bus bus);
    void end(const Assertion& assertion);

    MainLoop& loop_;
    ScreenSaver* screenSaver_;
    MessageBus& sessionBus_;
    MessageBus& systemBus_;
    const std::chrono::milliseconds bound_;
    std::map<PowerAssertionID, Assertion> assertions_;
    PowerAssertionID lastID_ = 0;
    QObject owner_;
};

} // namespace tilewright
