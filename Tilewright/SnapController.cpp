#include "SnapController.h"

#include "SnapSettings.h"

#include <Platform/MainThread.h>
#include <TilewrightUI/SnapOverlayView.h>
#include <WindowManager/LayoutStore.h>
#include <WindowManager/WindowManager.h>
#include <WindowManager/WindowManagerError.h>
#include <WindowManager/ZoneHitTesting.h>

#include <algorithm>

namespace tilewright {

namespace {

// The press is not watched for: a drag is known by its first dragged event.
constexpr EventMask monitoredEvents{EventType::leftMouseUp, EventType::leftMouseDragged,
                                    EventType::flagsChanged};

/// The first zone with that id; null where there is none.
const Zone* zoneWithID(const ZoneLayout& layout, const QUuid& id) {
    assertMainThread(__FILE__, __LINE__);
    const auto found = std::find_if(layout.zones.begin(), layout.zones.end(),
                                    [&id](const Zone& zone) { return zone.id == id; });
    return found == layout.zones.end() ? nullptr : &*found;
}

} // namespace

SnapController& SnapController::shared() {
    return SharedInstance<SnapController>::get();
}

SnapController::SnapController()
    : overlayModel_(ZoneLayout::bentoBox(), std::nullopt) {}

SnapController::~SnapController() {
    stop();
}

void SnapController::start() {
    stop();
    EventMonitors& monitors = Platform::current().eventMonitors;
    const EventMonitors::Handler handler = [](const Event& event) {
        assertMainThread(__FILE__, __LINE__);
        shared().handle(event);
    };
    if (const auto token = monitors.addGlobalMonitor(monitoredEvents, handler))
        globalMonitors_.push_back(*token);
    if (const auto token = monitors.addLocalMonitor(monitoredEvents, handler))
        localMonitors_.push_back(*token);
}

void SnapController::stop() {
    EventMonitors& monitors = Platform::current().eventMonitors;
    for (const MonitorToken token : globalMonitors_)
        monitors.removeMonitor(token);
    for (const MonitorToken token : localMonitors_)
        monitors.removeMonitor(token);
    globalMonitors_.clear();
    localMonitors_.clear();
    hideOverlay();
}

void SnapController::handle(const Event& event) {
    switch (event.type) {
    case EventType::flagsChanged:
        flagsChanged(event.modifierFlags);
        break;
    case EventType::leftMouseDragged:
        if (isModifierDown_)
            leftMouseDragged();
        break;
    case EventType::leftMouseUp:
        leftMouseUp();
        break;
    default:
        break;
    }
}

void SnapController::flagsChanged(ModifierFlags flags) {
    // Read afresh each time: a change of the setting applies from the next key change on.
    isModifierDown_ = flags.contains(eventFlag(SnapSettings::shared().modifier()));
    // The drag goes on without an overlay, and its release snaps nothing.
    if (!isModifierDown_ && overlayVisible_)
        hideOverlay();
}

void SnapController::leftMouseDragged() {
    const Pointer& pointer = Platform::current().pointer;
    if (!isDragging_) {
        isDragging_ = true;
        draggedWindow_ = WindowManager::shared().windowElementAtScreenPoint(pointer.location());
    }
    updateOverlay(pointer.location());
}

void SnapController::leftMouseUp() {
    if (isDragging_ && overlayVisible_)
        commitSnap();
    isDragging_ = false;
    hideOverlay();
}

void SnapController::updateOverlay(AppKitPoint mouse) {
    const ScreenPtr screen = Platform::current().screens.at(mouse);
    if (!screen)
        return;
    if (currentScreen_ != screen)
        moveOverlay(screen);
    if (!overlayVisible_) {
        ensureOverlayWindow().orderFront();
        overlayVisible_ = true;
    }
    std::optional<QUuid> highlighted;
    if (const auto point = ZoneHitTesting::normalizedPointForMouseLocation(mouse, *screen)) {
        if (const auto zone = overlayModel_.layout().zoneAtNormalized(*point))
            highlighted = zone->id;
    }
    if (overlayModel_.highlightedZoneID() != highlighted)
        overlayModel_.setHighlightedZoneID(highlighted);
}

void SnapController::moveOverlay(const ScreenPtr& screen) {
    currentScreen_ = screen;
    overlayModel_.setLayout(LayoutStore::shared().layoutFor(*screen));
    ensureOverlayWindow().setScreen(screen);
}

OverlaySurface& SnapController::ensureOverlayWindow() {
    if (!overlayWindow_) {
        overlayWindow_ = Platform::current().makeOverlaySurface(
            std::make_shared<SnapOverlayView>(overlayModel_));
    }
    return *overlayWindow_;
}

void SnapController::hideOverlay() {
    if (overlayWindow_)
        overlayWindow_->orderOut();
    overlayVisible_ = false;
    currentScreen_.reset();
    overlayModel_.setHighlightedZoneID(std::nullopt);
    draggedWindow_.reset();
}

void SnapController::commitSnap() {
    const std::optional<QUuid>& highlighted = overlayModel_.highlightedZoneID();
    if (!currentScreen_ || !highlighted)
        return;
    const Zone* zone = zoneWithID(overlayModel_.layout(), *highlighted);
    if (!zone)
        return;
    WindowManager& windows = WindowManager::shared();
    try {
        if (draggedWindow_)
            windows.snap(*draggedWindow_, *zone, *currentScreen_);
        else
            windows.snapFocusedWindow(*zone, currentScreen_);
    } catch (const WindowManagerError& error) {
        if (error.is<WindowManagerError::AccessibilityDenied>() && !didPromptForPermission_) {
            didPromptForPermission_ = true;
            windows.requestAccessibilityPermission();
        }
    }
}

} // namespace tilewright
