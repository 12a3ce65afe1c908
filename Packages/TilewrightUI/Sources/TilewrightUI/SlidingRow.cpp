#include "SlidingRow.h"

#include <QAbstractButton>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <algorithm>
#include <cmath>

namespace tilewright {

SlidingRow::SlidingRow(QWidget* content, int gap, Spring spring, QWidget* parent)
    : QWidget(parent)
    , content_(content)
    , fade_(new QGraphicsOpacityEffect(this))
    , gap_(gap)
    , presence_(spring, 1, [this](double) { placeContent(); }) {
    content_->setParent(this);
    fade_->setEnabled(false);
    content_->setGraphicsEffect(fade_);
    placeContent();
}

SlidingRow::~SlidingRow() = default;

void SlidingRow::setPresent(bool present) {
    if (present == isPresent_)
        return;
    isPresent_ = present;
    setTakesInput(present);
    const double target = present ? 1 : 0;
    // Hidden once it has gone, so what counts is whether its surroundings are on screen.
    if (parentWidget() && parentWidget()->isVisible())
        presence_.animateTo(target);
    else
        presence_.jumpTo(target);
}

void SlidingRow::setTakesInput(bool takesInput) {
    content_->setAttribute(Qt::WA_TransparentForMouseEvents, !takesInput);
    const auto buttons = content_->findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        if (!takesInput && button->hasFocus() && focusHeir_)
            focusHeir_->setFocus(Qt::OtherFocusReason);
        button->setFocusPolicy(takesInput ? Qt::StrongFocus : Qt::NoFocus);
    }
}

QSize SlidingRow::sizeHint() const {
    return {content_->sizeHint().width(), minimumHeight()};
}

int SlidingRow::heightToCome() const {
    return gap_ + content_->sizeHint().height() - shownHeight();
}

int SlidingRow::shownHeight() const {
    const double share = std::clamp(presence_.value(), 0.0, 1.0);
    return static_cast<int>(std::lround(share * (gap_ + content_->sizeHint().height())));
}

void SlidingRow::placeContent() {
    const double share = std::clamp(presence_.value(), 0.0, 1.0);
    const int contentHeight = content_->sizeHint().height();
    const int shown = shownHeight();
    fade_->setEnabled(share < 1);
    fade_->setOpacity(share);
    if (shown > 0 || share > 0)
        setFixedHeight(std::max(shown, 1));
    setHidden(shown == 0);
    content_->setGeometry(0, shown - contentHeight, width(), contentHeight);
}

bool SlidingRow::event(QEvent* event) {
    // The content asks for another height: its font has changed.
    if (event->type() == QEvent::LayoutRequest)
        placeContent();
    return QWidget::event(event);
}

void SlidingRow::hideEvent(QHideEvent* event) {
    if (presence_.isRunning() && parentWidget() && !parentWidget()->isVisible())
        presence_.finish();
    QWidget::hideEvent(event);
}

void SlidingRow::resizeEvent(QResizeEvent* event) {
    placeContent();
    QWidget::resizeEvent(event);
}

} // namespace tilewright
