#pragma once

#include "WaylandGlobals.h"
#include "WaylandObject.h"
#include "WaylandSocketWatch.h"

#include <Platform/MainLoop.h>

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <memory>
#include <vector>

struct wl_interface;

namespace tilewright {

/// This program's own connection to a Wayland compositor, apart from Qt's.
///
/// Nothing blocks: what the compositor offers is known when `ready` comes. A connection that is
/// lost comes back by itself as soon as a compositor listens at the same socket again; whoever has
/// objects drops them upon `lost` and makes them anew upon `ready`. Events are handed out from the
/// event loop. Main thread only; outlives whatever uses it.
class WaylandConnection final : public QObject {
    Q_OBJECT

public:
    /// Starts to connect to whoever listens at the socket, now or later. The loop has to outlive
    /// the connection.
    WaylandConnection(MainLoop& loop, QString socketPath);
    ~WaylandConnection() override;

    /// Whether it is known what the compositor offers.
    [[nodiscard]] bool isReady() const { return isReady_; }
    /// All null while not ready.
    [[nodiscard]] const WaylandGlobals& globals() const { return globals_; }
    /// All that is offered now, in the compositor's order; empty while not ready.
    [[nodiscard]] const std::vector<WaylandOffer>& offers() const;

    /// Tries now where there is no connection: for those who learn that a compositor has come. Not
    /// once this side has broken the protocol's rules a few times.
    void retry();
    /// Drops the connection and makes a new one: some compositors decide once for each connection
    /// what they offer to it.
    void reconnect();

    /// Makes an object of what is offered, in the highest version that both sides know: on this
    /// one it is the code that counts, not the library, which may be newer.
    template<class Object>
    [[nodiscard]] WaylandObject<Object> bind(const WaylandOffer& offer,
                                             const wl_interface& interface, std::uint32_t known) {
        return own(static_cast<Object*>(bound(offer, interface, known)));
    }
    /// Takes over an object that a request to this compositor has made.
    template<class Object>
    [[nodiscard]] WaylandObject<Object> own(Object* object) const {
        return WaylandObject<Object>(object, WaylandDeleter(display_));
    }
    /// Sends what is buffered. The event loop does so too before it blocks.
    void flush();

Q_SIGNALS:
    void ready();
    /// The connection is gone: whatever was made of it is good for nothing. Sent only after
    /// `ready`.
    void lost();
    /// Sent while ready, for what comes later.
    void offered(const WaylandOffer& offer);
    void withdrawn(std::uint32_t number);

private:
    class Registry;

    void open();
    void drop();
    void dispatch();
    void lose();
    void becomeReady();
    [[nodiscard]] void* bound(const WaylandOffer& offer, const wl_interface& interface,
                              std::uint32_t known);

    const QString socketPath_;
    WaylandSocketWatch watch_;
    std::shared_ptr<wl_display> display_;
    std::unique_ptr<Registry> registry_;
    WaylandGlobals globals_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
    bool isReady_ = false;
    /// What this side has done wrong may be wrong again.
    int protocolErrorsLeft_;
};

} // namespace tilewright
