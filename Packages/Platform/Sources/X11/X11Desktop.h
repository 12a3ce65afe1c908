#pragma once

#include "X11Accessibility.h"
#include "X11ActiveWindow.h"
#include "X11Appearance.h"
#include "X11Compositor.h"
#include "X11FrameSetter.h"
#include "X11Guidance.h"
#include "X11MovedWindows.h"
#include "X11Pointer.h"
#include "X11Screens.h"
#include "X11Trust.h"
#include "X11WindowManagerWatch.h"
#include "X11Workspace.h"

namespace tilewright {

/// The displays, the pointer and the windows of an X screen, put together. Main thread only; the
/// arguments have to outlive it, but for the environment: the one in which other programs are found
/// and started.
class X11Desktop {
public:
    X11Desktop(X11Connection& connection, MainLoop& loop, MessageBus& sessionBus,
               UserNotifications& notifications, bool isWaylandSession,
               const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
        : selection_(connection)
        , windowManager_(connection, selection_)
        , activeWindow_(connection, selection_)
        , compositor_(connection)
        , screens_(connection, selection_, windowManager_, activeWindow_, loop)
        , pointer_(connection, screens_)
        , movedWindows_(connection, selection_)
        , frameSetter_(connection, selection_, windowManager_, loop,
                       {[this] { return screens_.coordinates(); }, [this] { return tiling(); }})
        , trust_(connection, windowManager_, loop, notifications, isWaylandSession)
        , accessibility_(connection, windowManager_, movedWindows_, screens_, trust_, activeWindow_,
                         frameSetter_)
        , guidance_(
              trust_, windowManager_, notifications,
              [this](QWindow& window) { workspace_.bringForward(window); }, environment)
        , screenReducedMotion_(connection, selection_)
        , sessionAppearance_(sessionBus)
        , appearance_(compositor_, screenReducedMotion_, sessionAppearance_)
        , workspace_(connection, activeWindow_, guidance_) {}

    [[nodiscard]] X11EventSelection& selection() { return selection_; }
    [[nodiscard]] X11WindowManagerWatch& windowManager() { return windowManager_; }
    [[nodiscard]] X11Compositor& compositor() { return compositor_; }
    [[nodiscard]] X11Screens& screens() { return screens_; }
    [[nodiscard]] X11Pointer& pointer() { return pointer_; }
    [[nodiscard]] X11MovedWindows& movedWindows() { return movedWindows_; }
    [[nodiscard]] X11FrameSetter& frameSetter() { return frameSetter_; }
    [[nodiscard]] X11Trust& trust() { return trust_; }
    [[nodiscard]] X11Accessibility& accessibility() { return accessibility_; }
    [[nodiscard]] X11Appearance& appearance() { return appearance_; }
    [[nodiscard]] X11Workspace& workspace() { return workspace_; }
    [[nodiscard]] X11Guidance& guidance() { return guidance_; }

private:
    /// Window managers tile a window that is let go near an edge.
    [[nodiscard]] X11FramePlacement::Tiling tiling() const {
        const auto place = pointer_.known();
        return place && screens_.isNearAnEdge(*place) ? X11FramePlacement::Tiling::likely
                                                      : X11FramePlacement::Tiling::unlikely;
    }

    X11EventSelection selection_;
    X11WindowManagerWatch windowManager_;
    X11ActiveWindow activeWindow_;
    X11Compositor compositor_;
    X11Screens screens_;
    X11Pointer pointer_;
    X11MovedWindows movedWindows_;
    X11FrameSetter frameSetter_;
    X11Trust trust_;
    X11Accessibility accessibility_;
    X11Guidance guidance_;
    X11ReducedMotion screenReducedMotion_;
    FreeDesktopAppearance sessionAppearance_;
    X11Appearance appearance_;
    X11Workspace workspace_;
};

} // namespace tilewright
