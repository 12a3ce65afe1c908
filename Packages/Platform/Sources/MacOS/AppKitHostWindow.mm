#include "AppKitHostWindow.h"

#include <AppKit/AppKit.h>

/// A panel that takes keys without a title bar.
@interface TilewrightKeyPanel : NSPanel
@end

@implementation TilewrightKeyPanel

- (BOOL)canBecomeKeyWindow {
    return YES;
}

@end

namespace tilewright::appkit {

namespace {

NSWindow* makeNative(const WindowProperties& properties) {
    Class type = properties.isKeyPanel ? [TilewrightKeyPanel class] : [NSWindow class];
    NSWindow* window =
        [[type alloc] initWithContentRect:NSMakeRect(0, 0, 0, 0)
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
    // A panel's own default, and this program is hardly ever the active one.
    [window setHidesOnDeactivate:NO];
    return window;
}

class NativeWindow : public HostWindow {
  public:
    explicit NativeWindow(const WindowProperties& properties) : window_(makeNative(properties)) {}
    ~NativeWindow() override { [window_ orderOut:nil]; }

    void setFrame(const AppKitRect& frame) override {
        [window_ setFrame:NSMakeRect(frame.x, frame.y, frame.width, frame.height) display:YES];
    }
    void makeKeyAndOrderFront() override { [window_ makeKeyAndOrderFront:nil]; }
    void orderFrontRegardless() override { [window_ orderFrontRegardless]; }
    void orderOut() override { [window_ orderOut:nil]; }

  protected:
    /// Takes Qt's view out of the window that Qt made for it.
    static NSView* takeView(WId view) {
        NSView* taken = (__bridge NSView*)reinterpret_cast<void*>(view);
        NSWindow* former = [taken window];
        if ([former contentView] == taken)
            [former setContentView:nil];
        return taken;
    }
    NSWindow* window() const { return window_; }

  private:
    NSWindow* window_;
};

/// Holds the view inside its content: Qt takes no part in showing the window.
class OverlayHost final : public NativeWindow {
  public:
    using NativeWindow::NativeWindow;
    ~OverlayHost() override { OverlayHost::removeContent(); }

    void setContent(WId view) override {
        content_ = takeView(view);
        NSView* holder = [window() contentView];
        [content_ setFrame:[holder bounds]];
        [content_ setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
        [holder addSubview:content_];
    }
    void removeContent() override {
        [content_ removeFromSuperview];
        content_ = nil;
    }

  private:
    NSView* content_ = nil;
};

/// Holds the view as its content: Qt hears of the keyboard's coming and going only so.
class PanelHost final : public NativeWindow {
  public:
    using NativeWindow::NativeWindow;
    ~PanelHost() override { PanelHost::removeContent(); }

    void setContent(WId view) override {
        NSView* content = takeView(view);
        [window() setContentView:content];
        [window() makeFirstResponder:content];
    }
    void removeContent() override { [window() setContentView:nil]; }
};

} // namespace

std::unique_ptr<HostWindow> makeWindow(const WindowProperties& properties) {
    if (properties.isKeyPanel)
        return std::make_unique<PanelHost>(properties);
    return std::make_unique<OverlayHost>(properties);
}

} // namespace tilewright::appkit
