#include "SettingsView.h"

#include "AccessibilitySettingsView.h"
#include "GeneralSettingsView.h"
#include "SymbolTabBar.h"

#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/LayoutManagerView.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/SlimScrollArea.h>
#include <TilewrightUI/SlimScrollBar.h>

#include <QAbstractScrollArea>
#include <QEvent>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace tilewright {

SettingsView::SettingsView(QWidget* parent)
    : SettingsContent(parent)
    , tabBar_(new SymbolTabBar(this))
    , pages_(new QStackedWidget)
    , room_(new SlimScrollArea(pages_, this)) {
    tabBar_->setAccessibleName(tr("Settings"));
    add(Tab::layouts, "square.grid.2x2", tr("Layouts"), new LayoutEditorView);
    add(Tab::manage, "list.bullet.rectangle", tr("Manage"), new LayoutManagerView);
    add(Tab::general, "gearshape", tr("General"), new GeneralSettingsView);
    add(Tab::accessibility, "accessibility", tr("Accessibility"), new AccessibilitySettingsView);
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
    below->addWidget(room_);
    column->addLayout(below);
    connect(pages_, &QStackedWidget::currentChanged, this, &SettingsView::makeRoom);
    limitHeight(QWIDGETSIZE_MAX);
}

void SettingsView::limitHeight(int most) {
    constexpr int least = 120;
    layout()->activate();
    const int around = layout()->sizeHint().height() - room_->height();
    height_ = std::clamp(most - around, least, contentSize.height());
    makeRoom();
}

int SettingsView::heightNeededBy(const QWidget& page) {
    // A page that scrolls by itself gets no second bar beside its own.
    if (qobject_cast<const QAbstractScrollArea*>(&page))
        return 0;
    const int width = contentSize.width();
    const int wanted =
        page.hasHeightForWidth() ? page.heightForWidth(width) : page.sizeHint().height();
    return std::min(wanted, contentSize.height());
}

void SettingsView::makeRoom() {
    const bool scrolls = height_ < heightNeededBy(*pages_->currentWidget());
    // The bar takes its room of the contents' trailing padding.
    room_->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    pages_->setFixedSize(contentSize.width() - (scrolls ? SlimScrollBar::thickness : 0),
                         scrolls ? contentSize.height() : height_);
    room_->setFixedSize(contentSize.width(), height_);
    // The window asks for the size before a turn of the loop.
    layout()->activate();
}

void SettingsView::add(Tab tab, const char* symbol, const QString& title, QWidget* content) {
    tabs_.push_back(tab);
    tabBar_->addSymbolTab(QString::fromLatin1(symbol), title);
    content->setAccessibleName(title);
    pages_->addWidget(content);
    content->installEventFilter(this);
}

bool SettingsView::eventFilter(QObject* object, QEvent* event) {
    // What the page that shows says has become longer or shorter.
    if (event->type() == QEvent::LayoutRequest && object == pages_->currentWidget())
        makeRoom();
    return SettingsContent::eventFilter(object, event);
}

int SettingsView::indexOf(Tab tab) const {
    return static_cast<int>(std::find(tabs_.begin(), tabs_.end(), tab) - tabs_.begin());
}

SettingsView::Tab SettingsView::selection() const {
    return tabs_.at(static_cast<std::size_t>(tabBar_->currentIndex()));
}

void SettingsView::setSelection(Tab tab) {
    tabBar_->setCurrentIndex(indexOf(tab));
}

QWidget* SettingsView::content(Tab tab) const {
    return pages_->widget(indexOf(tab));
}

} // namespace tilewright
