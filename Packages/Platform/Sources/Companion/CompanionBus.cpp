#include "CompanionBus.h"

#include "CompanionDecoder.h"

#include <QDBusVirtualObject>
#include <algorithm>
#include <utility>

namespace tilewright {

namespace {

/// Nobody who may stand in the way is let: the name is had at once or not at all.
constexpr quint32 doNotQueue = 4;
/// A companion has one call on its way, and the odd one beside it.
constexpr std::size_t mostCalls = 16;

constexpr const char* accessDenied = "org.freedesktop.DBus.Error.AccessDenied";
constexpr const char* limitsExceeded = "org.freedesktop.DBus.Error.LimitsExceeded";
constexpr const char* invalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";

QString nothingToDo() {
    return QStringLiteral("{}");
}

} // namespace

/// What is on the bus. Calls of the interface's methods are handed on, whoever makes them.
class CompanionBus::Object final : public QDBusVirtualObject {
public:
    explicit Object(CompanionBus& companion)
        : companion_(companion) {}

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
        if (message.type() != QDBusMessage::MethodCallMessage ||
            message.interface() != interfaceName())
            return false;
        message.setDelayedReply(true);
        companion_.receive(message);
        return true;
    }

private:
    CompanionBus& companion_;
};

QString CompanionBus::serviceName() {
    return QStringLiteral("org.tilewright.Companion");
}

QString CompanionBus::objectPath() {
    return QStringLiteral("/org/tilewright/Companion");
}

QString CompanionBus::interfaceName() {
    return QStringLiteral("org.tilewright.Companion1");
}

CompanionBus::CompanionBus(MainLoop& loop, MessageBus& bus, CompanionOutbox& outbox,
                           QString compositor, Carrier carrier)
    : loop_(loop)
    , bus_(bus)
    , outbox_(outbox)
    , compositorName_(std::move(compositor))
    , carrier_(std::move(carrier))
    , object_(std::make_unique<Object>(*this))
    , counted_(loop.now()) {
    outbox_.onNews(life_.guard([this] {
        // The answer of the call that brings it about follows anyway.
        if (!isReceiving_)
            postAnswers();
    }));
    connect(&bus_, &MessageBus::joined, this, &CompanionBus::join);
    connect(&bus_, &MessageBus::left, this, &CompanionBus::leave);
    if (bus_.isJoined())
        join();
}

CompanionBus::~CompanionBus() {
    if (!bus_.isJoined())
        return;
    QDBusConnection bus = bus_.connection();
    bus.unregisterObject(objectPath());
    if (carrier_)
        return;
    QDBusMessage release = callToBus(QStringLiteral("ReleaseName"));
    release << serviceName();
    bus.send(release);
}

void CompanionBus::join() {
    leave();
    // Before the name, so that whoever sees the name can call the object.
    QDBusConnection bus = bus_.connection();
    bus.registerVirtualObject(objectPath(), object_.get());
    owner_ = std::make_unique<BusNameOwner>(bus_.connection(), compositorName_);
    connect(owner_.get(), &BusNameOwner::changed, this, &CompanionBus::compositorChanged);
    if (carrier_)
        return;
    ownName_ = std::make_unique<BusNameOwner>(bus_.connection(), serviceName());
    connect(ownName_.get(), &BusNameOwner::changed, this, &CompanionBus::requestName);
}

void CompanionBus::leave() {
    owner_.reset();
    ownName_.reset();
    compositorChanged();
}

void CompanionBus::compositorChanged() {
    const QString now = compositor();
    if (std::exchange(heard_, now) != now) {
        calls_.clear();
        poll_.reset();
        outbox_.clear();
        Q_EMIT lost();
    }
    requestName();
}

void CompanionBus::requestName() {
    // A companion greets as soon as it sees the name, and has to be known by then.
    if (heard_.isEmpty() || !ownName_ || !ownName_->owner().isEmpty())
        return;
    QDBusMessage request = callToBus(QStringLiteral("RequestName"));
    request << serviceName() << doNotQueue;
    bus_.connection().send(request);
}

