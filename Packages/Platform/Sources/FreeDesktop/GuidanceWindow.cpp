#include "GuidanceWindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int width = 420;
constexpr int padding = 24;
constexpr int spacing = 12;
/// How much larger the heading is than what is written below.
constexpr double headingScale = 1.3;

QLabel* makeLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(width - 2 * padding);
    return label;
}

} // namespace

GuidanceWindow::GuidanceWindow()
    : title_(makeLabel(this))
    , text_(makeLabel(this))
    , action_(new QPushButton(this))
    , close_(new QPushButton(tr("Close"), this)) {
    setObjectName(QStringLiteral("guidance"));
    setWindowTitle(tr("Set Up Window Snapping"));
    setAttribute(Qt::WA_QuitOnClose, false);
    QFont heading = title_->font();
    heading.setBold(true);
    if (heading.pointSizeF() > 0)
        heading.setPointSizeF(heading.pointSizeF() * headingScale);
    title_->setFont(heading);
    title_->setObjectName(QStringLiteral("title"));
    text_->setObjectName(QStringLiteral("text"));
    action_->setObjectName(QStringLiteral("action"));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(spacing);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(title_);
    column->addWidget(text_);
    column->addSpacing(spacing);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close_);
    row->addWidget(action_);
    column->addLayout(row);
    connect(action_, &QAbstractButton::clicked, this, &GuidanceWindow::actionChosen);
    connect(close_, &QAbstractButton::clicked, this, &QWidget::close);
}

GuidanceWindow::~GuidanceWindow() = default;

void GuidanceWindow::setStep(const GuidanceStep& step) {
    title_->setText(step.title);
    text_->setText(step.text);
    action_->setText(step.action);
    action_->setVisible(!step.action.isEmpty());
    QPushButton* usual = step.action.isEmpty() ? close_ : action_;
    usual->setDefault(true);
    usual->setFocus();
}

void GuidanceWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close))
        close();
    else
        QWidget::keyPressEvent(event);
}

void GuidanceWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

} // namespace tilewright
