#include "LayerShellScreenSaver.h"

#include "WaylandProtocols.h"

#include <utility>

namespace tilewright {

namespace {

constexpr QSize onePixel(1, 1);

} // namespace

LayerShellScreenSaver::LayerShellScreenSaver(WaylandConnection& connection, MainLoop& loop)
    : connection_(connection)
    , loop_(loop) {
    following_ = {
        QObject::connect(&connection_, &WaylandConnection::ready, [this] { begin(); }),
        QObject::connect(&connection_, &WaylandConnection::lost, [this] { end(); }),
        // Perhaps the first display after there was none.
        QObject::connect(&connection_, &WaylandConnection::offered, [this] { begin(); }),
    };
}

LayerShellScreenSaver::~LayerShellScreenSaver() {
    for (const QMetaObject::Connection& connection : following_)
        QObject::disconnect(connection);
}

void LayerShellScreenSaver::suspend() {
    ++suspensions_;
    begin();
}

bool LayerShellScreenSaver::isSuspended(std::chrono::milliseconds /*bound*/) {
    return suspensions_ > 0 && isOffered();
}

void LayerShellScreenSaver::resume() {
    if (suspensions_ == 0 || --suspensions_ > 0)
        return;
    end();
    connection_.flush();
}

bool LayerShellScreenSaver::isOffered() const {
    return connection_.globals().canShowLayers() && connection_.globals().idleInhibition;
}

void LayerShellScreenSaver::begin() {
    if (suspensions_ == 0 || surface_ || !isOffered())
        return;
    // Above everything: compositors differ in whether a surface that is covered counts.
    LayerSurface::Owner& owner = *this;
    surface_ = std::make_unique<LayerSurface>(
        connection_, LayerSurface::Wish{"tilewright-keep-awake", nullptr, onePixel}, owner);
    connection_.flush();
}

void LayerShellScreenSaver::end() {
    wish_.reset();
    surface_.reset();
    pixel_.reset();
}

void LayerShellScreenSaver::surfaceResized(QSize /*size*/) {
    pixel_ = std::make_unique<OverlayBuffer>(connection_, onePixel, [] {});
    if (pixel_->isValid())
        surface_->show(pixel_->object(), onePixel, QRect(QPoint(), onePixel));
    // Only for a surface that shows already: sway 1.12 looks whether it does when it gets the wish,
    // and again only when something else is shown or hidden.
    if (!wish_)
        wish_ = connection_.own(zwp_idle_inhibit_manager_v1_create_inhibitor(
            connection_.globals().idleInhibition.get(), &surface_->object()));
    connection_.flush();
}

void LayerShellScreenSaver::surfaceScaled(double /*pixelsPerUnit*/) {}

void LayerShellScreenSaver::surfaceClosed() {
    const bool wasShown = pixel_ != nullptr;
    end();
    // Perhaps another display can have it. Where none could, one has to come first.
    if (wasShown)
        loop_.post(life_.guard([this] { begin(); }));
}

} // namespace tilewright