void CompanionBus::refuse(const QDBusMessage& call, const char* error, const char* why) {
    bus_.connection().send(
        call.createErrorReply(QString::fromLatin1(error), QString::fromLatin1(why)));
}

bool CompanionBus::spendMessage() {
    const MainLoop::Interval now = loop_.now();
    const double earned = static_cast<double>((now - counted_).count()) * mostMessagesASecond /
                          static_cast<double>(std::chrono::milliseconds(1000).count());
    counted_ = now;
    allowance_ = std::min<double>(mostMessagesASecond, allowance_ + earned);
    if (allowance_ < 1)
        return false;
    allowance_ -= 1;
    return true;
}

void CompanionBus::receive(const QDBusMessage& call) {
    if (heard_.isEmpty() || call.service() != heard_) {
        refuse(call, accessDenied, "Only the compositor's companion may call.");
        return;
    }
    if (!spendMessage()) {
        Q_EMIT overrun();
        refuse(call, limitsExceeded, "Too many calls.");
        return;
    }
    const QVariantList arguments = call.arguments();
    const bool isText = arguments.size() == 1 &&
                        arguments[0].metaType() == QMetaType::fromType<QString>() &&
                        arguments[0].toString().size() <= CompanionDecoder::longestMessage;
    const auto message =
        isText ? CompanionDecoder::decode(call.member(), arguments[0].toString().toUtf8())
               : std::nullopt;
    if (!message) {
        refuse(call, invalidArguments, "This call makes no sense.");
        return;
    }
    if (std::holds_alternative<CompanionPoll>(*message)) {
        if (const auto former = std::exchange(poll_, call))
            send(*former, nothingToDo());
        if (!outbox_.isEmpty())
            postAnswers();
        return;
    }
    if (std::holds_alternative<CompanionHello>(*message)) {
        outbox_.clear();
        // Whoever called it listens no more: what it were answered would be lost.
        if (const auto former = std::exchange(poll_, std::nullopt))
            send(*former, nothingToDo());
    }
    // What is there already has been asked for by nobody.
    CompanionOutbox::Frames before = outbox_.takeFrames();
    isReceiving_ = true;
    Q_EMIT told(*message);
    isReceiving_ = false;
    calls_.push_back({call, outbox_.takeFrames()});
    std::erase_if(before, [brought = &calls_.back().frames](const auto& frame) {
        return brought->contains(frame.first);
    });
    outbox_.giveBack(std::move(before));
    if (const auto* hello = std::get_if<CompanionHello>(&*message);
        hello && hello->protocol != CompanionDecoder::protocol && !calls_.empty()) {
        calls_.pop_back();
        send(call, QStringLiteral("{\"protocol\":%1}").arg(CompanionDecoder::protocol));
        return;
    }
    postAnswers();
}

void CompanionBus::postAnswers() {
    // What they have been calling for is answered at once, without what may yet come of it.
    while (calls_.size() > mostCalls) {
        send(calls_.front());
        calls_.pop_front();
    }
    answering_.post();
}

void CompanionBus::answer() {
    // A carrier sees its window close, as it would see it come.
    if (carrier_)
        outbox_.dropClosedPanel();
    // Other answers are dropped where they come late, as after this process was stopped.
    if (doesAnybodyWait() && outbox_.hasLasting())
        sendToWhoeverWaits(outbox_.takeLasting());
    std::deque<Call> calls = std::exchange(calls_, {});
    if (!calls.empty()) {
        Call last = std::move(calls.back());
        calls.pop_back();
        for (const Call& call : calls)
            send(call);
        outbox_.giveBack(std::move(last.frames));
        send(last.message, outbox_.take());
    }
    if (doesAnybodyWait() && !outbox_.isEmpty())
        sendToWhoeverWaits(outbox_.take());
}

void CompanionBus::sendToWhoeverWaits(const QString& text) {
    if (carrier_)
        carrier_(text);
    else
        send(*std::exchange(poll_, std::nullopt), text);
}

void CompanionBus::send(const QDBusMessage& call, const QString& text) {
    bus_.connection().send(call.createReply(text));
}

} // namespace tilewright
