#pragma once

#include <QByteArray>
#include <chrono>

namespace tilewright {

/// The first word that every client says to a message bus, said without waiting for the reply: so
/// that a bus that answers is told from one that takes connections and never says anything, for
/// which the libraries would wait without a bound.
///
/// Only buses at sockets of this machine can be greeted.
class BusGreeting {
public:
    enum class State {
        /// The bus has been greeted and has not replied yet.
        unanswered,
        /// It has replied, or its address is of a kind that cannot be greeted.
        answered,
        /// Nobody is there.
        absent,
    };

    /// `addresses` as `$DBUS_SESSION_BUS_ADDRESS` has them: the first counts where somebody is.
    explicit BusGreeting(const QByteArray& addresses);
    BusGreeting(const BusGreeting&) = delete;
    BusGreeting& operator=(const BusGreeting&) = delete;
    ~BusGreeting();

    /// Waits for the reply for as long as the bound allows.
    State wait(std::chrono::milliseconds bound);
    /// Takes the reply in if it has come. Does not wait.
    State look() { return wait(std::chrono::milliseconds(0)); }
    /// Becomes readable with the reply; none unless one is awaited.
    [[nodiscard]] int descriptor() const { return socket_; }

    /// The paths of the sockets in the addresses, in their order.
    [[nodiscard]] static QList<QByteArray> socketPaths(const QByteArray& addresses);

private:
    void greet(const QByteArray& path);
    void close();

    int socket_ = -1;
    State state_ = State::absent;
};

} // namespace tilewright
