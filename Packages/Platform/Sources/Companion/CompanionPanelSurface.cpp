#include "CompanionPanelSurface.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QLayout>
#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <functional>
#include <utility>

namespace tilewright {

class CompanionPanelSurface::Window final : public QWidget {
public:
    using Dismiss = std::function<void(PanelDismissal)>;

    Window(std::unique_ptr<QWidget> view, PanelChrome& chrome, Dismiss dismiss)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
        , chrome_(chrome)
        , dismiss_(std::move(dismiss))
        , view_(view.release()) {
        setObjectName(QStringLiteral("panel"));
        setWindowTitle(title());
        setAccessibleName(title());
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_QuitOnClose, false);
        view_->setParent(this);
        view_->setAutoFillBackground(false);
        view_->installEventFilter(this);
        view_->show();
    }

    /// Nobody is told of it any longer.
    void retire() {
        dismiss_ = nullptr;
        hide();
        deleteLater();
    }
    /// Makes the window as large as its content wants to be, but for what is higher than that, in
    /// Qt's points.
    void fit(int mostHeight) {
        mostHeight_ = mostHeight;
        const QMargins margins = chrome_.margins(PanelRendering::translucent);
        view_->ensurePolished();
        QSize wanted = view_->sizeHint();
        if (view_->layout()) {
            view_->layout()->activate();
            wanted = view_->layout()->totalSizeHint();
        }
        wanted = wanted.expandedTo(view_->minimumSize()).boundedTo(view_->maximumSize());
        wanted.setHeight(std::min(wanted.height(), mostHeight_));
        setFixedSize(wanted.grownBy(margins));
        view_->setGeometry(QRect({margins.left(), margins.top()}, wanted));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        chrome_.paint(painter, rect(), palette(), PanelRendering::translucent);
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Cancel))
            tell(PanelDismissal::escape);
        else
            QWidget::keyPressEvent(event);
    }
    bool event(QEvent* event) override {
        const bool isHandled = QWidget::event(event);
        // What pops up from the panel belongs to it.
        if (event->type() == QEvent::WindowDeactivate && !QApplication::activePopupWidget())
            tell(PanelDismissal::anotherWindow);
        return isHandled;
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        // The content asks for another size.
        if (object == view_ && event->type() == QEvent::LayoutRequest && isVisible())
            fit(mostHeight_);
        return QWidget::eventFilter(object, event);
    }
    void closeEvent(QCloseEvent* event) override {
        QWidget::closeEvent(event);
        tell(PanelDismissal::desktop);
    }

private:
    void tell(PanelDismissal why) {
        // It may be the end of this.
        if (const Dismiss dismiss = dismiss_)
            dismiss(why);
    }

    PanelChrome& chrome_;
    Dismiss dismiss_;
    QWidget* const view_;
    int mostHeight_ = QWIDGETSIZE_MAX;
};

QString CompanionPanelSurface::title() {
    return QStringLiteral("Tilewright");
}

CompanionPanelSurface::CompanionPanelSurface(CompanionState& state, const CompanionScreens& screens,
                                             const Pointer& pointer, CompanionOutbox& outbox,
                                             const MainLoop& loop, ViewFactory makeView,
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
    panel.title = title();
    panel.margins = chrome_->margins(PanelRendering::translucent);
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
    window_ = std::make_unique<Window>(makeView_(), *chrome_,
                                       [this](PanelDismissal why) { dismiss(why); });
    hasHadFocus_ = false;
    fit();
    if (state_.isConnected())
        outbox_.setPanel(description());
    window_->show();
    window_->activateWindow();
    Q_EMIT opened();
}

void CompanionPanelSurface::fit() {
    const ScreenPtr screen = screens_.nearest(anchor_.center());
    const int mostHeight = screen ? static_cast<int>(screen->visibleFrame().height /
                                                     CompanionScreens::unitsPerPoint(*screen)) -
                                        2 * gap
                                  : QWIDGETSIZE_MAX;
    window_->fit(std::max(mostHeight, 1));
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
    // Perhaps called by the window itself, or by a button in it.
    window_.release()->retire();
    if (why == PanelDismissal::anotherWindow)
        lostFocusAt_ = loop_.now();
    if (state_.isConnected())
        outbox_.setPanel(description());
    Q_EMIT dismissed(why);
}

} // namespace tilewright
