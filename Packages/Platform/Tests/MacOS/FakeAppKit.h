#pragma once

#include <MacOS/AppKitActivity.h>
#include <MacOS/AppKitApplications.h>
#include <MacOS/AppKitEventMonitor.h>
#include <MacOS/AppKitHostWindow.h>
#include <MacOS/AppKitNotifications.h>
#include <MacOS/AppKitScreenList.h>
#include <MacOS/AppKitStatusItem.h>
#include <Platform/Platform.h>

#include <QTemporaryDir>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tilewright::testing {

/// Stands in for AppKit where the backend's thin Objective-C files would call it. One at a time.
class FakeAppKit {
public:
    FakeAppKit();
    FakeAppKit(const FakeAppKit&) = delete;
    FakeAppKit& operator=(const FakeAppKit&) = delete;
    ~FakeAppKit();

    [[nodiscard]] static FakeAppKit& current();

    /// The view that keys go to; null while no window of the program receives them.
    [[nodiscard]] QWidget* keyView() const;

    /// Announces to every observer.
    void announce(appkit::Notification notification);
    /// Sends an event to every monitor of the kind whose mask holds its type.
    void send(appkit::MonitorKind kind, const Event& event);

    struct Monitor {
        appkit::MonitorKind kind;
        EventMask mask;
        EventMonitors::Handler handler;
    };
    struct Observer {
        appkit::Notification notification;
        std::function<void()> callback;
    };
    struct Window {
        appkit::WindowProperties properties;
        std::optional<WId> content;
        AppKitRect frame;
        bool isShown = false;
        /// Whether it receives the keys; at most one window does.
        bool isKey = false;
        bool isAlive = true;
        std::vector<std::string> calls;
    };

    std::vector<appkit::ScreenFacts> screens;
    std::optional<std::size_t> mainScreen;
    AppKitPoint mouse;

    std::map<int, Monitor> monitors;
    int monitorsInstalled = 0;
    bool refusesGlobalMonitors = false;
    bool refusesLocalMonitors = false;

    std::map<int, Observer> observers;
    int observersAdded = 0;
    int panelRequests = 0;
    /// The reasons of the activities under way, and how many there were.
    std::multiset<QString> activities;
    int activitiesBegun = 0;

    std::vector<std::shared_ptr<Window>> windows;

    std::optional<ProcessID> frontmost;
    std::map<ProcessID, QString> names;
    std::vector<QString> openedURLs;
    int activations = 0;
    /// The other applications that were brought forward.
    std::vector<ProcessID> broughtForward;
    bool reducesMotion = false;

    std::map<QString, QString> defaults;
    QTemporaryDir applicationSupport;
    /// The instances of the program that run.
    std::vector<appkit::RunningInstance> instances;
    struct Item {
        std::function<void()> clicked;
        std::vector<QByteArray> images;
        int side = 0;
        QString accessibleName;
        std::optional<AppKitRect> frame;
        bool isHighlighted = false;
    };
    /// The status item, while there is one.
    std::optional<Item> statusItem;
};

} // namespace tilewright::testing
