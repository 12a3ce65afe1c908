#include "PanelWindow.h"

#include "PanelContentSize.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QWindow>

namespace tilewright {

namespace {

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    // Qt owns what a factory answers.
    auto* panel = qobject_cast<PanelWindow*>(object);
    return panel ? new QAccessibleWidget(panel, QAccessible::Dialog) : nullptr;
}

} // namespace

PanelWindow::PanelWindow(const PlatformServices& services, std::unique_ptr<PanelChrome> chrome)
    : QWidget(nullptr, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , services_(services)
    , chrome_(std::move(chrome))
    , grab_(services.mainLoop) {
    // A factory installed twice is asked once.
    QAccessible::installFactory(makeInterface);
    setObjectName(QStringLiteral("panel"));
    setWindowTitle(QStringLiteral("Tilewright"));
    setAccessibleName(QStringLiteral("Tilewright"));
    setAttribute(Qt::WA_TranslucentBackground);
    // No bar lists a popup: the program's icon would be drawn in all its sizes for nobody, each
    // time that the panel opens.
    QPixmap nothing(1, 1);
    nothing.fill(Qt::transparent);
    setWindowIcon(nothing);
    // A press outside only closes the panel, also one on the item: it must not open it again.
    setAttribute(Qt::WA_NoMouseReplay);
    connect(&services_.screens, &Screens::screensChanged, this, [this] {
        if (isVisible())
            placeAnew();
    });
}

PanelWindow::~PanelWindow() = default;

void PanelWindow::open(std::unique_ptr<QWidget> view, const AppKitRect& place) {
    place_ = place;
    rendering_ =
        services_.appearance.blendsWindows() ? PanelRendering::translucent : PanelRendering::opaque;
    view_ = view.release();
    view_->setParent(this);
    view_->setAutoFillBackground(false);
    view_->installEventFilter(this);
    view_->show();
    placeAnew();
    dropStaleFocusConnections();
    show();
    grab_.take(*windowHandle());
}

QRect PanelWindow::groundGeometry() const {
    return geometry().marginsRemoved(margins());
}

bool PanelWindow::isUnderPointer() const {
    const AppKitPoint pointer = services_.pointer.location();
    const ScreenPtr screen = services_.screens.nearest(pointer);
    return screen && services_.screens.qtSpace(*screen)
                         .toAppKit(QtRect::of(groundGeometry()))
                         .contains(pointer);
}

bool PanelWindow::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest && isVisible())
        fitAndPlace();
    return QWidget::event(event);
}

bool PanelWindow::eventFilter(QObject* object, QEvent* event) {
    // The content asks for another size, and would pass that on only some turns later.
    if (object == view_ && event->type() == QEvent::LayoutRequest && isVisible())
        fitAndPlace();
    return QWidget::eventFilter(object, event);
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        Q_EMIT escaped();
    else
        QWidget::keyPressEvent(event);
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    if (!rect().marginsRemoved(margins()).contains(event->position().toPoint()))
        Q_EMIT pressedOutside();
    else if (event->button() == Qt::RightButton)
        offerContextMenu(*event);
}

void PanelWindow::offerContextMenu(const QMouseEvent& press) {
    // Qt 6.8 tells the widgets of a popup of none; older ones do so only where none is open yet.
    const QPoint place = press.position().toPoint();
    QWidget* under = childAt(place);
    if (!under)
        return;
    QContextMenuEvent menu(QContextMenuEvent::Mouse, under->mapFrom(this, place),
                           press.globalPosition().toPoint(), press.modifiers());
    QCoreApplication::sendEvent(under, &menu);
}

void PanelWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    chrome_->paint(painter, rect(), palette(), rendering_);
}

void PanelWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layOutView();
}

void PanelWindow::hideEvent(QHideEvent* event) {
    grab_.release();
    // What hides the panel may be a button of the content.
    if (view_) {
        view_->removeEventFilter(this);
        view_->setParent(nullptr);
        view_->deleteLater();
        view_.clear();
    }
    QWidget::hideEvent(event);
    Q_EMIT hidden();
}

void PanelWindow::placeAnew() {
    growth_.reset();
    fitAndPlace();
}

void PanelWindow::fitAndPlace() {
    if (isFitting_ || !view_)
        return;
    isFitting_ = true;
    if (const ScreenPtr screen = services_.screens.nearest(place_.center())) {
        const QtSpace space = services_.screens.qtSpace(*screen);
        setScreen(space.screen());
        PanelPlacement placement;
        placement.item = space.toQt(place_);
        placement.frame = space.insideQt(screen->frame());
        placement.visibleFrame = space.insideQt(screen->visibleFrame());
        const QSize size = panelContentSize(*view_, placement.availableHeight());
        const QtRect ground = growth_.place(placement, size, panelRoomToGrow(*view_));
        setGeometry(ground.toQRect().marginsAdded(margins()));
    } else {
        resize(panelContentSize(*view_, QWIDGETSIZE_MAX).grownBy(margins()));
    }
    // A new content of the same size is no new size of the window.
    layOutView();
    isFitting_ = false;
}

void PanelWindow::layOutView() {
    if (view_)
        view_->setGeometry(rect().marginsRemoved(margins()));
}

void PanelWindow::dropStaleFocusConnections() {
    // The application connects itself to a window that gets the focus, and takes the connection
    // back when the focus leaves it, but not when the window is closed with it, as the panel always
    // is: one more would be left by each opening.
    if (windowHandle())
        disconnect(windowHandle(), &QWindow::focusObjectChanged, qApp, nullptr);
}

} // namespace tilewright
