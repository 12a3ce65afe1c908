#pragma once

#include "Accessibility.h"
#include "Appearance.h"
#include "ApplicationSupport.h"
#include "EventMonitors.h"
#include "InstanceActivation.h"
#include "KeyNames.h"
#include "MainLoop.h"
#include "OverlaySurface.h"
#include "PanelSurface.h"
#include "Pointer.h"
#include "PowerAssertions.h"
#include "Screens.h"
#include "StatusItem.h"
#include "UserDefaults.h"
#include "Workspace.h"

#include <functional>
#include <memory>
#include <vector>

namespace tilewright {

/// What every desktop offers from the moment it is opened, each behind a small interface. The one
/// list of it: a new service is a line here and a line where each backend fills it in.
struct PlatformServices {
    Screens& screens;
    Pointer& pointer;
    EventMonitors& eventMonitors;
    Accessibility& accessibility;
    Workspace& workspace;
    Appearance& appearance;
    PowerAssertions& powerAssertions;
    UserDefaults& userDefaults;
    MainLoop& mainLoop;
    ApplicationSupport& applicationSupport;
    InstanceActivation& instanceActivation;
    const KeyNames& keyNames;
};

/// One desktop: everything that differs between macOS, Linux and a test. What is shown to the user
/// is made on demand, so that a second instance that gives way has shown nothing.
///
/// One platform is installed at a time, by the application at start-up or by a test. The shared
/// instances of the program (see `SharedInstance`) are created on first use from the installed
/// platform, live as long as it is installed, and are destroyed in the reverse order of their
/// creation when it is uninstalled. Main thread only.
class Platform : public PlatformServices {
public:
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    virtual ~Platform();

    /// The program's one status item; created, and shown, on the first call.
    [[nodiscard]] virtual StatusItem& statusItem() = 0;
    /// A new hidden surface that shows the view, which it keeps for as long as it lives.
    [[nodiscard]] virtual std::unique_ptr<OverlaySurface>
    makeOverlaySurface(std::shared_ptr<OverlayView> view) = 0;
    /// A new closed panel; `makeView` makes its content at each opening. The
    /// platform has to outlive it.
    [[nodiscard]] virtual std::unique_ptr<PanelSurface>
    makePanelSurface(PanelSurface::ViewFactory makeView, std::unique_ptr<PanelChrome> chrome) = 0;

    /// The installed platform; calling it while none is installed is a fatal programming error.
    [[nodiscard]] static Platform& current();

    /// Keeps a platform installed for as long as it lives. The platform has to outlive it; only one
    /// installation may exist at a time.
    class Installation {
    public:
        explicit Installation(Platform& platform);
        Installation(const Installation&) = delete;
        Installation& operator=(const Installation&) = delete;
        ~Installation();
    };

protected:
    /// The services have to live as long as the platform.
    explicit Platform(const PlatformServices& services)
        : PlatformServices(services) {}
};

namespace detail {
/// Runs `destroy` when the platform is uninstalled, the last registered first.
void whenUninstalled(std::function<void()> destroy);
} // namespace detail

/// The one instance of a service type, for as long as a platform is installed: created on the first
/// call of `get()` and destroyed, in reverse order of creation, when the platform is uninstalled.
/// `T` names `SharedInstance<T>` a friend when its constructor is private. Main thread only.
template<class T>
class SharedInstance {
public:
    [[nodiscard]] static T& get() {
        if (!instance()) {
            // Not make_unique: the constructor may be open to this class alone.
            instance() = std::unique_ptr<T>(new T);
            detail::whenUninstalled([] { instance().reset(); });
        }
        return *instance();
    }

private:
    [[nodiscard]] static std::unique_ptr<T>& instance() {
        static std::unique_ptr<T> instance;
        return instance;
    }
};

} // namespace tilewright
