#include "AccessibilitySettingsView.h"

#include <Platform/Platform.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/SymbolView.h>
#include <TilewrightUI/TextLabel.h>

#include <QEvent>
#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int symbolSide = 40;
constexpr int spacing = 16;
constexpr std::chrono::milliseconds pollInterval{2000};

} // namespace

AccessibilitySettingsView::AccessibilitySettingsView(QWidget* parent)
    : QWidget(parent)
    , symbol_(new SymbolView(symbolSide, this))
    , message_(new TextLabel({}, look::TextStyle::body, TextLabel::Importance::primary, this))
    , button_(new GlassButton(tr("Open Privacy & Security Settings"), GlassButton::Kind::prominent,
                              this)) {
    message_->setOverflow(TextLabel::Overflow::wrap);
    message_->setAlignment(Qt::AlignCenter);
    connect(button_, &QAbstractButton::clicked, this,
            [] { Platform::current().workspace.openAccessibilitySettings(); });
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(look::defaultPadding, look::defaultPadding, look::defaultPadding,
                               look::defaultPadding);
    column->setSpacing(spacing);
    column->addStretch();
    column->addWidget(symbol_, 0, Qt::AlignHCenter);
    column->addWidget(message_);
    column->addWidget(button_, 0, Qt::AlignHCenter);
    column->addStretch();
    const Accessibility& accessibility = Platform::current().accessibility;
    const auto readTrust = [this, &accessibility] { setTrusted(accessibility.isTrusted()); };
    connect(&accessibility, &Accessibility::trustChanged, this, readTrust);
    readTrust();
}

AccessibilitySettingsView::~AccessibilitySettingsView() = default;

void AccessibilitySettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (watchedWindow_ != window()) {
        if (watchedWindow_)
            watchedWindow_->removeEventFilter(this);
        watchedWindow_ = window();
        watchedWindow_->installEventFilter(this);
    }
    startOrStopPolling();
}

void AccessibilitySettingsView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    startOrStopPolling();
}

bool AccessibilitySettingsView::eventFilter(QObject* watched, QEvent* event) {
    // A minimised window hides nothing, and yet is not on screen.
    if (event->type() == QEvent::WindowStateChange)
        startOrStopPolling();
    return QWidget::eventFilter(watched, event);
}

void AccessibilitySettingsView::startOrStopPolling() {
    if (!isVisible() || window()->isMinimized()) {
        poll_.reset();
    } else if (!poll_.isActive()) {
        poll_ = ScopedTimer(Platform::current().mainLoop.scheduleRepeating(
            pollInterval, [this] { setTrusted(Platform::current().accessibility.isTrusted()); }));
    }
}

void AccessibilitySettingsView::setTrusted(bool trusted) {
    isTrusted_ = trusted;
    const auto white = [](const QPalette&) { return QColor(Qt::white); };
    if (trusted) {
        symbol_->setSymbol(QStringLiteral("checkmark.shield.fill"), white, look::green);
        message_->setText(tr("Accessibility access granted."));
    } else {
        symbol_->setSymbol(QStringLiteral("exclamationmark.shield.fill"), white, look::orange);
        message_->setText(tr("Accessibility access is required for window snapping."));
    }
    button_->setVisible(!trusted);
}

} // namespace tilewright
