#include "MenuBarView.h"

#include <Platform/Platform.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/LayoutPicker.h>

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
    , openSettings_(std::move(openSettings)) {
    setFixedWidth(panelWidth);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(spacing);
    column->addWidget(new KeepAwakeControl);
    column->addWidget(new Hairline);
    column->addWidget(new LayoutPicker);
    column->addWidget(new Hairline);
    column->addWidget(makeFooter());
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
