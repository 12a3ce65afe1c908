#pragma once

#include <Platform/Lifetime.h>
#include <Platform/Platform.h>

#include <memory>
#include <vector>

namespace tilewright {

class MacFocusReturn;
class MacStatusItem;

/// The panel in a window of AppKit's that has the keyboard without making this program the active
/// one: the application that the user works in stays that, and has the keyboard back when the panel
/// goes. The item is highlighted while it is open. Main thread only.
class MacPanelSurface final : public PanelSurface {
    Q_OBJECT

public:
    /// The level of what hangs from the menu bar: above the Dock and the bar itself.
    static constexpr qint64 level = 25;
    /// Never makes this program the active one.
    static constexpr quint64 styleMask = 0x80;
    /// Joins all spaces, is in no cycle of windows, may lie over full-screen applications.
    static constexpr quint64 collectionBehavior = 0x141;

    /// Everything that it is made with has to outlive it.
    MacPanelSurface(const PlatformServices& services, MacStatusItem& item,
                    MacFocusReturn& focusReturn, ViewFactory makeView,
                    std::unique_ptr<PanelChrome> chrome);
    ~MacPanelSurface() override;

    void open(const Anchor& anchor) override;
    void close() override;
    void toggle(const Anchor& item) override;
    [[nodiscard]] bool isOpen() const override { return window_ != nullptr; }

private:
    class Window;

    void dismiss(PanelDismissal why);
    void watchPresses();
    void awaitClickOfPress();
    void unwatch();
    void highlightItem();

    const PlatformServices services_;
    MacStatusItem& item_;
    MacFocusReturn& focusReturn_;
    ViewFactory makeView_;
    std::unique_ptr<PanelChrome> chrome_;
    std::unique_ptr<Window> window_;
    /// Where the item was clicked last; empty where that is not known.
    AppKitRect itemPlace_;
    std::vector<MonitorToken> monitors_;
    /// Runs while a click that the item tells of may be the one whose press dismissed the panel.
    ScopedTimer pressTimer_;
    /// From an opening to its end.
    std::optional<Lifetime> opening_;
    Lifetime life_;
};

} // namespace tilewright
