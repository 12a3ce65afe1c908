#pragma once

#include "MenuBarLabel.h"
#include "PanelWindow.h"

namespace tilewright {

/// The menu-bar item with its panel: a click on the item opens the panel beside it, a second click
/// closes it. Main thread only.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    /// `makeView` makes the panel's content, each time it opens.
    explicit MenuBarExtra(PanelWindow::ViewFactory makeView);
    ~MenuBarExtra() override;

    /// Opens the panel by the pointer, as when the program is started again.
    void openByPointer();
    /// Closes the panel; nothing happens while it is closed.
    void closePanel();

    /// The one window that serves every opening; lives as long as this.
    [[nodiscard]] PanelWindow& panel() { return panel_; }

private:
    /// What is known of the latest press, as far as it concerns the open panel. A host may pass a
    /// press that closes the panel on as a click on the item, and that click must not open it
    /// again.
    enum class Press {
        none,
        /// It closed the panel on the item, but the monitors have not told of it yet.
        awaitedOnItem,
        downOnItem,
        releasedOnItem,
        elsewhere,
    };

    void clicked(const std::optional<AppKitRect>& place);
    void open(const std::optional<AppKitRect>& place);
    void watchPresses();
    void pressed();
    void released();
    void pressClosedPanel();
    void forgetPress();
    /// Whether a click that the host passes on now may be the press that closed the panel.
    [[nodiscard]] bool isPressOnItem() const;
    [[nodiscard]] bool isPointerOnItem() const;

    MenuBarLabel label_;
    PanelWindow panel_;
    /// Where the item was clicked last: its place, empty where its host tells none, and the pointer
    /// then.
    AppKitRect itemPlace_;
    AppKitPoint itemPointer_;
    Press press_ = Press::none;
    /// How often the panel has been opened.
    int opening_ = 0;
    ScopedTimer pressTimer_;
    std::vector<MonitorToken> monitors_;
};

} // namespace tilewright
