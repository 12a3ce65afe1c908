#pragma once

#include <FreeDesktop/ToplevelPanelWindow.h>
#include <Platform/PanelSurface.h>
#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// The panel where nobody but the compositor places windows: an ordinary frameless window, which
/// goes on Escape and once it has lost the focus. Main thread only.
class WaylandPanelSurface final : public PanelSurface {
    Q_OBJECT

public:
    WaylandPanelSurface(ViewFactory makeView, std::unique_ptr<PanelChrome> chrome);
    ~WaylandPanelSurface() override;

    void open(const Anchor& anchor) override;
    void close() override;
    void toggle(const Anchor& item) override;
    [[nodiscard]] bool isOpen() const override { return window_ != nullptr; }

    /// The window, while it is open; else null.
    [[nodiscard]] QWidget* window() const;

private:
    void dismiss(PanelDismissal why);

    ViewFactory makeView_;
    std::unique_ptr<PanelChrome> chrome_;
    std::unique_ptr<ToplevelPanelWindow> window_;
};

} // namespace tilewright
