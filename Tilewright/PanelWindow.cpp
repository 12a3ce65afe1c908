#include "PanelWindow.h"

#include "InputSoFar.h"
#include "PanelPlacement.h"

#include <Platform/Platform.h>

#include <QApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

namespace tilewright {

namespace {

/// No grab is granted while another client holds the pointer or the keyboard, as the tray's host
/// does for the click that opened the panel and a window manager until it has ended a move; and
/// nobody tells when it lets go. Mostly that is soon.
constexpr std::chrono::milliseconds shortestGrabWait{30};
constexpr std::chrono::milliseconds longestGrabWait{480};

} // namespace

PanelWindow::PanelWindow(ViewFactory makeView)
    : QWidget(nullptr, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , makeView_(std::move(makeView))
    , scrollArea_(new QScrollArea(this)) {
    setObjectName(QStringLiteral("panel"));
    setWindowTitle(QStringLiteral("Tilewright"));
    setAccessibleName(QStringLiteral("Tilewright"));
    setAttribute(Qt::WA_TranslucentBackground);
    // A press outside only closes the panel, also one on the item: it must not open it again.
    setAttribute(Qt::WA_NoMouseReplay);

    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setFocusPolicy(Qt::NoFocus);
    scrollArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_->setWidgetResizable(true);
    scrollArea_->viewport()->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    layout->addWidget(scrollArea_);

    Platform& platform = Platform::current();
    connect(&platform.workspace, &Workspace::activeWindowChanged, this, &QWidget::close);
    connect(&platform.screens, &Screens::screensChanged, this, [this] {
        if (isVisible())
            fitAndPlace();
    });
}

PanelWindow::~PanelWindow() {
    releaseInput();
}

void PanelWindow::open(const std::optional<AppKitRect>& place) {
    if (isVisible())
        return;
    if (place) {
        place_ = *place;
    } else {
        const AppKitPoint pointer = Platform::current().pointer.location();
        place_ = {pointer.x, pointer.y, 0, 0};
    }
    chrome_.setBlending(Platform::current().appearance.blendsWindows());
    layout()->setContentsMargins(chrome_.margins());
    makeContent();
    fitAndPlace();
    dropStaleFocusConnections();
    show();
    grabWait_ = shortestGrabWait;
    holdInput();
    // The press that opened the panel must not close it.
    afterInputSoFar(this, [this, opening = ++opening_] {
        if (isVisible() && opening == opening_)
            watchOutside();
    });
    Q_EMIT opened();
}

QRect PanelWindow::groundGeometry() const {
    return geometry().marginsRemoved(chrome_.margins());
}

bool PanelWindow::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest && isVisible())
        fitAndPlace();
    return QWidget::event(event);
}

bool PanelWindow::eventFilter(QObject* object, QEvent* event) {
    // The content asks for another size; the scroll area would not pass that on.
    if (object == view_ && event->type() == QEvent::LayoutRequest && isVisible())
        fitAndPlace();
    return QWidget::eventFilter(object, event);
}

void PanelWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    chrome_.paint(painter, rect(), palette());
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    if (rect().marginsRemoved(chrome_.margins()).contains(event->position().toPoint()))
        return;
    closeForPress();
}

void PanelWindow::hideEvent(QHideEvent* event) {
    releaseInput();
    // What hides the panel may be a button of the content.
    if (view_) {
        view_->removeEventFilter(this);
        view_->deleteLater();
        scrollArea_->takeWidget();
        view_.clear();
    }
    QWidget::hideEvent(event);
    if (!isClosingForPress_)
        Q_EMIT closed();
}

void PanelWindow::closeForPress() {
    if (!isVisible())
        return;
    isClosingForPress_ = true;
    close();
    isClosingForPress_ = false;
    Q_EMIT closedByPress();
    Q_EMIT closed();
}

void PanelWindow::makeContent() {
    view_ = makeView_().release();
    view_->setAutoFillBackground(false);
    view_->installEventFilter(this);
    scrollArea_->setWidget(view_);
    scrollArea_->widget()->setAutoFillBackground(false);
    view_->show();
}

