#include "MacPanelSurface.h"

#include "AppKitHostWindow.h"
#include "MacFocusReturn.h"
#include "MacStatusItem.h"

#include <Popup/PanelContentSize.h>
#include <Popup/PanelPlacement.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
#include <utility>

namespace tilewright {

namespace {

/// A click's release follows its press well within this time.
constexpr std::chrono::milliseconds clickTime{1500};

} // namespace

/// The content on its ground, in a window of AppKit's, beside its item and wholly on its display.
class MacPanelSurface::Window final : public QWidget {
public:
    using Dismiss = std::function<void(PanelDismissal)>;

    Window(const PlatformServices& services, std::unique_ptr<QWidget> view, PanelChrome& chrome,
           const AppKitRect& place, Dismiss dismiss)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
        , services_(services)
        , view_(view.release())
        , chrome_(chrome)
        , place_(place)
        , dismiss_(std::move(dismiss))
        , host_(appkit::makeWindow({.styleMask = styleMask,
                                    .level = level,
                                    .collectionBehavior = collectionBehavior,
                                    .isKeyPanel = true})) {
        setObjectName(QStringLiteral("panel"));
        setWindowTitle(QStringLiteral("Tilewright"));
        setAccessibleName(QStringLiteral("Tilewright"));
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_QuitOnClose, false);
        setAttribute(Qt::WA_NativeWindow);
        host_->setContent(winId());
        view_->setParent(this);
        view_->setAutoFillBackground(false);
        view_->installEventFilter(this);
        connect(&services_.screens, &Screens::screensChanged, this, [this] {
            growth_.reset();
            fitAndPlace();
        });
    }
    ~Window() override { withdraw(); }

    void present() {
        fitAndPlace();
        view_->show();
        show();
        host_->makeKeyAndOrderFront();
    }
    /// Off the screen, for good.
    void withdraw() {
        if (!host_)
            return;
        host_->orderOut();
        hide();
        host_->removeContent();
        host_.reset();
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest)
            fitAndPlace();
        const bool isHandled = QWidget::event(event);
        if (event->type() == QEvent::WindowDeactivate && !QApplication::activePopupWidget())
            dismiss_(PanelDismissal::anotherWindow);
        return isHandled;
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        // The content asks for another size, and would pass that on only some turns later.
        if (object == view_ && event->type() == QEvent::LayoutRequest)
            fitAndPlace();
        return QWidget::eventFilter(object, event);
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Cancel))
            dismiss_(PanelDismissal::escape);
        else
            QWidget::keyPressEvent(event);
    }
    void mousePressEvent(QMouseEvent* event) override {
        if (!ground().contains(event->position().toPoint()))
            dismiss_(PanelDismissal::pressOutside);
    }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        chrome_.paint(painter, rect(), palette(), PanelRendering::translucent);
    }
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        view_->setGeometry(ground());
    }
    void closeEvent(QCloseEvent* event) override {
        QWidget::closeEvent(event);
        dismiss_(PanelDismissal::desktop);
    }

private:
    [[nodiscard]] QMargins margins() const { return chrome_.margins(PanelRendering::translucent); }
    [[nodiscard]] QRect ground() const { return rect().marginsRemoved(margins()); }

    void fitAndPlace() {
        // After the end of its showing it may outlive the services.
        if (isFitting_ || !host_)
            return;
        const ScreenPtr screen = services_.screens.nearest(place_.center());
        if (!screen)
            return;
        isFitting_ = true;
        const QtSpace space = services_.screens.qtSpace(*screen);
        PanelPlacement placement;
        placement.item = space.toQt(place_);
        placement.frame = space.insideQt(screen->frame());
        placement.visibleFrame = space.insideQt(screen->visibleFrame());
        const QSize wanted = panelContentSize(*view_, placement.availableHeight());
        const QRect surface = growth_.place(placement, wanted, panelRoomToGrow(*view_))
                                  .toQRect()
                                  .marginsAdded(margins());
        // The window before the view: it passes each change of its own size on to the view.
        host_->setFrame(space.toAppKit(QtRect::of(surface)));
        resize(surface.size());
        view_->setGeometry(ground());
        isFitting_ = false;
    }

    const PlatformServices& services_;
    QWidget* const view_;
    PanelChrome& chrome_;
    const AppKitRect place_;
    const Dismiss dismiss_;
    std::unique_ptr<appkit::HostWindow> host_;
    PanelGrowth growth_;
    bool isFitting_ = false;
};

