#include "MacScreens.h"

#include "DisplayUUID.h"
#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright {

namespace {

AppKitRect toRect(NSRect rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

std::optional<quint32> displayIDOf(NSScreen* screen) {
    const id number =
        [[screen deviceDescription] objectForKey:toNSString(QStringLiteral("NSScreenNumber"))];
    if (![number isKindOfClass:[NSNumber class]])
        return std::nullopt;
    return [static_cast<NSNumber*>(number) unsignedIntValue];
}

/// What was true of a display when it was listed; only the UUID is asked for afresh.
class MacScreen final : public Screen {
  public:
    explicit MacScreen(NSScreen* screen)
        : frame_(toRect([screen frame])), visibleFrame_(toRect([screen visibleFrame])),
          displayID_(displayIDOf(screen)), localizedName_(toQString([screen localizedName])) {}

    AppKitRect frame() const override { return frame_; }
    AppKitRect visibleFrame() const override { return visibleFrame_; }
    std::optional<quint32> displayID() const override { return displayID_; }
    std::optional<QString> persistentUUID() const override {
        return displayID_ ? persistentUUIDOfDisplay(*displayID_) : std::nullopt;
    }
    QString localizedName() const override { return localizedName_; }

    [[nodiscard]] bool isLike(const MacScreen& other) const {
        return frame_ == other.frame_ && visibleFrame_ == other.visibleFrame_ &&
               displayID_ == other.displayID_ && localizedName_ == other.localizedName_;
    }

  private:
    AppKitRect frame_;
    AppKitRect visibleFrame_;
    std::optional<quint32> displayID_;
    QString localizedName_;
};

} // namespace

class MacScreens::Observation {
  public:
    explicit Observation(MacScreens& screens) {
        MacScreens* const observed = &screens;
        token_ = [[NSNotificationCenter defaultCenter]
            addObserverForName:NSApplicationDidChangeScreenParametersNotification
                        object:nil
                         queue:[NSOperationQueue mainQueue]
                    usingBlock:^(NSNotification*) {
                      observed->refresh();
                      Q_EMIT observed->screensChanged();
                    }];
    }
    ~Observation() { [[NSNotificationCenter defaultCenter] removeObserver:token_]; }

    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

  private:
    id token_ = nil;
};

MacScreens::MacScreens() : observation_(std::make_unique<Observation>(*this)) {}
MacScreens::~MacScreens() = default;

void MacScreens::refresh() const {
    NSArray<NSScreen*>* listed = [NSScreen screens];
    std::vector<ScreenPtr> fresh;
    bool isChanged = [listed count] != screens_.size();
    for (NSUInteger index = 0; index < [listed count]; ++index) {
        auto screen = std::make_shared<MacScreen>([listed objectAtIndex:index]);
        ScreenPtr same;
        for (const ScreenPtr& known : screens_) {
            if (static_cast<const MacScreen&>(*known).isLike(*screen))
                same = known;
        }
        isChanged = isChanged || !same || screens_[index] != same;
        fresh.push_back(same ? same : std::move(screen));
    }
    if (isChanged)
        screens_ = std::move(fresh);
}

const std::vector<ScreenPtr>& MacScreens::all() const {
    refresh();
    return screens_;
}

ScreenPtr MacScreens::main() const {
    NSScreen* screen = [NSScreen mainScreen];
    if (!screen)
        return nullptr;
    const MacScreen wanted(screen);
    for (const ScreenPtr& known : all()) {
        if (static_cast<const MacScreen&>(*known).isLike(wanted))
            return known;
    }
    return nullptr;
}

} // namespace tilewright