void PanelWindow::fitAndPlace() {
    if (isFitting_ || !view_)
        return;
    isFitting_ = true;
    if (const ScreenPtr screen = Platform::current().screens.nearest(place_.center())) {
        const QtSpace space = Platform::current().screens.qtSpace(*screen);
        setScreen(space.screen());
        PanelPlacement placement;
        placement.item = space.toQt(place_);
        placement.frame = space.insideQt(screen->frame());
        placement.visibleFrame = space.insideQt(screen->visibleFrame());
        const QSize ground = contentSize(placement.visibleFrame.height - 2 * PanelPlacement::gap);
        setGeometry(placement.place(ground).toQRect().marginsAdded(chrome_.margins()));
    } else {
        resize(contentSize(QWIDGETSIZE_MAX).grownBy(chrome_.margins()));
    }
    isFitting_ = false;
}

QSize PanelWindow::contentSize(int availableHeight) const {
    view_->ensurePolished();
    QSize size = view_->sizeHint();
    if (view_->layout()) {
        view_->layout()->activate();
        size = view_->layout()->totalSizeHint();
    }
    size = size.expandedTo(view_->minimumSize()).boundedTo(view_->maximumSize());
    return {size.width(), std::min(size.height(), availableHeight)};
}

void PanelWindow::holdInput() {
    if (!isVisible() || holdsInput_)
        return;
    const bool keyboard = windowHandle()->setKeyboardGrabEnabled(true);
    const bool mouse = windowHandle()->setMouseGrabEnabled(true);
    holdsInput_ = keyboard && mouse;
    if (holdsInput_)
        return;
    grabTimer_ =
        ScopedTimer(Platform::current().mainLoop.scheduleOnce(grabWait_, [this] { holdInput(); }));
    grabWait_ = std::min(grabWait_ * 3 / 2, longestGrabWait);
}

void PanelWindow::releaseInput() {
    grabTimer_.reset();
    if (windowHandle()) {
        windowHandle()->setKeyboardGrabEnabled(false);
        windowHandle()->setMouseGrabEnabled(false);
    }
    holdsInput_ = false;
    for (const MonitorToken token : std::exchange(pressMonitors_, {}))
        Platform::current().eventMonitors.removeMonitor(token);
}

void PanelWindow::dropStaleFocusConnections() {
    // The application connects itself to a window that gets the focus, and takes the connection
    // back when the focus leaves it, but not when the window is closed with it, as the panel always
    // is: one more would be left by each opening.
    if (windowHandle())
        disconnect(windowHandle(), &QWindow::focusObjectChanged, qApp, nullptr);
}

void PanelWindow::watchOutside() {
    if (!pressMonitors_.empty())
        return;
    EventMonitors& monitors = Platform::current().eventMonitors;
    const EventMask presses{EventType::leftMouseDown, EventType::rightMouseDown,
                            EventType::otherMouseDown};
    const auto others =
        monitors.addGlobalMonitor(presses, [this](const Event&) { closeForPress(); });
    // Qt counts a press anywhere as its popup's, also before the grab that brings it here
    // has been granted.
    const auto own = monitors.addLocalMonitor(presses, [this](const Event&) {
        const bool isOnTop = QApplication::activePopupWidget() == this;
        if (!holdsInput_ && isOnTop && !isUnderPointer())
            closeForPress();
    });
    for (const auto& token : {others, own}) {
        if (token)
            pressMonitors_.push_back(*token);
    }
}

bool PanelWindow::isUnderPointer() const {
    const AppKitPoint pointer = Platform::current().pointer.location();
    const ScreenPtr screen = Platform::current().screens.nearest(pointer);
    return screen && Platform::current()
                         .screens.qtSpace(*screen)
                         .toAppKit(QtRect::of(groundGeometry()))
                         .contains(pointer);
}

} // namespace tilewright
