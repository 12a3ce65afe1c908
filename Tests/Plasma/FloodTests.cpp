// The real program while a stranger on the session's bus calls it without a pause.

#include "ProgramInPlasma.h"

#include <Companion/CompanionBus.h>
#include <FreeDesktop/FreeDesktopInstanceActivation.h>

#include <QDBusMessage>
#include <atomic>
#include <thread>

namespace tilewright::testing {
namespace {

/// Somebody on a session's bus who makes the same call as fast as it is taken in, for as long as
/// this lives: a thousand times, of which the last is waited for, and so on.
class Flood {
public:
    Flood(const QString& busAddress, const QDBusMessage& call)
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
    ~Flood() {
        isOver_ = true;
        thread_.join();
    }
    Flood(const Flood&) = delete;
    Flood& operator=(const Flood&) = delete;

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

} // namespace

TEST_F(ProgramInPlasma, ListensToNoStrangerHoweverOftenHeCallsDuringADrag) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    // By this name it is found; the companion knows it by its address.
    QDBusMessage call = QDBusMessage::createMethodCall(
        FreeDesktopInstanceActivation(QStringLiteral("wayland-test"), session.bus()).serviceName(),
        CompanionBus::objectPath(), CompanionBus::interfaceName(), QStringLiteral("Hello"));
    call << QStringLiteral(
        R"({"protocol":1,"shell":"5","displays":[],"focus":null,"pointer":[0,0],"keys":0})");
    const Flood flood(session.busAddress(), call);
    const auto passes = [&](int more) {
        const int before = flood.calls();
        return waitUntil([&] { return flood.calls() >= before + more; });
    };
    EXPECT_TRUE(passes(5000));
    EXPECT_TRUE(flood.isRefused());
    EXPECT_TRUE(isHighlighted(zone(0))) << session.describe();
    session.input().glide(zone(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();
    EXPECT_TRUE(passes(1000)) << "it went on all the time";
    EXPECT_TRUE(flood.isRefused());
}

} // namespace tilewright::testing
