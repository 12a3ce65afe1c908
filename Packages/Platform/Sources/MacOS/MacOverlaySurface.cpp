#include "MacOverlaySurface.h"

namespace tilewright {

MacOverlaySurface::MacOverlaySurface(std::shared_ptr<OverlayView> view)
    : view_(std::move(view))
    , window_(appkit::makeWindow(
          {.level = level, .ignoresMouseEvents = true, .collectionBehavior = collectionBehavior})) {
    view_->setRendering(OverlayRendering::translucent);
    QWidget& widget = view_->widget();
    widget.setAttribute(Qt::WA_TranslucentBackground);
    // Showing the view must not bring this application forward.
    widget.setAttribute(Qt::WA_ShowWithoutActivating);
    widget.setAttribute(Qt::WA_NativeWindow);
    window_->setContent(widget.winId());
}

MacOverlaySurface::~MacOverlaySurface() {
    window_->orderOut();
    window_->removeContent();
}

void MacOverlaySurface::setScreen(const ScreenPtr& screen) {
    const AppKitRect frame = screen->frame();
    // The window before the view: it passes each change of its own size on to the view.
    window_->setFrame(frame);
    view_->widget().resize(static_cast<int>(frame.width), static_cast<int>(frame.height));
}

void MacOverlaySurface::orderFront() {
    view_->widget().show();
    window_->orderFrontRegardless();
}

void MacOverlaySurface::orderOut() {
    window_->orderOut();
    // The window is not Qt's: without this the view would take itself for visible, and
    // fade what changes next where nobody sees it.
    view_->widget().hide();
    view_->finishAnimations();
}

} // namespace tilewright
