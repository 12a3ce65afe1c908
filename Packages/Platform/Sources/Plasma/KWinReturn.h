#pragma once

#include <FreeDesktop/BusNameOwner.h>
#include <FreeDesktop/MessageBus.h>
#include <LayerShell/WaylandConnection.h>

#include <QObject>
#include <QString>
#include <chrono>
#include <memory>

namespace tilewright {

/// Whether another KWin comes where one has ended: it does when it crashed or was replaced, and
/// does not when that was the end of the session. It has come when it answers at its socket and on
/// the bus. Main thread only.
class KWinReturn final : public QObject {
    Q_OBJECT

public:
    /// Nobody comes where nobody has listened at the socket for so long.
    static constexpr std::chrono::seconds patience{10};
    /// So long it has where somebody listens, who keeps the socket for it.
    static constexpr std::chrono::seconds patienceWithListener{60};

    /// The loop and the bus have to outlive this.
    KWinReturn(MainLoop& loop, MessageBus& bus, QString socketPath);
    ~KWinReturn() override;

Q_SIGNALS:
    /// It is there. One of the two is sent, once, from the event loop.
    void returned();
    /// There is no hope: it has not come for long, or the bus is gone, which outlives KWin in a
    /// session that goes on.
    void missing();

private:
    void look();
    void settle(void (KWinReturn::*outcome)());

    MessageBus& bus_;
    const QString socketPath_;
    WaylandConnection compositor_;
    std::unique_ptr<BusNameOwner> name_;
    ScopedTimer deadline_;
    bool isSettled_ = false;
};

} // namespace tilewright
