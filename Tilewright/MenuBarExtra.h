#pragma once

#include "MenuBarLabel.h"

#include <Platform/PanelSurface.h>

#include <memory>

namespace tilewright {

/// The menu-bar item with its panel: a click on the item opens the panel beside it, a second click
/// closes it; starting the program again opens it by the pointer. Main thread only.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    /// `makeView` makes the panel's content, each time it opens.
    explicit MenuBarExtra(PanelSurface::ViewFactory makeView);
    ~MenuBarExtra() override;

    /// Lives as long as this.
    [[nodiscard]] PanelSurface& panel() { return *panel_; }

private:
    MenuBarLabel label_;
    std::unique_ptr<PanelSurface> panel_;
};

} // namespace tilewright
