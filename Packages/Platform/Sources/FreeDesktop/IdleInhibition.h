#pragma once

#include "IdleService.h"

#include <Platform/MainLoop.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QObject>
#include <QVariantMap>
#include <utility>
#include <vector>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

namespace tilewright {

/// The wish that one service keeps the session from idling, kept up for as long as it lasts:
/// the service is asked at once, without being started for it, and again whenever it appears or
/// comes back. Nothing blocks. What is granted ends by itself when the process dies. Main thread
/// only.
class IdleInhibition final : public QObject {
    Q_OBJECT

public:
    enum class State {
        /// Asked, without an answer yet.
        unanswered,
        held,
        /// It is there and said no.
        refused,
        /// It is not on the bus, or offers no such thing.
        absent,
    };

    /// `bus` is the one that the service names. The loop and the parent outlive the wish.
    IdleInhibition(MainLoop& loop, const IdleService& service, const QDBusConnection& bus,
                   const QString& reason, QObject* parent);
    ~IdleInhibition() override;

    [[nodiscard]] State state() const { return state_; }
    [[nodiscard]] const IdleService& service() const { return service_; }
    /// Takes in what has been answered so far, without turning the event loop.
    void takeAnswers();
    /// Gives back what is held, or what a call on its way still brings. The object destroys itself
    /// once nothing is left to give back; it is not to be used any more.
    void end();

private Q_SLOTS:
    void portalAnswered(uint response, const QVariantMap& results, const QDBusMessage& message);

private:
    void request();
    void expectPortalAnswer(QVariantList& arguments);
    void stopExpectingPortalAnswer();
    void takeEarlyResponse();
    void takeResponse(uint response);
    void takeReply();
    void answered(const QDBusMessage& reply);
    void failed(const QDBusMessage& error);
    void askAgainShortly();
    void ownerChanged(const QString& newOwner);
    void giveBack();

    MainLoop& loop_;
    const IdleService service_;
    QDBusConnection bus_;
    const QString reason_;
    QDBusServiceWatcher* ownerWatcher_;
    QDBusPendingCallWatcher* call_ = nullptr;
    /// Whom it goes to.
    QDBusPendingReply<QString> callee_;
    State state_ = State::unanswered;
    qsizetype pathIndex_ = 0;
    /// What was granted, and by which connection of the bus.
    QVariant grant_;
    QString grantedBy_;
    /// Of the portal's answer; empty while none is expected.
    QString requestPath_;
    /// By whom and what, while it is not known who the portal is.
    std::vector<std::pair<QString, uint>> responses_;
    /// The service's newest owner, where it changed while a call was on its way.
    std::optional<QString> ownerMeanwhile_;
    /// A service may take its name before its object is there.
    ScopedTimer retry_;
    int retriesLeft_ = 0;
    bool isEnding_ = false;
};

} // namespace tilewright
