#include "ToplevelPanelWindow.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QLayout>
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

QMargins ToplevelPanelWindow::margins() const {
    QMargins margins = chrome_.margins(PanelRendering::translucent);
    margins.setTop(std::min(margins.top(), roomAbove_));
    return margins;
}

void ToplevelPanelWindow::fit(int mostHeight, int roomAbove) {
    mostHeight_ = mostHeight;
    roomAbove_ = roomAbove;
    const QMargins margins = this->margins();
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
    letPressesThroughShadow();
}

void ToplevelPanelWindow::letPressesThroughShadow() {
    // Not the widget's own mask, which would cut the shadow off. Off Wayland a window's mask does
    // so, too.
    if (windowHandle() && QGuiApplication::platformName() == QStringLiteral("wayland"))
        windowHandle()->setMask(rect().marginsRemoved(margins()));
}

void ToplevelPanelWindow::retire() {
    dismiss_ = nullptr;
    hide();
    deleteLater();
}

void ToplevelPanelWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    letPressesThroughShadow();
}

void ToplevelPanelWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const int cut = chrome_.margins(PanelRendering::translucent).top() - margins().top();
    painter.translate(0, -cut);
    chrome_.paint(painter, rect().adjusted(0, 0, 0, cut), palette(), PanelRendering::translucent);
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
        fit(mostHeight_, roomAbove_);
    // What pops up from the panel belongs to it.
    if (event->type() == QEvent::WindowDeactivate && !QApplication::activePopupWidget())
        tell(PanelDismissal::anotherWindow);
    return isHandled;
}

bool ToplevelPanelWindow::eventFilter(QObject* object, QEvent* event) {
    if (object == view_ && event->type() == QEvent::LayoutRequest && isVisible())
        fit(mostHeight_, roomAbove_);
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
