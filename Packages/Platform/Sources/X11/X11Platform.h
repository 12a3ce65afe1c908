#pragma once

#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// Whose session an X server's is.
enum class X11Session {
    ofItsOwn,
    /// It shows X programs in the session of a Wayland compositor, whose own windows cannot be
    /// moved from here: windows are left alone, and the user is told why.
    besideWayland,
};

/// The desktop of an X11 session: windows, input and displays from the X server, everything else
/// from what Linux desktops share. Needs Qt's application object, running on X11, and has
/// to end before it.
class X11Platform final : public Platform {
public:
    /// Null when there is no X server to speak to.
    [[nodiscard]] static std::unique_ptr<X11Platform>
    open(X11Session session = X11Session::ofItsOwn);
    ~X11Platform() override;

    StatusItem& statusItem() override;
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override;
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override;

private:
    struct Parts;
    explicit X11Platform(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace tilewright
