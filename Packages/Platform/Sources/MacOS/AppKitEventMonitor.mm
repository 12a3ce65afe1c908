#include "AppKitEventMonitor.h"

#include <AppKit/AppKit.h>
#include <Platform/MainThread.h>

namespace tilewright::appkit {

namespace {

static_assert(NSEventTypeLeftMouseDown == static_cast<int>(EventType::leftMouseDown));
static_assert(NSEventTypeLeftMouseUp == static_cast<int>(EventType::leftMouseUp));
static_assert(NSEventTypeRightMouseDown == static_cast<int>(EventType::rightMouseDown));
static_assert(NSEventTypeLeftMouseDragged == static_cast<int>(EventType::leftMouseDragged));
static_assert(NSEventTypeFlagsChanged == static_cast<int>(EventType::flagsChanged));
static_assert(NSEventTypeOtherMouseDown == static_cast<int>(EventType::otherMouseDown));
static_assert(NSEventModifierFlagShift == static_cast<quint32>(ModifierFlag::shift));
static_assert(NSEventModifierFlagControl == static_cast<quint32>(ModifierFlag::control));
static_assert(NSEventModifierFlagOption == static_cast<quint32>(ModifierFlag::option));
static_assert(NSEventModifierFlagCommand == static_cast<quint32>(ModifierFlag::command));

Event toEvent(NSEvent* event) {
    return {static_cast<EventType>([event type]),
            ModifierFlags(static_cast<quint32>([event modifierFlags]))};
}

class BlockMonitor final : public EventMonitor {
  public:
    explicit BlockMonitor(id token) : token_(token) {}
    ~BlockMonitor() override { [NSEvent removeMonitor:token_]; }

  private:
    id token_;
};

} // namespace

std::unique_ptr<EventMonitor> addMonitor(MonitorKind kind, EventMask mask,
                                         EventMonitors::Handler handler) {
    // The blocks keep the handler while it runs, also when that ends the monitor.
    const auto shared = std::make_shared<const EventMonitors::Handler>(std::move(handler));
    const auto types = static_cast<NSEventMask>(mask.value());
    id token = nil;
    if (kind == MonitorKind::global) {
        token = [NSEvent addGlobalMonitorForEventsMatchingMask:types
                                                       handler:^(NSEvent* event) {
                                                         assertMainThread(__FILE__, __LINE__);
                                                         const auto running = shared;
                                                         (*running)(toEvent(event));
                                                       }];
    } else {
        token = [NSEvent addLocalMonitorForEventsMatchingMask:types
                                                      handler:^NSEvent*(NSEvent* event) {
                                                        assertMainThread(__FILE__, __LINE__);
                                                        const auto running = shared;
                                                        (*running)(toEvent(event));
                                                        return event;
                                                      }];
    }
    return token ? std::make_unique<BlockMonitor>(token) : nullptr;
}

} // namespace tilewright::appkit
