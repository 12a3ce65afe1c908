#pragma once

#include "MenuBarLabel.h"
#include "PanelWindow.h"

#include <QPoint>

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
    void closePanel();

    [[nodiscard]] PanelWindow& panel() { return panel_; }

private:
    void clicked(const QRect& place);
    void open(const QRect& place);
    void pressClosedPanel();
    void watchButton();
    void forgetPress();
    [[nodiscard]] static QPoint pointer();

    MenuBarLabel label_;
    PanelWindow panel_;
    /// Where the item was clicked last: its place, and the pointer then, in native pixels.
    QRect itemPlace_;
    QPoint itemPointer_;
    /// The press that closed the panel was on the item, whose host will tell of it as of a click.
    bool isPressOnItem_ = false;
    /// It has been released since.
    bool isReleased_ = false;
    bool isButtonDown_ = false;
    ScopedTimer pressTimer_;
    std::vector<MonitorToken> monitors_;
};

} // namespace tilewright
