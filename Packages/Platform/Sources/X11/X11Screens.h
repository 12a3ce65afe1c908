#pragma once

#include "X11ActiveWindow.h"
#include "X11Coordinates.h"
#include "X11EventSelection.h"
#include "X11WindowManagerWatch.h"
#include "X11WorkAreas.h"

#include <FreeDesktop/DisplayKeys.h>
#include <Platform/MainLoop.h>
#include <Platform/Screens.h>

#include <map>

namespace tilewright {

/// A RandR monitor.
class X11Screen final : public Screen {
public:
    struct Values {
        AppKitRect frame;
        AppKitRect visibleFrame;
        quint32 displayID = 0;
        std::optional<QString> persistentUUID;
        QString localizedName;
        /// The output's name, or the monitor's where it has no output.
        QString connector;
        /// The monitor's area of the X screen, in pixels.
        QRect nativeFrame;

        friend bool operator==(const Values&, const Values&) = default;
    };

    explicit X11Screen(Values values)
        : values_(std::move(values)) {}

    AppKitRect frame() const override { return values_.frame; }
    AppKitRect visibleFrame() const override { return values_.visibleFrame; }
    std::optional<quint32> displayID() const override { return values_.displayID; }
    std::optional<QString> persistentUUID() const override { return values_.persistentUUID; }
    QString localizedName() const override { return values_.localizedName; }

    [[nodiscard]] const Values& values() const { return values_; }

private:
    Values values_;
};

/// The monitors as RandR tells them, less what panels keep for themselves. Changes are gathered
/// until a burst of them is over, then announced once, if anything is different.
class X11Screens final : public Screens {
    Q_OBJECT

public:
    X11Screens(X11Connection& connection, X11EventSelection& selection,
               X11WindowManagerWatch& windowManager, X11ActiveWindow& activeWindow, MainLoop& loop);

    const std::vector<ScreenPtr>& all() const override { return screens_; }
    ScreenPtr main() const override;
    QtSpace qtSpace(const Screen& screen) const override;

    /// A screen's area of the X screen, in pixels; empty for one of another platform, which would
    /// be a mistake of the program.
    [[nodiscard]] static QRect nativeFrame(const Screen& screen);

    /// How the screen spaces lie on the X screen now.
    [[nodiscard]] const X11Coordinates& coordinates() const { return coordinates_; }

    /// Whether a place, in pixels of the X screen, is so near to an edge of its monitor, or of what
    /// panels leave of that, that window managers may tile a window let go there.
    [[nodiscard]] bool isNearAnEdge(QPoint place) const;

private:
    struct Monitor {
        QRect area;
        bool isPrimary = false;
        QString connector;
        std::optional<Edid> edid;
    };

    void watchRandr();
    void rootEvent(const xcb_generic_event_t& event);
    void lookAtClients();
    void workAreasChanged();
    void changeNoticed();
    void refresh();
    [[nodiscard]] std::vector<Monitor> readMonitors();
    [[nodiscard]] X11WorkAreaHints readWorkAreas(QSize screen);
    [[nodiscard]] QSize readScreenSize();

    X11Connection& connection_;
    X11EventSelection& selection_;
    X11WindowManagerWatch& windowManager_;
    X11ActiveWindow& activeWindow_;
    MainLoop& loop_;
    X11EventSelection::Interest rootInterest_;
    std::vector<X11Listener> listeners_;
    /// The windows of the client list; those that are panels are watched.
    struct Client {
        bool isPanel = false;
        X11EventSelection::Interest interest;
        X11Listener listener;
    };
    std::map<xcb_window_t, Client> clients_;
    DisplayKeys keys_;
    X11Coordinates coordinates_;
    std::vector<ScreenPtr> screens_;
    bool areClientsDirty_ = false;
    /// Fires when a burst of changes has come to rest, and when it will not.
    ScopedTimer restTimer_;
    ScopedTimer burstTimer_;
};

} // namespace tilewright
