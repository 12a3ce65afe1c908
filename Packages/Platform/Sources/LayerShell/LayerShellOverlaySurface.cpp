#include "LayerShellOverlaySurface.h"

#include <FreeDesktop/OverlayPainting.h>

#include <QWidget>
#include <algorithm>
#include <utility>

namespace tilewright {

LayerShellOverlaySurface::LayerShellOverlaySurface(WaylandConnection& connection,
                                                   WaylandOutputs& outputs, OutputOf outputOf,
                                                   MainLoop& loop,
                                                   std::shared_ptr<OverlayView> view)
    : connection_(connection)
    , outputs_(outputs)
    , outputOf_(std::move(outputOf))
    , loop_(loop)
    , view_(std::move(view)) {
    view_->setRendering(OverlayRendering::translucent);
    view_->setRepaint([this](const QRegion& region) { repaint(region); });
    following_ = {
        QObject::connect(&connection_, &WaylandConnection::lost,
                         [this] {
                             end();
                             buffers_.reset();
                             veil_.reset();
                         }),
        QObject::connect(&outputs_, &WaylandOutputs::changed, [this] { followOutputs(); }),
    };
}

LayerShellOverlaySurface::~LayerShellOverlaySurface() {
    for (const QMetaObject::Connection& connection : following_)
        QObject::disconnect(connection);
    if (forgetDrags_)
        forgetDrags_();
    view_->setRepaint({});
    view_->setShown(false);
}

void LayerShellOverlaySurface::setScreen(const ScreenPtr& screen) {
    if (!screen)
        return;
    screen_ = screen;
    // Paints at once: what the layout has become counts now, not only once its change has come
    // round the loop.
    followOutputs();
}

void LayerShellOverlaySurface::orderFront() {
    releasing_.reset();
    const bool wasShown = std::exchange(isShown_, true);
    view_->setShown(true);
    if (!wasShown)
        followOutputs();
}

void LayerShellOverlaySurface::orderOut() {
    isShown_ = false;
    view_->setShown(false);
    view_->finishAnimations();
    dirty_ = {};
    if (surface_ && !canBeVeiled())
        end();
    else if (surface_ && !size_.isEmpty())
        veil();
    connection_.flush();
    if (surface_ || buffers_)
        keepForAWhile();
}

void LayerShellOverlaySurface::prepare(const ScreenPtr& screen) {
    if (isShown_ || !screen || !connection_.globals().canShowLayers())
        return;
    const WaylandOutput* output = outputOf_(*screen);
    if (!output)
        return;
    const double scale = scaleFor(*output);
    makePixels(output->frame.size(), scale);
    OverlayBuffer* buffer = buffers_->acquire();
    QWidget& widget = view_->widget();
    const QRegion stale = buffer ? buffer->stale & widget.rect() : QRegion();
    if (!stale.isEmpty()) {
        overlay::paint(widget, stale, scale, buffer->image());
        buffers_->noteShown(*buffer, stale);
    }
    if (canBeVeiled()) {
        setScreen(screen);
        begin();
    }
    connection_.flush();
    keepForAWhile();
}

void LayerShellOverlaySurface::prepareAtDrags(EventMonitors& monitors, const Screens& screens,
                                              const Pointer& pointer) {
    const std::optional<MonitorToken> token =
        monitors.addGlobalMonitor({EventType::leftMouseDragged, EventType::leftMouseUp},
                                  [this, &screens, &pointer](const Event& event) {
                                      const bool isDragged =
                                          event.type == EventType::leftMouseDragged;
                                      if (!std::exchange(isDragging_, isDragged) && isDragged)
                                          prepare(screens.nearest(pointer.location()));
                                  });
    if (token)
        forgetDrags_ = [&monitors, token = *token] { monitors.removeMonitor(token); };
}

void LayerShellOverlaySurface::begin() {
    if (surface_ || !screen_ || !connection_.globals().canShowLayers())
        return;
    const WaylandOutput* output = outputOf_(*screen_);
    wl_output* object = output ? outputs_.object(output->number) : nullptr;
    if (!object)
        return;
    output_ = *output;
    preferredScale_ = 1;
    size_ = {};
    dirty_ = {};
    LayerSurface::Owner& owner = *this;
    surface_ = std::make_unique<LayerSurface>(
        connection_, LayerSurface::Wish{"tilewright-overlay", object, {}}, owner);
    connection_.flush();
}

void LayerShellOverlaySurface::end() {
    surface_.reset();
    size_ = {};
    dirty_ = {};
}

void LayerShellOverlaySurface::followOutputs() {
    const WaylandOutput* output = screen_ ? outputOf_(*screen_) : nullptr;
    if (surface_ && (!output || output->number != output_.number))
        end();
    if (!surface_) {
        if (isShown_)
            begin();
        return;
    }
    output_ = *output;
    if (isShown_ && !size_.isEmpty())
        surfaceResized(size_);
}

double LayerShellOverlaySurface::scaleFor(const WaylandOutput& output) const {
    // Compositors tell what they prefer only once the surface is on the output, some of them after
    // its first picture. The output's own pixels are known before.
    const double scale = std::max(output.pixelsPerUnit(), preferredScale_);
    const bool isFree = connection_.globals().viewporter != nullptr;
    return isFree ? std::clamp(scale, 1.0, 8.0) : output.wholeScale;
}

void LayerShellOverlaySurface::makePixels(QSize size, double scale) {
    releasing_.reset();
    scale_ = scale;
    view_->widget().resize(size);
    const QSize pixels = overlay::pixelsOf(size, scale);
    if (!buffers_ || buffers_->pixels() != pixels)
        buffers_ = std::make_unique<OverlayBuffers>(connection_, pixels, [this] { paint(); });
}

void LayerShellOverlaySurface::surfaceResized(QSize size) {
    size_ = size;
    if (!isShown_) {
        veil();
        return;
    }
    makePixels(size, scaleFor(output_));
    dirty_ = view_->widget().rect();
    paint();
}

void LayerShellOverlaySurface::surfaceScaled(double pixelsPerUnit) {
    const double before = scaleFor(output_);
    preferredScale_ = pixelsPerUnit;
    if (isShown_ && !size_.isEmpty() && scaleFor(output_) != before)
        surfaceResized(size_);
}

void LayerShellOverlaySurface::surfaceClosed() {
    end();
    keepForAWhile();
    // Perhaps the compositor has another place for it already; else an output will come.
    loop_.post(life_.guard([this] {
        if (isShown_)
            begin();
    }));
}

void LayerShellOverlaySurface::repaint(const QRegion& region) {
    // A showing paints everything.
    if (!isShown_ || size_.isEmpty())
        return;
    dirty_ += region;
    painting_.post();
}

void LayerShellOverlaySurface::paint() {
    QWidget& widget = view_->widget();
    if (!isShown_ || !surface_ || size_.isEmpty() || !buffers_ || dirty_.isEmpty())
        return;
    // Without one, the next to be released is painted with all that has changed until then.
    OverlayBuffer* buffer = buffers_->acquire();
    if (!buffer)
        return;
    const QRegion changed = std::exchange(dirty_, {});
    const QRegion outdated = (changed + buffer->stale) & widget.rect();
    overlay::paint(widget, outdated, scale_, buffer->image());
    surface_->show(buffer->object(), buffers_->pixels(),
                   overlay::pixelsOf(changed, scale_, QRect(QPoint(), buffers_->pixels())));
    buffer->setBusy();
    buffers_->noteShown(*buffer, changed);
    connection_.flush();
}

bool LayerShellOverlaySurface::canBeVeiled() const {
    // One pixel is stretched over the display.
    return connection_.globals().viewporter != nullptr;
}

void LayerShellOverlaySurface::veil() {
    constexpr QSize pixel(1, 1);
    if (!veil_)
        veil_ = std::make_unique<OverlayBuffer>(connection_, pixel, [] {});
    if (!veil_->isValid()) {
        end();
        return;
    }
    surface_->show(veil_->object(), pixel, QRect(QPoint(), pixel));
    connection_.flush();
}

void LayerShellOverlaySurface::keepForAWhile() {
    releasing_ = ScopedTimer(loop_.scheduleOnce(pixelsKept, [this] {
        if (!isShown_) {
            end();
            veil_.reset();
        }
        buffers_.reset();
        connection_.flush();
    }));
}

} // namespace tilewright
