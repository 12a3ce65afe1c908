#pragma once

#include "CompanionMessage.h"
#include "CompanionOutbox.h"

#include <FreeDesktop/BusNameOwner.h>
#include <FreeDesktop/MessageBus.h>
#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>
#include <Platform/PostedCall.h>

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace tilewright {

/// The object on the session bus that a companion calls, and the only one who is let: whoever owns
/// the compositor's own name there. All others get an error, and are kept no word of. What the
/// companion is to do goes into the answers: into that of the call that brought it about, a turn of
/// the loop later, else into that of the call that waits for commands; where none ever waits, it is
/// handed to a carrier. Nothing here waits. Main thread only.
class CompanionBus final : public QObject {
    Q_OBJECT

public:
    /// A companion that calls more often than this in a second is not listened to until it has
    /// calmed down. One call on its way at a time and the fastest of mice stay below.
    static constexpr int mostMessagesASecond = 5000;

    [[nodiscard]] static QString serviceName();
    [[nodiscard]] static QString objectPath();
    [[nodiscard]] static QString interfaceName();

    /// Takes commands to a companion, as the text of an answer.
    using Carrier = std::function<void(const QString&)>;

    /// `compositor` is the name on the bus whose owner runs the companion. One that has a carrier
    /// knows this program by its address; without one, by the service's name. The loop, the bus and
    /// the outbox have to outlive this.
    CompanionBus(MainLoop& loop, MessageBus& bus, CompanionOutbox& outbox, QString compositor,
                 Carrier carrier = {});
    ~CompanionBus() override;

    /// The compositor's own address on the bus; empty while it is not known.
    [[nodiscard]] QString compositor() const { return owner_ ? owner_->owner() : QString(); }

Q_SIGNALS:
    /// The companion told something.
    void told(const tilewright::CompanionMessage& message);
    /// What it told was too much to be listened to: something that matters may have been among it.
    void overrun();
    /// Whoever has been listened to is gone, or has changed.
    void lost();

private:
    class Object;
    /// One that is answered at the end of the turn.
    struct Call {
        QDBusMessage message;
        /// What it has brought about: asked for by any other call they would be of another moment,
        /// and may come too late for this one.
        CompanionOutbox::Frames frames;
    };

    void join();
    void leave();
    void compositorChanged();
    void requestName();
    void receive(const QDBusMessage& call);
    void refuse(const QDBusMessage& call, const char* error, const char* why);
    [[nodiscard]] bool spendMessage();
    void postAnswers();
    void answer();
    [[nodiscard]] bool doesAnybodyWait() const { return poll_ || carrier_; }
    void sendToWhoeverWaits(const QString& text);
    void send(const QDBusMessage& call, const QString& text);
    void send(const Call& call) { send(call.message, CompanionOutbox::answerWith(call.frames)); }

    MainLoop& loop_;
    MessageBus& bus_;
    CompanionOutbox& outbox_;
    const QString compositorName_;
    const Carrier carrier_;
    std::unique_ptr<Object> object_;
    std::unique_ptr<BusNameOwner> owner_;
    /// Of this program's own name there, which another process may have.
    std::unique_ptr<BusNameOwner> ownName_;
    QString heard_;
    std::deque<Call> calls_;
    /// The call that waits for commands.
    std::optional<QDBusMessage> poll_;
    bool isReceiving_ = false;
    /// How many messages may still come now, and when that was counted.
    double allowance_ = mostMessagesASecond;
    MainLoop::Interval counted_{0};
    PostedCall answering_{loop_, [this] { answer(); }};
    Lifetime life_;
};

} // namespace tilewright
