#include "X11OverlaySurface.h"

#include <FreeDesktop/OverlayPainting.h>

#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <utility>

namespace tilewright {

X11OverlaySurface::X11OverlaySurface(X11Connection& connection, X11Compositor& compositor,
                                     const X11Screens& screens, X11EventMonitors& eventMonitors,
                                     MainLoop& loop, std::shared_ptr<OverlayView> view)
    : connection_(connection)
    , screens_(screens)
    , eventMonitors_(eventMonitors)
    , loop_(loop)
    , view_(std::move(view))
    , fence_(connection, [this] {
        if (hiding_.isActive())
            hideWindow();
    }) {
    following_ = QObject::connect(&compositor, &X11Compositor::runningChanged,
                                  [this, &compositor] { follow(compositor); });
    view_->onAreasChanged(life_.guard([this] {
        if (isShown_)
            applyAreas();
    }));
    view_->setRepaint([this](const QRegion& region) { repaint(region); });
    eventMonitors_.onDragAhead([this](AppKitPoint place) { prepare(place); });
    makeWindow(compositor);
}

X11OverlaySurface::~X11OverlaySurface() {
    eventMonitors_.onDragAhead({});
    QObject::disconnect(following_);
    view_->setRepaint({});
    view_->setShown(false);
}

void X11OverlaySurface::setScreen(const ScreenPtr& screen) {
    if (!screen)
        return;
    screen_ = screen;
    if (!isShown_)
        return;
    if (place()) {
        applyAreas();
        paint(Painting::now);
    }
    connection_.flush();
}

void X11OverlaySurface::orderFront() {
    releasing_.reset();
    hiding_.reset();
    isShown_ = true;
    if (rendering_ == OverlayRendering::translucent && !window_->isShown())
        appearing_ = ScopedTimer(loop_.scheduleOnce(appearance, [this] {
            appearing_.reset();
            paint(Painting::whenRead);
        }));
    showWindow();
}

void X11OverlaySurface::showWindow() {
    if (!place())
        return;
    applyAreas();
    // What the view has taken over by now has changed unseen.
    view_->setShown(true);
    paint(Painting::now);
    window_->show();
    connection_.flush();
}

void X11OverlaySurface::orderOut() {
    if (std::exchange(isShown_, false)) {
        appearing_.reset();
        fence_.send();
        hiding_ = ScopedTimer(loop_.scheduleOnce(longestDelay, [this] { hideWindow(); }));
        releasePixelsLater();
        readBlurOffer();
    }
    view_->setShown(false);
    view_->finishAnimations();
}

void X11OverlaySurface::hideWindow() {
    hiding_.reset();
    window_->hide();
    connection_.flush();
}

bool X11OverlaySurface::place() {
    if (!screen_)
        return false;
    const QtSpace space = screens_.qtSpace(*screen_);
    const QRect native = X11Screens::nativeFrame(*screen_);
    if (!space.screen() || native.isEmpty())
        return false;
    const double scale = space.screen()->devicePixelRatio();
    const QSize points = space.toQt(screen_->frame()).toQRect().size();
    QWidget& widget = view_->widget();
    if (std::exchange(scale_, scale) != scale || widget.size() != points)
        dirty_ = QRect(QPoint(), points);
    widget.resize(points);
    makePixels(native.size());
    window_->place(native);
    return true;
}

void X11OverlaySurface::makePixels(QSize pixels) {
    if (pixels_ && pixels_->size() == pixels)
        return;
    // The old ones go first: the two together are more than is needed at any time.
    pixels_.reset();
    pixels_ = std::make_unique<X11OverlayPixels>(connection_, pixels, window_->depth());
    pixels_->whenRead([this] {
        if (isShown_)
            paint(Painting::whenRead);
    });
    dirty_ = view_->widget().rect();
}

void X11OverlaySurface::makeWindow(const X11Compositor& compositor) {
    const bool isBlended = compositor.isRunning();
    pixels_.reset();
    window_ = std::make_unique<X11OverlayWindow>(connection_,
                                                 isBlended ? X11OverlayWindow::Pixels::blended
                                                           : X11OverlayWindow::Pixels::plain);
    rendering_ = isBlended ? OverlayRendering::translucent : OverlayRendering::shaped;
    view_->setRendering(rendering_);
    readBlurOffer();
}

void X11OverlaySurface::follow(const X11Compositor& compositor) {
    hiding_.reset();
    makeWindow(compositor);
    if (isShown_)
        showWindow();
}

void X11OverlaySurface::applyAreas() {
    // Without any, a showing is still being made ready.
    if (!pixels_)
        return;
    const QRect everywhere(QPoint(), pixels_->size());
    if (rendering_ == OverlayRendering::translucent) {
        window_->setOutline(std::nullopt);
        setBlur(view_->blurArea());
        return;
    }
    setBlur({});
    window_->setOutline(overlay::pixelsOf(view_->outline(), scale_, everywhere));
}

void X11OverlaySurface::setBlur(const QRegion& region) {
    window_->setBlur(isBlurOffered_
                         ? overlay::pixelsOf(region, scale_, QRect(QPoint(), pixels_->size()))
                         : QRegion());
}

void X11OverlaySurface::readBlurOffer() {
    if (rendering_ != OverlayRendering::translucent) {
        blurOffer_.reset();
        isBlurOffered_ = false;
        return;
    }
    // A compositor that can blur names the property on the root window. Nobody waits for the
    // answer: the window that has just been let go is to be moved first.
    blurOffer_ = connection_.whenAnswered<xcb_list_properties_reply_t>(
        xcb_list_properties(connection_.xcb(), connection_.root()),
        [this](const X11Reply<xcb_list_properties_reply_t>& properties) {
            if (!properties)
                return;
            const xcb_atom_t* atoms = xcb_list_properties_atoms(properties.get());
            const auto* end = atoms + xcb_list_properties_atoms_length(properties.get());
            isBlurOffered_ =
                std::find(atoms, end, connection_.atom(X11Atom::kdeNetWmBlurBehindRegion)) != end;
            if (isShown_)
                applyAreas();
        });
}

void X11OverlaySurface::repaint(const QRegion& region) {
    dirty_ += region;
    if (isShown_)
        painting_.post();
}

void X11OverlaySurface::paint(Painting when) {
    if (!pixels_ || dirty_.isEmpty())
        return;
    if (when == Painting::whenRead && (pixels_->isBeingRead() || appearing_.isActive()))
        return;
    QImage picture = pixels_->image();
    QWidget& widget = view_->widget();
    const QRegion changed = std::exchange(dirty_, {}) & widget.rect();
    if (picture.isNull() || changed.isEmpty())
        return;
    const QRegion pixels = overlay::pixelsOf(changed, scale_, picture.rect());
    overlay::paint(widget, changed, scale_, std::move(picture));
    pixels_->send(pixels);
    window_->setPixmap(pixels_->pixmap());
    window_->refresh(pixels);
    connection_.flush();
}

void X11OverlaySurface::prepare(AppKitPoint place) {
    if (isShown_)
        return;
    if (hiding_.isActive())
        hideWindow();
    releasePixelsLater();
    screen_ = screens_.nearest(place);
    if (!this->place())
        return;
    // The view takes over what its model says now.
    static_cast<void>(view_->blurArea());
    paint(Painting::now);
}

void X11OverlaySurface::releasePixelsLater() {
    releasing_ = ScopedTimer(loop_.scheduleOnce(pixelsKept, [this] {
        window_->setPixmap(XCB_NONE);
        pixels_.reset();
        connection_.flush();
    }));
}

} // namespace tilewright
