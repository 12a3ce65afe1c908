#include "MacStatusItem.h"

#include "MacText.h"

#include <AppKit/AppKit.h>
#include <QBuffer>
#include <QIcon>
#include <QPixmap>
#include <functional>

/// What the item's button calls when it is clicked.
@interface TilewrightStatusItemTarget : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)clicked:(id)sender;
@end

@implementation TilewrightStatusItemTarget {
    std::function<void()> action_;
}

- (instancetype)initWithAction:(std::function<void()>)action {
    self = [super init];
    if (self)
        action_ = std::move(action);
    return self;
}

- (void)clicked:(id)sender {
    (void)sender;
    action_();
}

@end

namespace tilewright {

namespace {

/// The side of a menu bar symbol, in points.
constexpr int symbolSide = 18;

NSImage* makeTemplateImage(const QIcon& icon) {
    // Twice the size in pixels, so that it is crisp on every screen.
    const QPixmap pixmap = icon.pixmap(QSize(symbolSide, symbolSide) * 2);
    QByteArray encoded;
    QBuffer buffer(&encoded);
    pixmap.save(&buffer, "PNG");
    NSImage* image = [[NSImage alloc]
        initWithData:[NSData dataWithBytes:encoded.constData()
                                    length:static_cast<NSUInteger>(encoded.size())]];
    [image setSize:CGSizeMake(symbolSide, symbolSide)];
    [image setTemplate:YES];
    return image;
}

} // namespace

struct MacStatusItem::Item {
    NSStatusItem* native =
        [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
    TilewrightStatusItemTarget* target = nil;

    /// Where the button is, in the toolkit's coordinates: origin at the top-left of the primary
    /// display.
    [[nodiscard]] QRect place() const {
        NSButton* button = [native button];
        NSWindow* window = [button window];
        if (!window)
            return {};
        const NSRect frame = [window convertRectToScreen:[button convertRect:[button bounds]
                                                                      toView:nil]];
        const CGFloat primaryHeight = [[[NSScreen screens] firstObject] frame].size.height;
        return QRectF(frame.origin.x, primaryHeight - frame.origin.y - frame.size.height,
                      frame.size.width, frame.size.height)
            .toAlignedRect();
    }
};

MacStatusItem::MacStatusItem() : item_(std::make_unique<Item>()) {
    item_->target = [[TilewrightStatusItemTarget alloc]
        initWithAction:[this] { Q_EMIT activated(item_->place()); }];
    NSButton* button = [item_->native button];
    [button setTarget:item_->target];
    [button setAction:@selector(clicked:)];
}

MacStatusItem::~MacStatusItem() {
    [[item_->native button] setTarget:nil];
    [[NSStatusBar systemStatusBar] removeStatusItem:item_->native];
}

void MacStatusItem::setSymbol(const QString& symbolName, const QIcon& icon) {
    Q_UNUSED(symbolName)
    [[item_->native button] setImage:makeTemplateImage(icon)];
}

void MacStatusItem::setAccessibleName(const QString& name) {
    NSButton* button = [item_->native button];
    [button setAccessibilityLabel:toNSString(name)];
    [button setToolTip:toNSString(name)];
}

} // namespace tilewright
