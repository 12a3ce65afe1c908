#include "IdleInhibition.h"

#include "FreeDesktopLog.h"
#include "MessageBus.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace tilewright {

namespace {

/// The bus itself answers for a service that dies, so an answer may take whatever time it needs:
/// giving up on one would lose the means to give back what it grants.
constexpr int withoutTimeout = std::numeric_limits<int>::max();

/// How often, and from what interval on (doubled each time), a service that has just taken its name
/// is asked again while its object is not there yet.
constexpr int retryCount = 5;
constexpr MainLoop::Interval firstRetryInterval{250};

bool meansNoSuchObject(QDBusError::ErrorType error) {
    return error == QDBusError::UnknownObject || error == QDBusError::UnknownMethod ||
           error == QDBusError::UnknownInterface;
}

bool meansNoSuchService(const QDBusMessage& reply, QDBusError::ErrorType error) {
    return error == QDBusError::ServiceUnknown || error == QDBusError::NoReply ||
           error == QDBusError::Disconnected ||
           reply.errorName() == u"org.freedesktop.DBus.Error.NameHasNoOwner"_s;
}

/// The grant in a reply, in the type that the service is known to answer; invalid otherwise.
QVariant grantIn(const QDBusMessage& reply, IdleService::Grant kind) {
    const QVariant first = reply.arguments().value(0);
    switch (kind) {
    case IdleService::Grant::cookie:
        return first.typeId() == QMetaType::UInt ? first : QVariant();
    case IdleService::Grant::request:
        return first.typeId() == qMetaTypeId<QDBusObjectPath>() ? first : QVariant();
    case IdleService::Grant::descriptor:
        return first.typeId() == qMetaTypeId<QDBusUnixFileDescriptor>() ? first : QVariant();
    }
    return {};
}

} // namespace

IdleInhibition::IdleInhibition(MainLoop& loop, const IdleService& service,
                               const QDBusConnection& bus, const QString& reason, QObject* parent)
    : QObject(parent)
    , loop_(loop)
    , service_(service)
    , bus_(bus)
    , reason_(reason)
    , ownerWatcher_(new QDBusServiceWatcher(service.name, bus,
                                            QDBusServiceWatcher::WatchForOwnerChange, this)) {
    connect(ownerWatcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                ownerChanged(newOwner);
            });
    request();
}

IdleInhibition::~IdleInhibition() = default;

void IdleInhibition::request() {
    state_ = State::unanswered;
    ownerMeanwhile_.reset();
    grantedBy_.clear();
    auto message = QDBusMessage::createMethodCall(service_.name, service_.paths[pathIndex_],
                                                  service_.interface, u"Inhibit"_s);
    message.setAutoStartService(false);
    QVariantList arguments = service_.arguments(u"Tilewright"_s, reason_);
    if (service_.grant == IdleService::Grant::request)
        expectPortalAnswer(arguments);
    message.setArguments(arguments);
    qCDebug(idleLog, "Asked %ls to inhibit idling", qUtf16Printable(service_.name));
    callee_ = askForOwner(bus_, service_.name);
    call_ = new QDBusPendingCallWatcher(bus_.asyncCall(message, withoutTimeout), this);
    connect(call_, &QDBusPendingCallWatcher::finished, this, &IdleInhibition::takeReply);
}

void IdleInhibition::takeReply() {
    QDBusPendingCallWatcher* call = std::exchange(call_, nullptr);
    call->disconnect(this);
    call->deleteLater();
    answered(call->reply());
}

void IdleInhibition::expectPortalAnswer(QVariantList& arguments) {
    // The portal may answer before its method returns, so the request's path has to be known
    // beforehand: it is made from our address on the bus and a token of our choice.
    static int requestCount = 0;
    const QString token = u"tilewright%1"_s.arg(++requestCount);
    QVariantMap options = arguments.last().toMap();
    options.insert(u"handle_token"_s, token);
    arguments.last() = options;
    const QString sender = bus_.baseService().mid(1).replace(u'.', u'_');
    stopExpectingPortalAnswer();
    requestPath_ = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
    // Any sender: naming one would look up its owner, blocking. Whose it is is judged later.
    bus_.connect(QString(), requestPath_, u"org.freedesktop.portal.Request"_s, u"Response"_s, this,
                 SLOT(portalAnswered(uint, QVariantMap, QDBusMessage)));
}

void IdleInhibition::stopExpectingPortalAnswer() {
    responses_.clear();
    if (!requestPath_.isEmpty())
        bus_.disconnect(QString(), requestPath_, u"org.freedesktop.portal.Request"_s, u"Response"_s,
                        this, SLOT(portalAnswered(uint, QVariantMap, QDBusMessage)));
    requestPath_.clear();
}

void IdleInhibition::takeAnswers() {
    // Not by delivering the watcher's events: Qt posts a reply that came in before the
    // watcher was made to an object of its own.
    if (call_ && call_->isFinished())
        takeReply();
    if (service_.grant == IdleService::Grant::request)
        QCoreApplication::sendPostedEvents(this);
}

