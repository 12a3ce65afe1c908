#include "AppKitOverlayWindow.h"

#include <AppKit/AppKit.h>

namespace tilewright::appkit {

namespace {

NSWindow* makeNative(const WindowProperties& properties) {
    NSWindow* window =
        [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 0, 0)
                                    styleMask:static_cast<NSWindowStyleMask>(properties.styleMask)
                                      backing:static_cast<NSBackingStoreType>(properties.backing)
                                        defer:properties.defer];
    [window setReleasedWhenClosed:properties.releasedWhenClosed];
    [window setOpaque:properties.opaque];
    [window setBackgroundColor:[NSColor clearColor]];
    [window setLevel:static_cast<NSWindowLevel>(properties.level)];
    [window setIgnoresMouseEvents:properties.ignoresMouseEvents];
    [window setCollectionBehavior:static_cast<NSWindowCollectionBehavior>(
                                      properties.collectionBehavior)];
    [window setHasShadow:properties.hasShadow];
    return window;
}

class NativeWindow final : public OverlayWindow {
  public:
    explicit NativeWindow(const WindowProperties& properties) : window_(makeNative(properties)) {}
    ~NativeWindow() override {
        [window_ orderOut:nil];
        NativeWindow::removeContent();
    }

    void setContent(WId view) override {
        content_ = (__bridge NSView*)reinterpret_cast<void*>(view);
        NSView* holder = [window_ contentView];
        [content_ setFrame:[holder bounds]];
        [content_ setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
        [holder addSubview:content_];
    }
    void removeContent() override {
        [content_ removeFromSuperview];
        content_ = nil;
    }
    void setFrame(const AppKitRect& frame) override {
        [window_ setFrame:NSMakeRect(frame.x, frame.y, frame.width, frame.height) display:YES];
    }
    void orderFrontRegardless() override { [window_ orderFrontRegardless]; }
    void orderOut() override { [window_ orderOut:nil]; }

  private:
    NSWindow* window_;
    NSView* content_ = nil;
};

} // namespace

std::unique_ptr<OverlayWindow> makeWindow(const WindowProperties& properties) {
    return std::make_unique<NativeWindow>(properties);
}

} // namespace tilewright::appkit
