#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <atomic>
#include <thread>

namespace tilewright::testing {

/// Somebody on a session's bus who makes the same call as fast as it is taken in, for as long as
/// this lives: a thousand times, of which the last is waited for, and so on.
class BusFlood {
public:
    BusFlood(const QString& busAddress, const QDBusMessage& call)
        : thread_([this, busAddress, call] {
            const QString name = QStringLiteral("flood");
            QDBusConnection bus = QDBusConnection::connectToBus(busAddress, name);
            while (!isOver_) {
                for (int i = 1; i < atATime; ++i)
                    bus.send(call);
                const QDBusMessage answer = bus.call(call, QDBus::Block);
                isRefused_ = answer.errorName() == u"org.freedesktop.DBus.Error.AccessDenied";
                calls_ += atATime;
            }
            QDBusConnection::disconnectFromBus(name);
        }) {}
    ~BusFlood() {
        isOver_ = true;
        thread_.join();
    }
    BusFlood(const BusFlood&) = delete;
    BusFlood& operator=(const BusFlood&) = delete;

    [[nodiscard]] int calls() const { return calls_; }
    /// Whether the last call that was waited for was.
    [[nodiscard]] bool isRefused() const { return isRefused_; }

private:
    static constexpr int atATime = 1000;

    std::atomic<bool> isOver_ = false;
    std::atomic<bool> isRefused_ = false;
    std::atomic<int> calls_ = 0;
    /// Last, since it uses the others.
    std::thread thread_;
};

} // namespace tilewright::testing
