#include "CompanionPanelSurface.h"

#include <algorithm>
#include <cmath>
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
        fit();
        if (state_.isConnected())
            outbox_.setPanel(description());
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
    const ScreenPtr screen = screens_.nearest(anchor_.center());
    // Where the desktop counts pixels, Qt's points are more of them.
    const double units = screen ? CompanionScreens::unitsPerPoint(*screen) : 1;
    panel.margins *= units;
    if (screen)
        panel.area = screens_.coordinates().toCompanion(screen->visibleFrame());
    panel.anchor = screens_.coordinates().toCompanion(anchor_);
    return panel;
}

void CompanionPanelSurface::introduce() {
    if (!state_.isConnected())
        return;
    // It has forgotten the panel that it placed, if it did.
    dismiss(PanelDismissal::desktop);
    outbox_.setPanel(description());
}

void CompanionPanelSurface::open(const Anchor& anchor) {
    if (window_)
        return;
    const AppKitPoint pointer = pointer_.location();
    anchor_ = anchor.value_or(AppKitRect{pointer.x, pointer.y, 0, 0});
    window_ = std::make_unique<ToplevelPanelWindow>(makeView_(), *chrome_,
                                                    [this](PanelDismissal why) { dismiss(why); });
    hasHadFocus_ = false;
    if (state_.isConnected()) {
        fit();
        outbox_.setPanel(description());
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
    const int mostHeight = screen ? static_cast<int>(screen->visibleFrame().height /
                                                     CompanionScreens::unitsPerPoint(*screen)) -
                                        2 * gap
                                  : QWIDGETSIZE_MAX;
    window_->fit(std::max(mostHeight, 1));
    if (!screen || !state_.isConnected())
        return;
    const int groundHeight = window_->rect().marginsRemoved(window_->margins()).height();
    window_->fit(std::max(mostHeight, 1), roomAbove(*screen, groundHeight));
}

int CompanionPanelSurface::roomAbove(const Screen& screen, int groundHeight) const {
    // A compositor may let no window's top under a bar: with all of its shadow the panel would be
    // further away from its item. The top of its ground, as the companion will place it.
    const double unit = CompanionScreens::unitsPerPoint(screen);
    const AppKitRect area = screen.visibleFrame();
    const double space = gap * unit;
    const double height = groundHeight * unit;
    const double below = anchor_.y - space;
    const double above = anchor_.maxY() + space + height;
    const double wanted = anchor_.center().y >= screen.frame().center().y ? below : above;
    const double top = std::min(std::max(wanted, area.y + space + height), area.maxY() - space);
    return static_cast<int>(std::floor((area.maxY() - top) / unit));
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
    if (state_.isConnected())
        outbox_.setPanel(description());
    Q_EMIT dismissed(why);
}

} // namespace tilewright
