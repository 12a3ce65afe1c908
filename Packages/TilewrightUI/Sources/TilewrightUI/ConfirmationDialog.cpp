#include "ConfirmationDialog.h"

#include "GlassButton.h"
#include "TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

namespace tilewright {

namespace {

constexpr int padding = 20;
constexpr int lineSpacing = 6;
constexpr int buttonDistance = 18;
constexpr int leastTextWidth = 300;
constexpr int greatestTextWidth = ConfirmationDialog::greatestWidth - (2 * padding);

} // namespace

ConfirmationDialog::ConfirmationDialog(const QString& title, const QString& message,
                                       const QString& action, QWidget* parent)
    : QDialog(parent)
    , title_(new TextLabel(title, look::TextStyle::headline, TextLabel::Importance::primary, this))
    , message_(
          new TextLabel(message, look::TextStyle::callout, TextLabel::Importance::secondary, this))
    , cancel_(new GlassButton(tr("Cancel"), GlassButton::Kind::glass, this))
    , confirm_(new GlassButton(action, GlassButton::Kind::glass, this)) {
    title_->setOverflow(TextLabel::Overflow::elideMiddle);
    message_->setOverflow(TextLabel::Overflow::wrap);
    // The bar of a window, and lists of windows, are no place for a name of any length either.
    setWindowTitle(title_->fontMetrics().elidedText(title, Qt::ElideMiddle, greatestTextWidth));
    setAccessibleDescription(message);
    confirm_->setRole(GlassButton::Role::destructive);
    confirm_->setAutoDefault(false);
    cancel_->setDefault(true);
    cancel_->setFocus();
    connect(cancel_, &QAbstractButton::clicked, this, &QDialog::reject);
    connect(confirm_, &QAbstractButton::clicked, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(look::defaultSpacing);
    buttons->addStretch();
    buttons->addWidget(cancel_);
    buttons->addWidget(confirm_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(0);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(title_);
    column->addSpacing(lineSpacing);
    column->addWidget(message_);
    column->addSpacing(buttonDistance);
    column->addLayout(buttons);
    fitWidth();
    look::whenFontChanges(this, [this] { fitWidth(); });
}

void ConfirmationDialog::fitWidth() {
    const int width = std::clamp(title_->sizeHint().width(), leastTextWidth, greatestTextWidth);
    title_->setFixedWidth(width);
    message_->setFixedWidth(width);
}

} // namespace tilewright
