#include "AppKitStatusItem.h"

#include "MacText.h"

#include <AppKit/AppKit.h>
#include <Platform/MainThread.h>

/// What the item's button calls when it is clicked.
@interface TilewrightStatusItemTarget : NSObject {
    std::function<void()> action_;
}
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)clicked:(id)sender;
@end

@implementation TilewrightStatusItemTarget

- (instancetype)initWithAction:(std::function<void()>)action {
    self = [super init];
    if (self)
        action_ = std::move(action);
    return self;
}

- (void)clicked:(id)sender {
    (void)sender;
    tilewright::assertMainThread(__FILE__, __LINE__);
    action_();
}

@end

namespace tilewright::appkit {

namespace {

class NativeStatusItem final : public StatusItem {
  public:
    explicit NativeStatusItem(std::function<void()> clicked)
        : target_([[TilewrightStatusItemTarget alloc] initWithAction:std::move(clicked)]) {
        NSButton* button = [item_ button];
        [button setTarget:target_];
        [button setAction:@selector(clicked:)];
    }
    ~NativeStatusItem() override {
        [[item_ button] setTarget:nil];
        [[NSStatusBar systemStatusBar] removeStatusItem:item_];
    }

    void setTemplateImage(const QByteArray& png, int side) override {
        NSImage* image = [[NSImage alloc]
            initWithData:[NSData dataWithBytes:png.constData()
                                        length:static_cast<NSUInteger>(png.size())]];
        [image setSize:CGSizeMake(side, side)];
        [image setTemplate:YES];
        [[item_ button] setImage:image];
    }
    void setAccessibleName(const QString& name) override {
        NSButton* button = [item_ button];
        [button setAccessibilityLabel:toNSString(name)];
        [button setToolTip:toNSString(name)];
    }
    void setHighlighted(bool isHighlighted) override { [[item_ button] highlight:isHighlighted]; }
    std::optional<AppKitRect> frame() const override {
        NSButton* button = [item_ button];
        NSWindow* window = [button window];
        if (!window)
            return std::nullopt;
        const NSRect frame = [window convertRectToScreen:[button convertRect:[button bounds]
                                                                      toView:nil]];
        return AppKitRect{frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};
    }

  private:
    NSStatusItem* item_ =
        [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
    TilewrightStatusItemTarget* target_;
};

} // namespace

std::unique_ptr<StatusItem> addStatusItem(std::function<void()> clicked) {
    return std::make_unique<NativeStatusItem>(std::move(clicked));
}

} // namespace tilewright::appkit
