#include "HitArea.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QMouseEvent>
#include <algorithm>

namespace tilewright {

HitArea::HitArea(QAbstractButton* button, QWidget* holder)
    : QWidget(holder)
    , button_(button) {
    for (QWidget* each = button; each && each != holder; each = each->parentWidget())
        each->installEventFilter(this);
    holder->installEventFilter(this);
    connect(button, &QObject::destroyed, this, &QObject::deleteLater);
    follow();
}

void HitArea::follow() {
    const QWidget& holder = *parentWidget();
    const QRect seen(button_->mapTo(&holder, QPoint()), button_->size());
    const int wider = std::max(0, leastSide - seen.width());
    const int higher = std::max(0, leastSide - seen.height());
    QRect area =
        seen.adjusted(-(wider / 2), -(higher / 2), wider - (wider / 2), higher - (higher / 2));
    // Where the holder ends on one side, the other side has all of it.
    area.moveLeft(std::max(0, std::min(area.left(), holder.width() - area.width())));
    area.moveTop(std::max(0, std::min(area.top(), holder.height() - area.height())));
    setGeometry(area);
    const QRegion around = QRegion(rect()).subtracted(seen.translated(-area.topLeft()));
    setVisible(!around.isEmpty() && button_->isVisibleTo(&holder));
    // The button's own place stays the button's.
    setMask(around);
    raise();
}

bool HitArea::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
        if (button_)
            follow();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void HitArea::passOn(const QMouseEvent& event) {
    for (const QWidget* each = button_; each != parentWidget(); each = each->parentWidget()) {
        if (each->testAttribute(Qt::WA_TransparentForMouseEvents))
            return;
    }
    // In here it counts as on the button.
    const bool isInside = rect().contains(event.position().toPoint());
    const QPoint place = isInside ? button_->rect().center()
                                  : button_->mapFromGlobal(event.globalPosition().toPoint());
    QMouseEvent own(event.type(), place, button_->mapToGlobal(place), event.button(),
                    event.buttons(), event.modifiers());
    QCoreApplication::sendEvent(button_, &own);
}

bool HitArea::event(QEvent* event) {
    if (!button_)
        return QWidget::event(event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        passOn(*static_cast<QMouseEvent*>(event));
        event->accept();
        return true;
    case QEvent::Enter:
    case QEvent::Leave:
        button_->setAttribute(Qt::WA_UnderMouse, event->type() == QEvent::Enter);
        button_->update();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

} // namespace tilewright
