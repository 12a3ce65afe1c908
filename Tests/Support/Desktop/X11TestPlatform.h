#pragma once

#include "FakeUserNotifications.h"

#include <FakePlatform.h>
#include <FreeDesktop/MessageBus.h>
#include <Platform/QtMainLoop.h>
#include <X11/X11Desktop.h>
#include <X11/X11EventMonitors.h>

namespace tilewright::testing {

/// The program's real view of an X server's displays, windows and input; whatever else a desktop
/// has is faked. No window counts as this program's own.
struct X11TestParts {
    explicit X11TestParts(const QString& display)
        : connection(X11Connection::open(display))
        , desktop(*connection, loop, sessionBus, notifications, false, {}) {}

    QtMainLoop loop;
    FakePlatform fakes;
    FakeUserNotifications notifications;
    MessageBus sessionBus{loop, MessageBus::Kind::session};
    std::unique_ptr<X11Connection> connection;
    X11Desktop desktop;
    X11EventMonitors eventMonitors{
        *connection, desktop.pointer(), desktop.movedWindows(), desktop.frameSetter(), {}};
};

/// The same as a platform, installed for as long as it lives.
class X11TestPlatform final : public Platform {
public:
    explicit X11TestPlatform(const QString& display)
        : X11TestPlatform(std::make_unique<X11TestParts>(display)) {}

    StatusItem& statusItem() override { return parts_->fakes.statusItem(); }
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override {
        return parts_->fakes.makeOverlaySurface(std::move(view));
    }
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override {
        return parts_->fakes.makePanelSurface(std::move(makeView), std::move(chrome));
    }

    [[nodiscard]] X11Connection& connection() { return *parts_->connection; }
    [[nodiscard]] X11Desktop& desktop() { return parts_->desktop; }
    [[nodiscard]] const FakeUserNotifications& notifications() const {
        return parts_->notifications;
    }

private:
    explicit X11TestPlatform(std::unique_ptr<X11TestParts> parts)
        : Platform({.screens = parts->desktop.screens(),
                    .pointer = parts->desktop.pointer(),
                    .eventMonitors = parts->eventMonitors,
                    .accessibility = parts->desktop.accessibility(),
                    .workspace = parts->desktop.workspace(),
                    .appearance = parts->desktop.appearance(),
                    .powerAssertions = parts->fakes.powerAssertions,
                    .userDefaults = parts->fakes.userDefaults,
                    .mainLoop = parts->loop,
                    .applicationSupport = parts->fakes.applicationSupport,
                    .instanceActivation = parts->fakes.instanceActivation,
                    .keyNames = parts->fakes.keyNames})
        , parts_(std::move(parts)) {}

    std::unique_ptr<X11TestParts> parts_;
    Installation installation_{*this};
};

} // namespace tilewright::testing
