#include "AppKitNotifications.h"

#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright::appkit {

namespace {

NSString* panelRequestName() {
    return toNSString(QStringLiteral("org.tilewright.Tilewright.ShowPanel"));
}

NSNotificationCenter* centerOf(Notification notification) {
    switch (notification) {
    case Notification::screenParametersChanged:
        return [NSNotificationCenter defaultCenter];
    case Notification::applicationActivated:
    case Notification::displayOptionsChanged:
        return [[NSWorkspace sharedWorkspace] notificationCenter];
    case Notification::accessibilityPermissionChanged:
    case Notification::panelRequested:
        break;
    }
    return [NSDistributedNotificationCenter defaultCenter];
}

NSString* nameOf(Notification notification) {
    switch (notification) {
    case Notification::screenParametersChanged:
        return NSApplicationDidChangeScreenParametersNotification;
    case Notification::applicationActivated:
        return NSWorkspaceDidActivateApplicationNotification;
    case Notification::displayOptionsChanged:
        return NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;
    case Notification::accessibilityPermissionChanged:
        return toNSString(QStringLiteral("com.apple.accessibility.api"));
    case Notification::panelRequested:
        break;
    }
    return panelRequestName();
}

class BlockObservation final : public Observation {
  public:
    BlockObservation(Notification notification, std::function<void()> callback)
        : center_(centerOf(notification)) {
        // The block keeps the callback while it runs, also when that ends the observation.
        const auto shared = std::make_shared<const std::function<void()>>(std::move(callback));
        token_ = [center_ addObserverForName:nameOf(notification)
                                      object:nil
                                       queue:[NSOperationQueue mainQueue]
                                  usingBlock:^(NSNotification*) {
                                    const auto running = shared;
                                    (*running)();
                                  }];
    }
    ~BlockObservation() override { [center_ removeObserver:token_]; }

  private:
    NSNotificationCenter* center_;
    id token_ = nil;
};

} // namespace

std::unique_ptr<Observation> observe(Notification notification, std::function<void()> callback) {
    return std::make_unique<BlockObservation>(notification, std::move(callback));
}

void requestPanel() {
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:panelRequestName()
                                                                   object:nil
                                                                 userInfo:nil
                                                       deliverImmediately:YES];
}

} // namespace tilewright::appkit
