#include "ToplevelPanelWindow.h"

#include <Popup/PanelContentSize.h>

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace tilewright {

ToplevelPanelWindow::ToplevelPanelWindow(std::unique_ptr<QWidget> view, PanelChrome& chrome,
                                         Dismiss dismiss)
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

ToplevelPanelWindow::~ToplevelPanelWindow() = default;

QString ToplevelPanelWindow::title() {
    return QStringLiteral("Tilewright");
}

void ToplevelPanelWindow::fit(int mostHeight, RoomAround roomAround) {
    mostHeight_ = mostHeight;
    roomAround_ = std::move(roomAround);
    refit();
}

void ToplevelPanelWindow::refit() {
    const QSize ground = panelContentSize(*view_, mostHeight_);
    margins_ = chrome_.margins(PanelRendering::translucent);
    if (roomAround_) {
        const QMargins room = roomAround_(ground, panelRoomToGrow(*view_));
        margins_ = {std::min(margins_.left(), room.left()), std::min(margins_.top(), room.top()),
                    std::min(margins_.right(), room.right()),
                    std::min(margins_.bottom(), room.bottom())};
    }
    setFixedSize(ground.grownBy(margins_));
    view_->setGeometry(QRect({margins_.left(), margins_.top()}, ground));
    letPressesThroughShadow();
    Q_EMIT fitted();
}

void ToplevelPanelWindow::letPressesThroughShadow() {
    // Not the widget's own mask, which would cut the shadow off. Off Wayland a window's mask does
    // so, too.
    if (windowHandle() && QGuiApplication::platformName() == QStringLiteral("wayland"))
        windowHandle()->setMask(rect().marginsRemoved(margins()));
}

void ToplevelPanelWindow::retire() {
    dismiss_ = nullptr;
    roomAround_ = nullptr;
    hide();
    deleteLater();
}

void ToplevelPanelWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    letPressesThroughShadow();
}

void ToplevelPanelWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QMargins cut = chrome_.margins(PanelRendering::translucent) - margins_;
    const QRect whole(QPoint(), size().grownBy(cut));
    painter.translate(-cut.left(), -cut.top());
    chrome_.paint(painter, whole, palette(), PanelRendering::translucent);
}

void ToplevelPanelWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        tell(PanelDismissal::escape);
    else
        QWidget::keyPressEvent(event);
}

bool ToplevelPanelWindow::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    // Content with a layout tells itself of another size, content without one tells its window.
    if (event->type() == QEvent::LayoutRequest && isVisible())
        refit();
    // What pops up from the panel belongs to it.
    if (event->type() == QEvent::WindowDeactivate && !QApplication::activePopupWidget())
        tell(PanelDismissal::anotherWindow);
    return isHandled;
}

bool ToplevelPanelWindow::eventFilter(QObject* object, QEvent* event) {
    if (object == view_ && event->type() == QEvent::LayoutRequest && isVisible())
        refit();
    return QWidget::eventFilter(object, event);
}

void ToplevelPanelWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    tell(PanelDismissal::desktop);
}

void ToplevelPanelWindow::tell(PanelDismissal why) {
    // It may be the end of this.
    if (const Dismiss dismiss = dismiss_)
        dismiss(why);
}

} // namespace tilewright
