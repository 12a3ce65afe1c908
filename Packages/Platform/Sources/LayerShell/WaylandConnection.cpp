#include "WaylandConnection.h"

#include "WaylandListener.h"
#include "WaylandProtocols.h"

#include <FreeDesktop/WaylandSocket.h>

#include <QAbstractEventDispatcher>
#include <algorithm>
#include <cerrno>
#include <utility>

namespace tilewright {

namespace {

constexpr int mostProtocolErrors = 3;

/// Not on the spot: it may be the one whose signal is being handled.
void endLater(std::unique_ptr<QSocketNotifier> notifier) {
    if (!notifier)
        return;
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
}

} // namespace

/// The compositor's list of what it offers.
class WaylandConnection::Registry {
public:
    explicit Registry(WaylandConnection& connection)
        : connection_(connection)
        , registry_(connection.own(wl_display_get_registry(connection.display_.get())))
        , complete_(connection.own(wl_display_sync(connection.display_.get()))) {
        static constexpr wl_registry_listener events{
            .global = wayland::Call<&Registry::add>::on,
            .global_remove = wayland::Call<&Registry::remove>::on,
        };
        static constexpr wl_callback_listener completion{
            .done = wayland::Call<&Registry::complete>::on,
        };
        wl_registry_add_listener(registry_.get(), &events, this);
        wl_callback_add_listener(complete_.get(), &completion, this);
    }

    [[nodiscard]] const std::vector<WaylandOffer>& offers() const { return offers_; }
    [[nodiscard]] wl_registry* get() const { return registry_.get(); }

private:
    void add(std::uint32_t number, const char* interface, std::uint32_t version) {
        const WaylandOffer offer{number, interface, version};
        offers_.push_back(offer);
        if (connection_.isReady_)
            Q_EMIT connection_.offered(offer);
    }
    void remove(std::uint32_t number) {
        std::erase_if(offers_, [number](const auto& offer) { return offer.number == number; });
        if (connection_.isReady_)
            Q_EMIT connection_.withdrawn(number);
    }
    void complete(std::uint32_t /*serial*/) {
        complete_.reset();
        connection_.becomeReady();
    }

    WaylandConnection& connection_;
    std::vector<WaylandOffer> offers_;
    WaylandObject<wl_registry> registry_;
    WaylandObject<wl_callback> complete_;
};

WaylandConnection::WaylandConnection(MainLoop& loop, QString socketPath)
    : socketPath_(std::move(socketPath))
    , watch_(loop, socketPath_)
    , protocolErrorsLeft_(mostProtocolErrors) {
    connect(&watch_, &WaylandSocketWatch::worthATry, this, &WaylandConnection::retry);
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
                &WaylandConnection::flush);
    watch_.start();
}

WaylandConnection::~WaylandConnection() = default;

const std::vector<WaylandOffer>& WaylandConnection::offers() const {
    static const std::vector<WaylandOffer> none;
    return isReady_ ? registry_->offers() : none;
}

void WaylandConnection::retry() {
    if (!display_ && protocolErrorsLeft_ > 0)
        open();
}

void WaylandConnection::reconnect() {
    drop();
    watch_.start();
}

void WaylandConnection::open() {
    WaylandSocketResult socket = connectToWaylandSocket(socketPath_);
    if (!socket.descriptor.isOpen())
        return;
    wl_display* display = wl_display_connect_to_fd(socket.descriptor.release());
    if (!display)
        return;
    display_ = std::shared_ptr<wl_display>(display, wl_display_disconnect);
    registry_ = std::make_unique<Registry>(*this);
    const int descriptor = wl_display_get_fd(display);
    readable_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, &WaylandConnection::dispatch);
    writable_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    connect(writable_.get(), &QSocketNotifier::activated, this, &WaylandConnection::flush);
    flush();
}

void WaylandConnection::drop() {
    endLater(std::move(readable_));
    endLater(std::move(writable_));
    globals_ = {};
    if (std::exchange(isReady_, false))
        Q_EMIT lost();
    registry_.reset();
    display_.reset();
}

void WaylandConnection::dispatch() {
    // A handler may drop the connection.
    const std::shared_ptr<wl_display> display = display_;
    if (!display)
        return;
    bool isAlive = true;
    while (isAlive && wl_display_prepare_read(display.get()) != 0)
        isAlive = wl_display_dispatch_pending(display.get()) >= 0;
    if (isAlive)
        isAlive = wl_display_read_events(display.get()) >= 0;
    isAlive = wl_display_dispatch_pending(display.get()) >= 0 && isAlive;
    if (!isAlive && display == display_)
        lose();
    // What was asked for in answer to these events.
    flush();
}

void WaylandConnection::lose() {
    if (wl_display_get_error(display_.get()) == EPROTO)
        --protocolErrorsLeft_;
    const bool wasReady = isReady_;
    drop();
    // Until it is ready the watch goes on by itself: whoever ends every connection at once is not
    // tried for ever.
    if (wasReady)
        watch_.start();
}

void WaylandConnection::becomeReady() {
    watch_.stop();
    isReady_ = true;
    const auto bindOnly = [this](auto& object, const wl_interface& interface, std::uint32_t known) {
        const auto& all = registry_->offers();
        const auto offer = std::find_if(all.begin(), all.end(), [&](const WaylandOffer& one) {
            return one.interface == interface.name;
        });
        if (offer != all.end())
            object = bind<std::remove_pointer_t<decltype(object.get())>>(*offer, interface, known);
    };
    bindOnly(globals_.compositor, wl_compositor_interface, 4);
    bindOnly(globals_.sharedMemory, wl_shm_interface, 1);
    bindOnly(globals_.viewporter, wp_viewporter_interface, 1);
    bindOnly(globals_.fractionalScales, wp_fractional_scale_manager_v1_interface, 1);
    bindOnly(globals_.layerShell, zwlr_layer_shell_v1_interface, 3);
    bindOnly(globals_.idleInhibition, zwp_idle_inhibit_manager_v1_interface, 1);
    bindOnly(globals_.outputManager, zxdg_output_manager_v1_interface, 3);
    Q_EMIT ready();
}

void* WaylandConnection::bound(const WaylandOffer& offer, const wl_interface& interface,
                               std::uint32_t known) {
    return wl_registry_bind(registry_->get(), offer.number, &interface,
                            std::min(offer.version, known));
}

void WaylandConnection::flush() {
    // While it is being told that it is lost, there are no notifiers any more.
    if (!display_ || !writable_)
        return;
    const bool isFull = wl_display_flush(display_.get()) < 0 && errno == EAGAIN;
    writable_->setEnabled(isFull);
}

} // namespace tilewright
