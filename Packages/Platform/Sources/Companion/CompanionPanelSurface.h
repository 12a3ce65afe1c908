#pragma once

#include "CompanionOutbox.h"
#include "CompanionScreens.h"

#include <FreeDesktop/ToplevelPanelWindow.h>
#include <Platform/MainLoop.h>
#include <Platform/PanelSurface.h>
#include <Platform/Pointer.h>
#include <Popup/PanelPlacement.h>

#include <memory>
#include <optional>

namespace tilewright {

/// The panel as an ordinary frameless window that a companion places, raises and focuses before its
/// first frame: it comes once the companion awaits it. It goes on Escape, on a press outside, in
/// the overview, once another window has the focus, and with the companion. Where none is there it
/// is a window like others. Main thread only.
class CompanionPanelSurface final : public PanelSurface {
    Q_OBJECT

public:
    /// How long a click on the item takes at most: where its press has cost the panel the focus,
    /// and so dismissed it, the click that follows does not open it again.
    static constexpr MainLoop::Interval clickPatience{500};

    /// How long a companion that does not say that it awaits the window is waited for.
    static constexpr MainLoop::Interval companionPatience{2000};

    /// All but the factory and the chrome have to outlive this.
    CompanionPanelSurface(CompanionState& state, const CompanionScreens& screens,
                          const Pointer& pointer, CompanionOutbox& outbox, MainLoop& loop,
                          ViewFactory makeView, std::unique_ptr<PanelChrome> chrome);
    ~CompanionPanelSurface() override;

    void open(const Anchor& anchor) override;
    void close() override;
    void toggle(const Anchor& item) override;
    [[nodiscard]] bool isOpen() const override { return window_ != nullptr; }

    /// The window, while it is open; else null.
    [[nodiscard]] QWidget* window() const;

private:
    void present();
    void dismiss(PanelDismissal why);
    void focusChanged();
    void fit();
    /// Places a ground of that size, and answers what room there is around it.
    QMargins place(QSize ground, int roomToGrow);
    void introduce();
    /// Tells the companion of the panel, unless it knows all of this.
    void describe();
    [[nodiscard]] CompanionPanel description() const;

    CompanionState& state_;
    const CompanionScreens& screens_;
    const Pointer& pointer_;
    CompanionOutbox& outbox_;
    MainLoop& loop_;
    ViewFactory makeView_;
    std::unique_ptr<PanelChrome> chrome_;
    std::unique_ptr<ToplevelPanelWindow> window_;
    AppKitRect anchor_;
    PanelPlacementIn<CompanionRect> placement_;
    PanelGrowth growth_;
    CompanionRect ground_;
    /// What the companion has been told last.
    std::optional<CompanionPanel> told_;
    /// Runs while the companion is waited for.
    ScopedTimer presenting_;
    /// Whether the companion has told, since the opening, that the panel has the focus.
    bool hasHadFocus_ = false;
    /// When it went for want of the focus, as the loop counts, and no click has come since.
    std::optional<MainLoop::Interval> lostFocusAt_;
};

} // namespace tilewright
