#include "SettingsView.h"

#include "AccessibilitySettingsView.h"
#include "GeneralSettingsView.h"
#include "SymbolTabBar.h"

#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/LayoutManagerView.h>
#include <TilewrightUI/Look.h>

#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tilewright {

SettingsView::SettingsView(QWidget* parent)
    : QWidget(parent)
    , tabBar_(new SymbolTabBar(this))
    , pages_(new QStackedWidget(this)) {
    tabBar_->setAccessibleName(tr("Settings"));
    const auto add = [this](const char* symbol, const QString& title, QWidget* content) {
        tabBar_->addSymbolTab(QString::fromLatin1(symbol), title);
        content->setAccessibleName(title);
        pages_->addWidget(content);
    };
    add("square.grid.2x2", tr("Layouts"), new LayoutEditorView);
    add("list.bullet.rectangle", tr("Manage"), new LayoutManagerView);
    add("gearshape", tr("General"), new GeneralSettingsView);
    add("accessibility", tr("Accessibility"), new AccessibilitySettingsView);
    pages_->setFixedSize(contentSize);
    connect(tabBar_, &QTabBar::currentChanged, pages_, &QStackedWidget::setCurrentIndex);
    const auto turn = [this](QKeySequence::StandardKey key, int step) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, [this, step] {
            const int count = pages_->count();
            tabBar_->setCurrentIndex((tabBar_->currentIndex() + step + count) % count);
        });
    };
    turn(QKeySequence::NextChild, 1);
    turn(QKeySequence::PreviousChild, -1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 6, 0, 0);
    column->setSpacing(look::defaultSpacing);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(tabBar_, 0, Qt::AlignHCenter);
    auto* below = new QVBoxLayout;
    below->setSpacing(0);
    below->addWidget(new Hairline);
    below->addWidget(pages_);
    column->addLayout(below);
}

SettingsView::Tab SettingsView::selection() const {
    return static_cast<Tab>(tabBar_->currentIndex());
}

void SettingsView::setSelection(Tab tab) {
    tabBar_->setCurrentIndex(static_cast<int>(tab));
}

QWidget* SettingsView::content(Tab tab) const {
    return pages_->widget(static_cast<int>(tab));
}

} // namespace tilewright
