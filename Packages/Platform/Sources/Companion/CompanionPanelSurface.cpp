#include "CompanionPanelSurface.h"

#include <utility>

namespace tilewright {

CompanionPanelSurface::CompanionPanelSurface(CompanionState& state, const CompanionScreens& screens,
                                             const Pointer& pointer, CompanionOutbox& outbox,
                                             MainLoop& loop, ViewFactory makeView,
                                             std::unique_ptr<PanelChrome> chrome)
    : state_(state)
    , screens_(screens)
    , pointer_(pointer)
    , outbox_(outbox)
    , loop_(loop)
    , makeView_(std::move(makeView))
    , chrome_(std::move(chrome)) {
    connect(&state_, &CompanionState::greeted, this, &CompanionPanelSurface::introduce);
    connect(&state_, &CompanionState::connectedChanged, this, [this] {
        if (!state_.isConnected())
            dismiss(PanelDismissal::desktop);
    });
    connect(&state_, &CompanionState::panelAwaited, this, &CompanionPanelSurface::present);
    connect(&state_, &CompanionState::pressedOutside, this, [this](bool isOverview) {
        dismiss(isOverview ? PanelDismissal::anotherWindow : PanelDismissal::pressOutside);
    });
    connect(&state_, &CompanionState::focusChanged, this, &CompanionPanelSurface::focusChanged);
    connect(&screens_, &Screens::screensChanged, this, [this] {
        if (!window_)
            return;
        // The desktop may have moved it to where it does not belong.
        told_.reset();
        fit();
    });
    introduce();
}

CompanionPanelSurface::~CompanionPanelSurface() = default;

QWidget* CompanionPanelSurface::window() const {
    return window_.get();
}

CompanionPanel CompanionPanelSurface::description() const {
    CompanionPanel panel;
    panel.isShown = isOpen();
    panel.title = ToplevelPanelWindow::title();
    panel.margins = window_ ? window_->margins() : chrome_->margins(PanelRendering::translucent);
    panel.margins *= placement_.unit;
    panel.corner = {ground_.x - panel.margins.left(), ground_.y - panel.margins.top()};
    panel.area = placement_.visibleFrame;
    panel.anchor = placement_.item;
    return panel;
}

void CompanionPanelSurface::introduce() {
    if (!state_.isConnected())
        return;
    // It has forgotten the panel that it placed, if it did.
    dismiss(PanelDismissal::desktop);
    told_.reset();
    describe();
}

void CompanionPanelSurface::describe() {
    CompanionPanel panel = description();
    if (!state_.isConnected() || panel == told_)
        return;
    told_ = panel;
    outbox_.setPanel(panel);
}

void CompanionPanelSurface::open(const Anchor& anchor) {
    if (window_)
        return;
    const AppKitPoint pointer = pointer_.location();
    anchor_ = anchor.value_or(AppKitRect{pointer.x, pointer.y, 0, 0});
    window_ = std::make_unique<ToplevelPanelWindow>(makeView_(), *chrome_,
                                                    [this](PanelDismissal why) { dismiss(why); });
    connect(window_.get(), &ToplevelPanelWindow::fitted, this, &CompanionPanelSurface::describe);
    hasHadFocus_ = false;
    if (state_.isConnected()) {
        fit();
        presenting_ = ScopedTimer(loop_.scheduleOnce(companionPatience, [this] { present(); }));
    } else {
        present();
    }
    Q_EMIT opened();
}

void CompanionPanelSurface::present() {
    presenting_.reset();
    if (!window_ || window_->isVisible())
        return;
    fit();
    window_->show();
    window_->activateWindow();
}

void CompanionPanelSurface::fit() {
    const ScreenPtr screen = screens_.nearest(anchor_.center());
    if (!screen) {
        window_->fit(QWIDGETSIZE_MAX);
        return;
    }
    const CompanionCoordinates& coordinates = screens_.coordinates();
    growth_.reset();
    placement_.item = coordinates.toCompanion(anchor_);
    placement_.frame = coordinates.toCompanion(screen->frame());
    placement_.visibleFrame = coordinates.toCompanion(screen->visibleFrame());
    // Where the desktop counts pixels, Qt's points are more of them.
    placement_.unit = CompanionScreens::unitsPerPoint(*screen);
    if (state_.isConnected())
        window_->fit(placement_.availableHeight(),
                     [this](QSize ground, int roomToGrow) { return place(ground, roomToGrow); });
    else
        window_->fit(placement_.availableHeight());
}

QMargins CompanionPanelSurface::place(QSize ground, int roomToGrow) {
    ground_ = CompanionCoordinates::withRoundEdges(growth_.place(placement_, ground, roomToGrow));
    return placement_.roomAround(ground_);
}

void CompanionPanelSurface::close() {
    dismiss(PanelDismissal::request);
}

void CompanionPanelSurface::toggle(const Anchor& item) {
    const auto lostFocusAt = std::exchange(lostFocusAt_, std::nullopt);
    if (window_)
        close();
    // A press on the item is none outside; yet at times the shell has the focus by it.
    else if (!lostFocusAt || loop_.now() - *lostFocusAt > clickPatience)
        open(item);
}

void CompanionPanelSurface::focusChanged() {
    if (!window_)
        return;
    // Before that, what is told may be of the time before the opening.
    if (state_.isFocusOurs())
        hasHadFocus_ = true;
    else if (hasHadFocus_)
        dismiss(PanelDismissal::anotherWindow);
}

void CompanionPanelSurface::dismiss(PanelDismissal why) {
    if (!window_)
        return;
    presenting_.reset();
    // Perhaps called by the window itself, or by a button in it.
    window_.release()->retire();
    if (why == PanelDismissal::anotherWindow)
        lostFocusAt_ = loop_.now();
    describe();
    Q_EMIT dismissed(why);
}

} // namespace tilewright