MacPanelSurface::MacPanelSurface(const PlatformServices& services, MacStatusItem& item,
                                 MacFocusReturn& focusReturn, ViewFactory makeView,
                                 std::unique_ptr<PanelChrome> chrome)
    : services_(services)
    , item_(item)
    , focusReturn_(focusReturn)
    , makeView_(std::move(makeView))
    , chrome_(std::move(chrome)) {
    connect(&services_.workspace, &Workspace::activeWindowChanged, this,
            [this] { dismiss(PanelDismissal::anotherWindow); });
}

MacPanelSurface::~MacPanelSurface() {
    unwatch();
    // What its end makes it tell is no dismissal any more.
    const std::unique_ptr<Window> window = std::move(window_);
}

void MacPanelSurface::open(const Anchor& anchor) {
    if (window_)
        return;
    unwatch();
    const AppKitPoint pointer = services_.pointer.location();
    const AppKitRect place = anchor.value_or(AppKitRect{pointer.x, pointer.y, 0, 0});
    window_ = std::make_unique<Window>(services_, makeView_(), *chrome_, place,
                                       [this](PanelDismissal why) { dismiss(why); });
    window_->present();
    opening_.emplace();
    // A press that is on its way while the panel opens must not dismiss it. Monitors are told of an
    // event before anybody acts on it: the end of the turn is late enough.
    services_.mainLoop.post(opening_->guard([this] { watchPresses(); }));
    highlightItem();
    Q_EMIT opened();
}

void MacPanelSurface::close() {
    dismiss(PanelDismissal::request);
}

void MacPanelSurface::toggle(const Anchor& item) {
    if (window_) {
        close();
        return;
    }
    const bool isDismissedByThisClick = pressTimer_.isActive();
    unwatch();
    if (isDismissedByThisClick)
        return;
    itemPlace_ = item.value_or(AppKitRect());
    open(item);
}

void MacPanelSurface::dismiss(PanelDismissal why) {
    if (!window_)
        return;
    opening_.reset();
    unwatch();
    // Perhaps called by the window itself.
    Window* window = window_.release();
    window->withdraw();
    window->deleteLater();
    const bool isByPress =
        why == PanelDismissal::pressOutside || why == PanelDismissal::anotherWindow;
    if (isByPress && itemPlace_.contains(services_.pointer.location()))
        awaitClickOfPress();
    highlightItem();
    focusReturn_.windowClosed();
    Q_EMIT dismissed(why);
}

void MacPanelSurface::watchPresses() {
    // Those in this program's own windows reach the window, or take the keyboard from it, or are
    // clicks on the item.
    const EventMask presses{EventType::leftMouseDown, EventType::rightMouseDown,
                            EventType::otherMouseDown};
    if (const auto token = services_.eventMonitors.addGlobalMonitor(
            presses, [this](const Event&) { dismiss(PanelDismissal::pressOutside); }))
        monitors_.push_back(*token);
}

void MacPanelSurface::awaitClickOfPress() {
    pressTimer_ = ScopedTimer(services_.mainLoop.scheduleOnce(clickTime, [this] { unwatch(); }));
    const auto forget = [this](const Event&) { unwatch(); };
    // The next press begins another click.
    for (const auto& token :
         {services_.eventMonitors.addGlobalMonitor({EventType::leftMouseDown}, forget),
          services_.eventMonitors.addLocalMonitor({EventType::leftMouseDown}, forget)}) {
        if (token)
            monitors_.push_back(*token);
    }
}

void MacPanelSurface::unwatch() {
    pressTimer_.reset();
    for (const MonitorToken token : std::exchange(monitors_, {}))
        services_.eventMonitors.removeMonitor(token);
}

void MacPanelSurface::highlightItem() {
    // Its button takes a highlight away at the end of the click that it is being told of.
    services_.mainLoop.post(life_.guard([this] { item_.setHighlighted(isOpen()); }));
}

} // namespace tilewright
