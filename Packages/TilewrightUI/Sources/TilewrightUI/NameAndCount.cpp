#include "NameAndCount.h"

#include "TextLabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <QStyle>
#include <algorithm>

namespace tilewright {

namespace {

constexpr int spacing = look::defaultSpacing;
/// So much of a name is worth more than a line saved.
constexpr int wantedLetters = 8;

} // namespace

NameAndCount::NameAndCount(QWidget* parent)
    : QWidget(parent)
    , name_(new TextLabel({}, look::TextStyle::callout, TextLabel::Importance::primary, this))
    , count_(new TextLabel({}, look::TextStyle::caption2, TextLabel::Importance::secondary, this)) {
    name_->setOverflow(TextLabel::Overflow::elide);
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void NameAndCount::setTexts(const QString& name, const QString& count) {
    name_->setText(name);
    count_->setText(count);
    updateGeometry();
    arrange();
}

bool NameAndCount::isOnTwoLines(int width) const {
    const int letters = wantedLetters * QFontMetrics(name_->font()).averageCharWidth();
    const int wanted = std::min(name_->sizeHint().width(), letters);
    return wanted + spacing + count_->sizeHint().width() > width;
}

int NameAndCount::heightForWidth(int width) const {
    const int name = name_->sizeHint().height();
    const int count = count_->sizeHint().height();
    return isOnTwoLines(width) ? name + count : std::max(name, count);
}

QSize NameAndCount::sizeHint() const {
    const int width = name_->sizeHint().width() + spacing + count_->sizeHint().width();
    return {width, heightForWidth(width)};
}

QSize NameAndCount::minimumSizeHint() const {
    return {0, std::max(name_->sizeHint().height(), count_->sizeHint().height())};
}

void NameAndCount::arrange() {
    const QSize count = count_->sizeHint();
    const int line = name_->sizeHint().height();
    QRect nameLine = rect();
    QRect countPlace;
    if (isOnTwoLines(width())) {
        nameLine.setHeight(line);
        countPlace = QRect(0, line, std::min(count.width(), width()), count.height());
    } else {
        nameLine.setWidth(std::max(0, width() - spacing - count.width()));
        countPlace = QRect(width() - count.width(), 0, count.width(), height());
    }
    name_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), nameLine));
    count_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), countPlace));
}

bool NameAndCount::event(QEvent* event) {
    // A label asks for another size: its font has changed.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::LayoutDirectionChange) {
        updateGeometry();
        arrange();
    }
    return QWidget::event(event);
}

void NameAndCount::resizeEvent(QResizeEvent*) {
    arrange();
}

} // namespace tilewright
