#include "X11OverlaySurface.h"

#include "X11Qt.h"

#include <QBackingStore>
#include <QResizeEvent>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tilewright {
namespace {

std::uint32_t unsignedOf(int value) {
    return static_cast<std::uint32_t>(value);
}

} // namespace

/// The toplevel window. It draws nothing itself; the view's widget fills it.
class X11OverlaySurface::Container final : public QWidget {
public:
    explicit Container(QWidget& content)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                               Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint |
                               Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint)
        , content_(content) {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_QuitOnClose, false);
        setFocusPolicy(Qt::NoFocus);
        content_.setParent(this);
        content_.show();
    }
    ~Container() override {
        // The view owns its widget.
        content_.hide();
        content_.setParent(nullptr);
    }

    /// Makes the content as large as the window now, not only once Qt shows it: its areas are asked
    /// for before.
    void place(const QRect& geometry) {
        setGeometry(geometry);
        content_.setGeometry(rect());
    }

protected:
    void resizeEvent(QResizeEvent*) override { content_.setGeometry(rect()); }

private:
    QWidget& content_;
};

X11OverlaySurface::X11OverlaySurface(X11Connection& connection, X11Compositor& compositor,
                                     const X11Screens& screens, X11EventMonitors& eventMonitors,
                                     MainLoop& loop, std::shared_ptr<OverlayView> view)
    : connection_(connection)
    , screens_(screens)
    , eventMonitors_(eventMonitors)
    , loop_(loop)
    , view_(std::move(view))
    , container_(std::make_unique<Container>(view_->widget())) {
    container_->winId();
    if (xcb_connection_t* qtConnection = x11qt::connection()) {
        // Transparent from the moment it is mapped until the first painting arrives.
        const std::uint32_t transparent = 0;
        xcb_change_window_attributes(qtConnection, window(), XCB_CW_BACK_PIXEL, &transparent);
        // A fullscreen window beneath must not switch the blending off.
        const std::uint32_t never = 2;
        xcb_change_property(qtConnection, XCB_PROP_MODE_REPLACE, window(),
                            connection_.atom(X11Atom::netWmBypassCompositor), XCB_ATOM_CARDINAL, 32,
                            1, &never);
    }
    following_ = QObject::connect(&compositor, &X11Compositor::runningChanged, container_.get(),
                                  [this, &compositor] { follow(compositor); });
    view_->onAreasChanged(life_.guard([this] {
        if (container_->isVisible())
            applyAreas();
    }));
    eventMonitors_.onDragAhead([this](AppKitPoint place) { preparePixels(place); });
    rendering_ = compositor.isRunning() ? OverlayRendering::translucent : OverlayRendering::shaped;
    view_->setRendering(rendering_);
    readBlurOffer();
}

X11OverlaySurface::~X11OverlaySurface() {
    eventMonitors_.onDragAhead({});
    QObject::disconnect(following_);
}

void X11OverlaySurface::setScreen(const ScreenPtr& screen) {
    if (!screen)
        return;
    screen_ = screen;
    place();
    if (container_->isVisible()) {
        applyAreas();
        container_->repaint();
    }
}

void X11OverlaySurface::place() {
    const QtSpace space = screens_.qtSpace(*screen_);
    if (!space.screen())
        return;
    container_->setScreen(space.screen());
    container_->place(space.toQt(screen_->frame()).toQRect());
    // Qt rounds to whole points; set the monitor's exact pixels.
    if (xcb_connection_t* qtConnection = x11qt::connection()) {
        const QRect native = X11Screens::nativeFrame(*screen_);
        const std::array<std::uint32_t, 4> geometry{unsignedOf(native.x()), unsignedOf(native.y()),
                                                    unsignedOf(native.width()),
                                                    unsignedOf(native.height())};
        xcb_configure_window(qtConnection, window(),
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             geometry.data());
    }
}

void X11OverlaySurface::orderFront() {
    releasing_.reset();
    applyAreas();
    container_->show();
    // Showing sets Qt's own, rounded geometry once more.
    if (screen_)
        place();
    container_->raise();
}

void X11OverlaySurface::orderOut() {
    if (container_->isVisible()) {
        container_->hide();
        releasePixelsLater();
        readBlurOffer();
    }
    view_->finishAnimations();
}

void X11OverlaySurface::follow(const X11Compositor& compositor) {
    rendering_ = compositor.isRunning() ? OverlayRendering::translucent : OverlayRendering::shaped;
    view_->setRendering(rendering_);
    readBlurOffer();
    if (container_->isVisible()) {
        applyAreas();
        container_->update();
    }
}

void X11OverlaySurface::applyAreas() {
    if (rendering_ == OverlayRendering::translucent) {
        container_->clearMask();
        setBlur(view_->blurArea());
        return;
    }
    setBlur({});
    // An empty mask would be none at all: nothing opaque is a region outside the window.
    const QRegion outline = view_->outline();
    container_->setMask(outline.isEmpty() ? QRegion(-1, -1, 1, 1) : outline);
}

void X11OverlaySurface::setBlur(const QRegion& region) {
    xcb_connection_t* qtConnection = x11qt::connection();
    if (!qtConnection)
        return;
    const xcb_atom_t property = connection_.atom(X11Atom::kdeNetWmBlurBehindRegion);
    if (!isBlurOffered_ || region.isEmpty()) {
        if (hasBlur_)
            xcb_delete_property(qtConnection, window(), property);
        hasBlur_ = false;
        return;
    }
    const double scale = container_->devicePixelRatio();
    std::vector<std::uint32_t> rectangles;
    rectangles.reserve(static_cast<std::size_t>(region.rectCount()) * 4);
    for (const QRect& rectangle : region) {
        const int left = static_cast<int>(std::lround(rectangle.x() * scale));
        const int top = static_cast<int>(std::lround(rectangle.y() * scale));
        const int right =
            static_cast<int>(std::lround((rectangle.x() + rectangle.width()) * scale));
        const int bottom =
            static_cast<int>(std::lround((rectangle.y() + rectangle.height()) * scale));
        for (const int value : {left, top, right - left, bottom - top})
            rectangles.push_back(unsignedOf(std::max(value, 0)));
    }
    xcb_change_property(qtConnection, XCB_PROP_MODE_REPLACE, window(), property, XCB_ATOM_CARDINAL,
                        32, static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    hasBlur_ = true;
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
            if (container_->isVisible())
                applyAreas();
        });
}

void X11OverlaySurface::preparePixels(AppKitPoint place) {
    QBackingStore* pixels = container_->backingStore();
    if (container_->isVisible() || !pixels)
        return;
    releasePixelsLater();
    setScreen(screens_.nearest(place));
    const QRect everywhere = container_->rect();
    if (pixels->size() == everywhere.size())
        return;
    pixels->resize(everywhere.size());
    // The memory is the system's to give when it is first written to: most of what this takes.
    pixels->beginPaint(everywhere);
    pixels->endPaint();
}

void X11OverlaySurface::releasePixelsLater() {
    releasing_ = ScopedTimer(loop_.scheduleOnce(pixelsKept, [this] { releasePixels(); }));
}

void X11OverlaySurface::releasePixels() {
    // The next showing paints everything anew, so Qt makes the buffer the right size then.
    if (QBackingStore* pixels = container_->backingStore())
        pixels->resize(QSize(1, 1));
}

xcb_window_t X11OverlaySurface::window() const {
    return static_cast<xcb_window_t>(container_->internalWinId());
}

} // namespace tilewright
