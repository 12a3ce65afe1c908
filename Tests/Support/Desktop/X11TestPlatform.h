#pragma once

#include <FakePlatform.h>
#include <Platform/QtMainLoop.h>
#include <X11/X11Desktop.h>

namespace tilewright::testing {

/// The program's real view of an X server's displays and windows, installed for as long as it
/// lives; whatever else a desktop has is faked.
class X11TestPlatform final : public Platform {
public:
    explicit X11TestPlatform(const QString& display)
        : connection_(X11Connection::open(display))
        , desktop_(*connection_, loop_, fakes_.fakeUserNotifications, false, {})
        , installation_(*this) {}

    X11Screens& screens() override { return desktop_.screens(); }
    X11Pointer& pointer() override { return desktop_.pointer(); }
    EventMonitors& eventMonitors() override { return fakes_.eventMonitors(); }
    X11Accessibility& accessibility() override { return desktop_.accessibility(); }
    X11Workspace& workspace() override { return desktop_.workspace(); }
    PowerAssertions& powerAssertions() override { return fakes_.powerAssertions(); }
    UserDefaults& userDefaults() override { return fakes_.userDefaults(); }
    MainLoop& mainLoop() override { return loop_; }
    ApplicationSupport& applicationSupport() override { return fakes_.applicationSupport(); }
    FakeUserNotifications& userNotifications() override { return fakes_.userNotifications(); }
    InstanceActivation& instanceActivation() override { return fakes_.instanceActivation(); }
    StatusItem& statusItem() override { return fakes_.statusItem(); }
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override {
        return fakes_.makeOverlaySurface(std::move(view));
    }

    [[nodiscard]] X11Connection& connection() { return *connection_; }
    [[nodiscard]] X11Desktop& desktop() { return desktop_; }

private:
    QtMainLoop loop_;
    FakePlatform fakes_;
    std::unique_ptr<X11Connection> connection_;
    X11Desktop desktop_;
    Installation installation_;
};

} // namespace tilewright::testing
