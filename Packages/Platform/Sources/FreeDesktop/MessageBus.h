#pragma once

#include "BusGreeting.h"

#include <Platform/MainLoop.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>

class QFileSystemWatcher;

namespace tilewright {

/// A call of one of the bus's own methods.
[[nodiscard]] QDBusMessage callToBus(const QString& method);

/// Asks a bus who owns a name now, without waiting; an error is the answer where nobody does. The
/// bus takes in what one connection sends in its order: a call to the name that follows at once
/// goes to that owner, and is answered after this. What a reply itself says of its sender Qt passes
/// on in some versions only.
[[nodiscard]] QDBusPendingReply<QString> askForOwner(const QDBusConnection& bus,
                                                     const QString& name);

/// Hands `then` the answer of a call that nobody waits for, be it an error, unless the receiver has
/// gone by then. Main thread only.
void whenAnswered(const QDBusPendingCall& call, QObject* receiver,
                  std::function<void(const QDBusMessage& answer)> then);

/// This program's way to a message bus that may be there, or come, or say nothing for as long as it
/// likes: nothing ever waits for it. It is connected to when it answers, and again when it has gone
/// and another has taken its place at the same address. Where anybody may put a socket into that
/// folder, nobody's successor is believed. Main thread only.
class MessageBus final : public QObject {
    Q_OBJECT

public:
    enum class Kind { session, system };

    /// How long the bus of the environment has to answer in order to be joined at once.
    static constexpr std::chrono::milliseconds startBound{200};

    /// The bus of the environment.
    MessageBus(MainLoop& loop, Kind kind);
    /// The bus at these addresses. One at a socket is joined from the event loop; one of another
    /// kind at once, as the libraries do it. The loop has to outlive this.
    MessageBus(MainLoop& loop, const QByteArray& addresses);
    /// A connection that somebody else has opened. It is not opened again.
    explicit MessageBus(const QDBusConnection& connection);
    ~MessageBus() override;

    /// Where the buses of the environment are; empty where only the libraries can tell.
    [[nodiscard]] static QByteArray addresses(Kind kind);

    /// The connection; one that is not connected while the bus does not answer.
    [[nodiscard]] const QDBusConnection& connection() const { return connection_; }
    [[nodiscard]] bool isJoined() const { return isJoined_; }
    /// Whether nobody is at the address, rather than somebody who has yet to answer.
    [[nodiscard]] bool isAbsent() const { return isAbsent_; }

Q_SIGNALS:
    /// The bus answers: `connection()` is a new one.
    void joined();
    /// The bus is gone, with all that was on it; or nobody is there to begin with.
    void left();

private Q_SLOTS:
    void disconnected();

private:
    void greet();
    void heard();
    void join();
    void setConnection(const QDBusConnection& connection);
    void awaitAnother();
    void greetAgainShortly();

    MainLoop* loop_ = nullptr;
    const QByteArray addresses_;
    QDBusConnection connection_;
    /// Of a connection that is to be closed; empty for one that somebody else has opened.
    QString name_;
    std::unique_ptr<BusGreeting> greeting_;
    std::unique_ptr<QSocketNotifier> reply_;
    /// Where a socket is to appear.
    std::unique_ptr<QFileSystemWatcher> folders_;
    /// A socket may be there before it takes connections.
    ScopedTimer retry_;
    int retriesLeft_ = 0;
    bool isJoined_ = false;
    bool isAbsent_ = false;
};

} // namespace tilewright
