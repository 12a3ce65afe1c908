#include "MacOverlaySurface.h"

#include <AppKit/AppKit.h>
#include <QWidget>

namespace tilewright {

namespace {

NSWindow* makeOverlayWindow() {
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSZeroRect
                                                   styleMask:NSWindowStyleMaskBorderless
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setOpaque:NO];
    [window setBackgroundColor:[NSColor clearColor]];
    [window setLevel:NSScreenSaverWindowLevel];
    [window setIgnoresMouseEvents:YES];
    [window setCollectionBehavior:NSWindowCollectionBehaviorCanJoinAllSpaces |
                                  NSWindowCollectionBehaviorStationary |
                                  NSWindowCollectionBehaviorIgnoresCycle |
                                  NSWindowCollectionBehaviorFullScreenAuxiliary];
    [window setHasShadow:NO];
    return window;
}

} // namespace

struct MacOverlaySurface::Window {
    NSWindow* native = makeOverlayWindow();
};

MacOverlaySurface::MacOverlaySurface(std::shared_ptr<OverlayView> view)
    : view_(std::move(view)), window_(std::make_unique<Window>()) {
    view_->setRendering(OverlayRendering::translucent);
    QWidget& widget = view_->widget();
    widget.setAttribute(Qt::WA_NativeWindow);
    widget.setAttribute(Qt::WA_TranslucentBackground);
    NSView* content = (__bridge NSView*)reinterpret_cast<void*>(widget.winId());
    [content setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [window_->native setContentView:content];
}

MacOverlaySurface::~MacOverlaySurface() {
    [window_->native orderOut:nil];
    // The widget owns its native view: it has to leave the window before either ends.
    [window_->native setContentView:nil];
}

void MacOverlaySurface::setScreen(const ScreenPtr& screen) {
    const AppKitRect frame = screen->frame();
    view_->widget().resize(static_cast<int>(frame.width), static_cast<int>(frame.height));
    [window_->native setFrame:NSMakeRect(frame.x, frame.y, frame.width, frame.height) display:YES];
}

void MacOverlaySurface::orderFront() {
    view_->widget().show();
    [window_->native orderFrontRegardless];
}

void MacOverlaySurface::orderOut() {
    [window_->native orderOut:nil];
    view_->finishAnimations();
}

} // namespace tilewright