void IdleInhibition::answered(const QDBusMessage& reply) {
    const QString answerer =
        callee_.isFinished() && callee_.isValid() ? callee_.value() : QString();
    const bool isStale = ownerMeanwhile_ && *ownerMeanwhile_ != answerer;
    if (isStale && !isEnding_) {
        pathIndex_ = 0;
        if (ownerMeanwhile_->isEmpty())
            state_ = State::absent;
        else
            request();
        return;
    }
    if (reply.type() == QDBusMessage::ReplyMessage) {
        grant_ = grantIn(reply, service_.grant);
        grantedBy_ = answerer;
        if (!grant_.isValid())
            state_ = State::refused;
        else if (service_.grant != IdleService::Grant::request)
            state_ = State::held;
        else
            takeEarlyResponse();
        qCDebug(idleLog, "%ls answered: %s", qUtf16Printable(service_.name),
                !grant_.isValid()       ? "with something that is no grant"
                : state_ == State::held ? "granted"
                                        : "it will tell later");
    } else {
        failed(reply);
    }
    if (isEnding_ && !call_) {
        giveBack();
        deleteLater();
    }
}

void IdleInhibition::failed(const QDBusMessage& error) {
    const QDBusError::ErrorType type = QDBusError(error).type();
    if (meansNoSuchObject(type) && pathIndex_ + 1 < service_.paths.size() && !isEnding_) {
        ++pathIndex_;
        request();
        return;
    }
    const bool isAbsent = meansNoSuchObject(type) || meansNoSuchService(error, type);
    state_ = isAbsent ? State::absent : State::refused;
    qCDebug(idleLog, "%ls: %s, %ls", qUtf16Printable(service_.name),
            isAbsent ? "offers no such thing" : "refused", qUtf16Printable(error.errorName()));
    if (meansNoSuchObject(type) && retriesLeft_ > 0 && !isEnding_)
        askAgainShortly();
}

void IdleInhibition::askAgainShortly() {
    const auto interval = firstRetryInterval * (1 << (retryCount - retriesLeft_));
    --retriesLeft_;
    retry_ = ScopedTimer(loop_.scheduleOnce(interval, [this] {
        pathIndex_ = 0;
        request();
    }));
}

void IdleInhibition::portalAnswered(uint response, const QVariantMap& /*results*/,
                                    const QDBusMessage& message) {
    // Before the method has returned nobody knows who the portal is: a few candidates are kept, and
    // of each his first word.
    constexpr std::size_t mostResponses = 16;
    if (state_ != State::unanswered)
        return;
    const bool isKnown = std::ranges::any_of(
        responses_, [&](const auto& known) { return known.first == message.service(); });
    if (grantedBy_.isEmpty() && !isKnown && responses_.size() < mostResponses)
        responses_.emplace_back(message.service(), response);
    else if (message.service() == grantedBy_)
        takeResponse(response);
}

void IdleInhibition::takeEarlyResponse() {
    const auto found =
        std::find_if(responses_.begin(), responses_.end(),
                     [this](const auto& response) { return response.first == grantedBy_; });
    if (found != responses_.end())
        takeResponse(found->second);
}

void IdleInhibition::takeResponse(uint response) {
    state_ = response == 0 ? State::held : State::refused;
    qCDebug(idleLog, "%ls told: %s", qUtf16Printable(service_.name),
            response == 0 ? "granted" : "refused");
    stopExpectingPortalAnswer();
}

void IdleInhibition::ownerChanged(const QString& newOwner) {
    retriesLeft_ = retryCount;
    if (call_) {
        ownerMeanwhile_ = newOwner;
        return;
    }
    // An answer may have been taken in ahead of this news.
    if (!newOwner.isEmpty() && newOwner == grantedBy_)
        return;
    qCDebug(idleLog, "%ls %s", qUtf16Printable(service_.name),
            newOwner.isEmpty() ? "has gone" : "has come up anew");
    grant_.clear();
    grantedBy_.clear();
    pathIndex_ = 0;
    retry_.reset();
    if (newOwner.isEmpty())
        state_ = State::absent;
    else
        request();
}

void IdleInhibition::end() {
    isEnding_ = true;
    retry_.reset();
    delete std::exchange(ownerWatcher_, nullptr);
    if (call_)
        return;
    giveBack();
    deleteLater();
}

void IdleInhibition::giveBack() {
    if (!grant_.isValid())
        return;
    qCDebug(idleLog, "Gave the grant back to %ls", qUtf16Printable(service_.name));
    QDBusMessage message;
    switch (service_.grant) {
    case IdleService::Grant::cookie:
        message = QDBusMessage::createMethodCall(grantedBy_, service_.paths[pathIndex_],
                                                 service_.interface, service_.release);
        message << grant_;
        break;
    case IdleService::Grant::request:
        message = QDBusMessage::createMethodCall(grantedBy_, grant_.value<QDBusObjectPath>().path(),
                                                 u"org.freedesktop.portal.Request"_s, u"Close"_s);
        break;
    case IdleService::Grant::descriptor:
        grant_.clear();
        return;
    }
    message.setAutoStartService(false);
    bus_.send(message);
    grant_.clear();
}

} // namespace tilewright
