#pragma once

#include <Platform/EventMonitors.h>
#include <Platform/Geometry.h>

#include <QByteArray>
#include <QString>
#include <QWidget>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tilewright::testing {

/// The item in the fake menu bar.
struct FakeStatusBarItem {
    double length = 0;
    bool isInBar = true;
    bool isHighlighted = false;
    QByteArray image;
    AppKitPoint imageSize;
    bool isTemplate = false;
    QString label;
    QString toolTip;
    std::function<void()> click;
    /// Where its button is, in AppKit screen space; none while it is in no menu bar.
    std::optional<AppKitRect> place;
};

/// Stands in for Foundation and AppKit where the backend's Objective-C files call them, so that
/// those files run without either: the state behind the fake classes, for tests to set and to read.
/// One at a time. Nothing here counts references, and no object is ever freed.
class FakeCocoa {
public:
    FakeCocoa();
    FakeCocoa(const FakeCocoa&) = delete;
    FakeCocoa& operator=(const FakeCocoa&) = delete;
    ~FakeCocoa();

    [[nodiscard]] static FakeCocoa& current();
    /// An object of Objective-C, by its address.
    using Object = const void*;

    struct Display {
        AppKitRect frame;
        AppKitRect visibleFrame;
        quint32 number = 1;
        QString name;
    };
    std::vector<Display> displays;
    std::optional<std::size_t> mainDisplay;
    AppKitPoint mouse;

    struct Monitor {
        bool isGlobal = false;
        quint64 mask = 0;
        bool isInstalled = true;
        /// Hands an event over; whether a local monitor passed the same one on.
        std::function<bool(quint64 type, quint64 flags)> call;
    };
    std::map<Object, Monitor> monitors;
    /// Sends an event to every installed monitor of the kind whose mask holds its type; whether
    /// each local one passed it on.
    bool send(bool isGlobal, quint64 type, quint64 flags);

    enum class Center { application, workspace, distributed };
    struct Observer {
        Object observer = nullptr;
        Center center = Center::application;
        std::string name;
        /// What happens while the program is not the active one; 0 is what holds back.
        quint64 suspension = 0;
        std::function<void()> call;
    };
    std::vector<Observer> observers;
    /// Posts a notification while the program is not the active one.
    void announce(Center center, const std::string& name);
    /// The names of what was posted to other processes, and whether at once.
    std::vector<std::pair<std::string, bool>> posted;
    /// By class and number of the event.
    std::map<std::pair<quint32, quint32>, std::function<void()>> appleEvents;

    struct Activity {
        quint64 options = 0;
        QString reason;
        bool isUnderWay = true;
    };
    std::map<Object, Activity> activities;

    std::map<QString, QString> defaults;
    std::optional<QString> supportFolder;
    std::pair<quint64, quint64> askedFolder;
    std::optional<QString> bundleIdentifier;

    struct Application {
        qint64 process = 0;
        QString bundle = {};
        std::optional<QString> name = std::nullopt;
        std::optional<double> launchedAt = std::nullopt;
        bool isTerminated = false;
        /// The options with which it was asked to come forward.
        std::vector<quint64> activations = {};
    };
    std::vector<Application> applications;
    std::optional<qint64> frontmost;
    std::vector<QString> openedURLs;
    bool reducesMotion = false;
    /// Whether this program is the active one, and how often it asked to be whatever others want.
    bool isActive = false;
    int forcedActivations = 0;
    /// Whether applications make room for each other, and for which ones this one did.
    bool asksTheActiveApplication = true;
    std::vector<qint64> madeRoomFor;

    struct View {
        AppKitRect frame;
        quint64 autoresizing = 0;
        Object superview = nullptr;
        Object window = nullptr;
    };
    std::map<Object, View> views;
    /// A view as Qt makes one for a widget, the content of a window of Qt's.
    [[nodiscard]] Object makeViewOfQt();

    struct Window {
        bool isPanel = false;
        AppKitRect frame;
        quint64 styleMask = 0;
        quint64 backing = 0;
        bool defer = true;
        bool isOpaque = true;
        bool hasClearBackground = false;
        qint64 level = 0;
        bool ignoresMouse = false;
        quint64 behavior = 0;
        bool hasShadow = true;
        bool isReleasedWhenClosed = true;
        bool hidesOnDeactivate = false;
        bool isOrderedIn = false;
        bool isKey = false;
        bool wasDisplayed = false;
        Object contentView = nullptr;
        Object firstResponder = nullptr;
    };
    std::map<Object, Window> windows;
    /// The window that the code under test made last.
    [[nodiscard]] Window& lastWindow() { return windows.at(lastWindowMade); }
    Object lastWindowMade = nullptr;

    std::optional<FakeStatusBarItem> item;
};

} // namespace tilewright::testing
