#include "SlimScrollArea.h"

#include "FocusVisibility.h"
#include "SlimScrollBar.h"

#include <QApplication>
#include <QEvent>

namespace tilewright {

namespace {

/// How much of what lies around the focus is brought into view with it.
constexpr int surroundings = 12;

} // namespace

SlimScrollArea::SlimScrollArea(QWidget* content, QWidget* parent)
    : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBar(new SlimScrollBar);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* focused) { followFocus(focused); });
}

SlimScrollArea::~SlimScrollArea() {
    // What is inside loses the focus when it is destroyed, and by then this is no such area any
    // more.
    disconnect(qApp, nullptr, this, nullptr);
}

QSize SlimScrollArea::sizeHint() const {
    return widget()->sizeHint() + QSize(SlimScrollBar::thickness, 0);
}

QSize SlimScrollArea::minimumSizeHint() const {
    return {widget()->minimumSizeHint().width() + SlimScrollBar::thickness, 0};
}

bool SlimScrollArea::eventFilter(QObject* object, QEvent* event) {
    // The content asks for another size; nobody else would pass that on.
    if (object == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(object, event);
}

void SlimScrollArea::followFocus(QWidget* focused) {
    // Nothing may move away from under the pointer that has just pressed it.
    if (focused && widget()->isAncestorOf(focused) && look::showsFocus(*focused))
        ensureWidgetVisible(focused, 0, surroundings);
}

} // namespace tilewright
