#include "SymbolTabBarAccessible.h"

#include "SymbolTabBar.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <map>

namespace tilewright {

namespace {

/// What a tab's title reads without the marks of plain text.
QString titleOf(const SymbolTabBar& bar, int index) {
    return bar.tabText(index).replace(QStringLiteral("&&"), QStringLiteral("&"));
}

/// One tab of a row.
class TabInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TabInterface(SymbolTabBar* bar, int index)
        : bar_(bar)
        , index_(index) {}

    bool isValid() const override { return bar_ && index_ < bar_->count(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(bar_);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QRect rect() const override {
        const QRect place = bar_->tabRect(index_);
        return {bar_->mapToGlobal(place.topLeft()), place.size()};
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? titleOf(*bar_, index_) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invisible = !bar_->isVisible();
        state.disabled = !bar_->isEnabled();
        state.selectable = true;
        state.selected = bar_->currentIndex() == index_;
        state.focusable = true;
        state.focused = state.selected && bar_->hasFocus();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction())
            bar_->setCurrentIndex(index_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QPointer<SymbolTabBar> bar_;
    int index_;
};

/// A row of tabs.
class TabBarInterface final : public QAccessibleWidget {
public:
    explicit TabBarInterface(SymbolTabBar* bar)
        : QAccessibleWidget(bar, QAccessible::PageTabList) {}
    ~TabBarInterface() override {
        for (const auto& [index, id] : tabs_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return bar().count(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= bar().count())
            return nullptr;
        const auto known = tabs_.find(index);
        if (known != tabs_.end())
            return QAccessible::accessibleInterface(known->second);
        // Qt owns what is registered with it.
        auto* tab = new TabInterface(&bar(), index);
        tabs_.emplace(index, QAccessible::registerAccessibleInterface(tab));
        return tab;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        for (const auto& [index, id] : tabs_) {
            if (QAccessible::accessibleInterface(id) == child)
                return index;
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(bar().tabAt(bar().mapFromGlobal(QPoint(x, y))));
    }
    QString text(QAccessible::Text kind) const override {
        // The chosen tab says more than what all of them are together.
        return kind == QAccessible::Name ? titleOf(bar(), bar().currentIndex())
                                         : QAccessibleWidget::text(kind);
    }

private:
    [[nodiscard]] SymbolTabBar& bar() const { return *static_cast<SymbolTabBar*>(widget()); }

    mutable std::map<int, QAccessible::Id> tabs_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    // Qt owns what a factory answers.
    if (auto* bar = qobject_cast<SymbolTabBar*>(object))
        return new TabBarInterface(bar);
    return nullptr;
}

} // namespace

void installSymbolTabBarAccessibility() {
    // A factory installed twice is asked once.
    QAccessible::installFactory(makeInterface);
}

} // namespace tilewright
