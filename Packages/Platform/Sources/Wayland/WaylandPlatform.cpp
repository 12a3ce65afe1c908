#include "WaylandPlatform.h"

#include "UntrustedAccessibility.h"
#include "WaylandPanelSurface.h"
#include "WaylandScreens.h"

#include <FreeDesktop/FreeDesktopGuidance.h>
#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <FreeDesktop/FreeDesktopSession.h>
#include <FreeDesktop/FreeDesktopStatusItem.h>
#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <FreeDesktop/PortalAppearance.h>
#include <FreeDesktop/WaylandSocket.h>
#include <LayerShell/LayerShellScreenSaver.h>

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QWindow>
#include <optional>

namespace tilewright {

namespace {

class WaylandPointer final : public Pointer {
public:
    explicit WaylandPointer(const WaylandScreens& screens)
        : screens_(screens) {}
    /// As of the last time that it was over a window of this program.
    [[nodiscard]] AppKitPoint location() const override {
        return screens_.toAppKit(QCursor::pos());
    }

private:
    const WaylandScreens& screens_;
};

/// No compositor lets a program watch input.
class NoEventMonitors final : public EventMonitors {
public:
    [[nodiscard]] std::optional<MonitorToken> addGlobalMonitor(EventMask, Handler) override {
        return std::nullopt;
    }
    [[nodiscard]] std::optional<MonitorToken> addLocalMonitor(EventMask, Handler) override {
        return std::nullopt;
    }
    void removeMonitor(MonitorToken) override {}
};

/// Without input there is no drag that could show it.
class NoOverlaySurface final : public OverlaySurface {
public:
    void setScreen(const ScreenPtr&) override {}
    void orderFront() override {}
    void orderOut() override {}
};

/// There is one way only: to another session.
class WaylandGuidance final : public FreeDesktopGuidance {
public:
    using FreeDesktopGuidance::FreeDesktopGuidance;

protected:
    [[nodiscard]] Step step() const override { return otherSessionStep(); }
};

void bringForward(QWindow& window) {
    window.raise();
    window.requestActivate();
}

class WaylandWorkspace final : public Workspace {
public:
    explicit WaylandWorkspace(FreeDesktopGuidance& guidance)
        : guidance_(guidance) {}

    [[nodiscard]] std::optional<ProcessID> frontmostApplication() const override {
        return std::nullopt;
    }
    [[nodiscard]] std::optional<QString> localizedName(ProcessID) const override {
        return std::nullopt;
    }
    void openAccessibilitySettings() override { guidance_.show(); }
    void activateThisApplication() override {
        const QWindowList windows = QGuiApplication::topLevelWindows();
        for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
            if (!(*it)->isVisible())
                continue;
            bringForward(**it);
            return;
        }
    }

private:
    FreeDesktopGuidance& guidance_;
};

} // namespace

/// In the order in which they need each other.
struct WaylandPlatform::Parts : FreeDesktopSession {
    FreeDesktopInstanceActivation instanceActivation{qEnvironmentVariable("WAYLAND_DISPLAY"),
                                                     sessionBus};
    WaylandConnection compositor{mainLoop,
                                 waylandSocketPath(QProcessEnvironment::systemEnvironment())};
    LayerShellScreenSaver screenSaver{compositor, mainLoop};
    InhibitingPowerAssertions powerAssertions{mainLoop, &screenSaver, sessionBus, systemBus};
    WaylandScreens screens{mainLoop};
    WaylandPointer pointer{screens};
    NoEventMonitors eventMonitors;
    WaylandGuidance guidance{userNotifications, bringForward};
    UntrustedAccessibility accessibility{[this] {
        userNotifications.show(QCoreApplication::translate("tilewright::WaylandPlatform",
                                                           "Tilewright cannot move windows"),
                               FreeDesktopGuidance::sessionsThatHelp(),
                               [this] { guidance.show(); });
    }};
    WaylandWorkspace workspace{guidance};
    PortalAppearance appearance{sessionBus};
    std::optional<FreeDesktopStatusItem> statusItem;

    [[nodiscard]] PlatformServices services() {
        return {.screens = screens,
                .pointer = pointer,
                .eventMonitors = eventMonitors,
                .accessibility = accessibility,
                .workspace = workspace,
                .appearance = appearance,
                .powerAssertions = powerAssertions,
                .userDefaults = userDefaults,
                .mainLoop = mainLoop,
                .applicationSupport = applicationSupport,
                .instanceActivation = instanceActivation,
                .keyNames = keyNames};
    }
};

WaylandPlatform::WaylandPlatform()
    : WaylandPlatform(std::make_unique<Parts>()) {}
WaylandPlatform::WaylandPlatform(std::unique_ptr<Parts> parts)
    : Platform(parts->services())
    , parts_(std::move(parts)) {}
WaylandPlatform::~WaylandPlatform() = default;

StatusItem& WaylandPlatform::statusItem() {
    if (!parts_->statusItem) {
        const WaylandScreens& displays = parts_->screens;
        parts_->statusItem.emplace(
            displays,
            [&displays](NativePixel pixel) {
                return displays.toAppKit({pixel.x, pixel.y});
            },
            parts_->mainLoop, parts_->sessionBus);
    }
    return *parts_->statusItem;
}

std::unique_ptr<OverlaySurface> WaylandPlatform::makeOverlaySurface(std::shared_ptr<OverlayView>) {
    return std::make_unique<NoOverlaySurface>();
}

std::unique_ptr<PanelSurface>
WaylandPlatform::makePanelSurface(PanelSurface::ViewFactory makeView,
                                  std::unique_ptr<PanelChrome> chrome) {
    return std::make_unique<WaylandPanelSurface>(std::move(makeView), std::move(chrome));
}

} // namespace tilewright
