#include "AppKitNotifications.h"

#include "MacText.h"

#include <AppKit/AppKit.h>
#include <Platform/MainThread.h>

/// What the centres and the event manager call, each with a selector of its own.
@interface TilewrightListener : NSObject {
    std::function<void()> callback_;
}
- (instancetype)initWithCallback:(std::function<void()>)callback;
- (void)announced:(NSNotification*)notification;
- (void)reopened:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
- (void)willFinishLaunching:(NSNotification*)notification;
@end

@implementation TilewrightListener

- (instancetype)initWithCallback:(std::function<void()>)callback {
    self = [super init];
    if (self)
        callback_ = std::move(callback);
    return self;
}

- (void)call {
    tilewright::assertMainThread(__FILE__, __LINE__);
    // It may end the observation.
    const auto running = callback_;
    running();
}

- (void)announced:(NSNotification*)notification {
    (void)notification;
    [self call];
}

- (void)reopened:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply {
    (void)event;
    (void)reply;
    [self call];
}

- (void)willFinishLaunching:(NSNotification*)notification {
    (void)notification;
    // AppKit has installed its own handlers by now, and this replaces one of them.
    [[NSAppleEventManager sharedAppleEventManager] setEventHandler:self
                                                       andSelector:@selector(reopened:
                                                                       withReplyEvent:)
                                                     forEventClass:kCoreEventClass
                                                        andEventID:kAEReopenApplication];
}

@end

namespace tilewright::appkit {

namespace {

NSString* panelRequestName() {
    return toNSString(QStringLiteral("org.tilewright.Tilewright.ShowPanel"));
}

/// Of those within this program, or about it.
NSNotificationCenter* centerOf(Notification notification) {
    if (notification == Notification::screenParametersChanged)
        return [NSNotificationCenter defaultCenter];
    return [[NSWorkspace sharedWorkspace] notificationCenter];
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
    case Notification::reopened:
        return NSApplicationWillFinishLaunchingNotification;
    case Notification::panelRequested:
        break;
    }
    return panelRequestName();
}

TilewrightListener* makeListener(std::function<void()> callback) {
    return [[TilewrightListener alloc] initWithCallback:std::move(callback)];
}

class LocalObservation final : public Observation {
  public:
    LocalObservation(Notification notification, std::function<void()> callback)
        : center_(centerOf(notification)), listener_(makeListener(std::move(callback))) {
        [center_ addObserver:listener_
                    selector:@selector(announced:)
                        name:nameOf(notification)
                      object:nil];
    }
    ~LocalObservation() override { [center_ removeObserver:listener_]; }

  private:
    NSNotificationCenter* center_;
    TilewrightListener* listener_;
};

/// Of what other processes announce.
class DistributedObservation final : public Observation {
  public:
    DistributedObservation(Notification notification, std::function<void()> callback)
        : listener_(makeListener(std::move(callback))) {
        // Otherwise they wait until this program is the active one, which it hardly ever is.
        [[NSDistributedNotificationCenter defaultCenter]
                   addObserver:listener_
                      selector:@selector(announced:)
                          name:nameOf(notification)
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    }
    ~DistributedObservation() override {
        [[NSDistributedNotificationCenter defaultCenter] removeObserver:listener_];
    }

  private:
    TilewrightListener* listener_;
};

/// Of an event that the system sends when the user opens the program once more.
class ReopeningObservation final : public Observation {
  public:
    explicit ReopeningObservation(std::function<void()> callback)
        : listener_(makeListener(std::move(callback))) {
        [[NSNotificationCenter defaultCenter] addObserver:listener_
                                                 selector:@selector(willFinishLaunching:)
                                                     name:nameOf(Notification::reopened)
                                                   object:nil];
    }
    ~ReopeningObservation() override {
        [[NSNotificationCenter defaultCenter] removeObserver:listener_];
        [[NSAppleEventManager sharedAppleEventManager]
            removeEventHandlerForEventClass:kCoreEventClass
                                 andEventID:kAEReopenApplication];
    }

  private:
    TilewrightListener* listener_;
};

} // namespace

std::unique_ptr<Observation> observe(Notification notification, std::function<void()> callback) {
    switch (notification) {
    case Notification::accessibilityPermissionChanged:
    case Notification::panelRequested:
        return std::make_unique<DistributedObservation>(notification, std::move(callback));
    case Notification::reopened:
        return std::make_unique<ReopeningObservation>(std::move(callback));
    case Notification::screenParametersChanged:
    case Notification::applicationActivated:
    case Notification::displayOptionsChanged:
        break;
    }
    return std::make_unique<LocalObservation>(notification, std::move(callback));
}

void requestPanel() {
    [[NSDistributedNotificationCenter defaultCenter] postNotificationName:panelRequestName()
                                                                   object:nil
                                                                 userInfo:nil
                                                       deliverImmediately:YES];
}

} // namespace tilewright::appkit
