#pragma once

#include "MenuBarLabel.h"

#include <Platform/PanelSurface.h>

#include <QPointer>
#include <QWidget>
#include <memory>

namespace tilewright {

/// The menu-bar item with its panel: a click on the item opens the panel beside it, a second click
/// closes it; starting the program again opens it by the pointer. Opened without the pointer, its
/// first control has the focus. Main thread only.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    /// `makeView` makes the panel's content, each time it opens.
    explicit MenuBarExtra(PanelSurface::ViewFactory makeView);
    ~MenuBarExtra() override;

    /// Lives as long as this.
    [[nodiscard]] PanelSurface& panel() { return *panel_; }

private:
    /// What the user opens the panel with.
    enum class Means { pointer, keyboard };

    [[nodiscard]] std::unique_ptr<QWidget> keep(std::unique_ptr<QWidget> view);

    MenuBarLabel label_;
    /// The panel's content while it is open.
    QPointer<QWidget> view_;
    Means means_ = Means::pointer;
    std::unique_ptr<PanelSurface> panel_;
};

} // namespace tilewright
