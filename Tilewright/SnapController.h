#pragma once

#include <Platform/Accessibility.h>
#include <Platform/EventMonitors.h>
#include <Platform/OverlaySurface.h>
#include <Platform/Platform.h>
#include <Platform/Screens.h>
#include <TilewrightUI/SnapOverlayModel.h>

#include <memory>
#include <optional>
#include <vector>

namespace tilewright {

/// Turns an ordinary window drag into a snap.
///
/// While the activation modifier is held and the left button drags, an overlay shows the layout of
/// the display under the pointer with the zone under the pointer highlighted; on release the
/// dragged window goes into that zone. Failures are silent, save that the first one for lack of
/// permission asks for it, once in a run. Main thread only.
class SnapController final {
public:
    [[nodiscard]] static SnapController& shared();
    SnapController(const SnapController&) = delete;
    SnapController& operator=(const SnapController&) = delete;
    ~SnapController();

    /// Watches the mouse and the modifier keys from now on; those watched for before are let go
    /// first.
    void start();
    /// Stops watching and hides the overlay.
    void stop();

    /// What the overlay shows.
    [[nodiscard]] const SnapOverlayModel& overlayModel() const { return overlayModel_; }
    /// Whether the overlay is shown.
    [[nodiscard]] bool overlayVisible() const { return overlayVisible_; }
    /// Whether the activation modifier was held at its last change.
    [[nodiscard]] bool isModifierDown() const { return isModifierDown_; }
    /// Whether a drag that began to snap is under way, also while its overlay is hidden.
    [[nodiscard]] bool isDragging() const { return isDragging_; }

private:
    friend class SharedInstance<SnapController>;
    SnapController();

    void handle(const Event& event);
    void flagsChanged(ModifierFlags flags);
    void leftMouseDragged();
    void leftMouseUp();
    void updateOverlay(AppKitPoint mouse);
    void moveOverlay(const ScreenPtr& screen);
    [[nodiscard]] OverlaySurface& ensureOverlayWindow();
    void hideOverlay();
    void commitSnap();

    std::vector<MonitorToken> globalMonitors_;
    std::vector<MonitorToken> localMonitors_;
    SnapOverlayModel overlayModel_;
    std::unique_ptr<OverlaySurface> overlayWindow_;
    bool overlayVisible_ = false;
    bool isModifierDown_ = false;
    bool isDragging_ = false;
    ScreenPtr currentScreen_;
    std::optional<AccessibilityElement> draggedWindow_;
    bool didPromptForPermission_ = false;
};

} // namespace tilewright
