#include "MenuBarView.h"

#include <Platform/Platform.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/HitArea.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/LayoutPicker.h>
#include <TilewrightUI/SlimScrollArea.h>
#include <TilewrightUI/SlimScrollBar.h>

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int panelWidth = 300;
constexpr int padding = 16;
constexpr int spacing = 12;

} // namespace

MenuBarView::MenuBarView(OpenSettings openSettings, QWidget* parent)
    : QWidget(parent)
    , openSettings_(std::move(openSettings))
    , keepAwake_(new KeepAwakeControl) {
    setFixedWidth(panelWidth);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, padding, 0, padding);
    column->setSpacing(0);
    const auto add = [column](QWidget* part, int trailingPadding = padding) {
        // Spacings, which are mirrored where the text runs from right to left, as margins are not.
        auto* row = new QHBoxLayout;
        row->setSpacing(0);
        row->addSpacing(padding);
        row->addWidget(part);
        row->addSpacing(trailingPadding);
        column->addLayout(row);
    };
    add(keepAwake_);
    column->addSpacing(spacing);
    add(new Hairline);
    add(makeMiddle(), padding - SlimScrollBar::thickness);
    add(new Hairline);
    column->addSpacing(spacing);
    QWidget* footer = makeFooter();
    add(footer);
    for (auto* button : footer->findChildren<GlassButton*>())
        new HitArea(button, this);
}

int MenuBarView::roomToGrow() const {
    return keepAwake_->roomToGrow();
}

QWidget* MenuBarView::makeMiddle() {
    // What scrolls goes as far as the lines.
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, spacing, 0, spacing);
    column->addWidget(new LayoutPicker);
    return new SlimScrollArea(content);
}

QWidget* MenuBarView::makeFooter() {
    auto* footer = new QWidget;
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(0, 0, 0, 0);
    auto* settings = new GlassButton(tr("Settings…"), GlassButton::Kind::plain);
    auto* quit = new GlassButton(tr("Quit"), GlassButton::Kind::plain);
    row->addWidget(settings);
    row->addStretch();
    row->addWidget(quit);
    connect(settings, &QAbstractButton::clicked, this, [this] {
        // Opening the settings may end the panel, and this view with it.
        const OpenSettings open = openSettings_;
        if (open)
            open();
        Platform::current().workspace.activateThisApplication();
    });
    connect(quit, &QAbstractButton::clicked, qApp, &QCoreApplication::quit);
    return footer;
}

} // namespace tilewright
