#include "ZoneEditorTileAccessible.h"

#include "EditingBadge.h"
#include "EditorToast.h"
#include "LayoutEditorCanvas.h"
#include "ZoneEditorHandle.h"
#include "ZoneEditorTile.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>
#include <type_traits>

namespace tilewright {

namespace {

class TileInterface final : public QAccessibleWidget {
public:
    explicit TileInterface(ZoneEditorTile* tile)
        : QAccessibleWidget(tile, QAccessible::ListItem) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = tile()->isSelected();
        return state;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction())
            tile()->onSelect();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    [[nodiscard]] ZoneEditorTile* tile() const { return static_cast<ZoneEditorTile*>(widget()); }
};

/// The canvas, whose tiles and handles wait hidden for their next use: to assistive tools there are
/// only those in use.
class CanvasInterface final : public QAccessibleWidget {
public:
    explicit CanvasInterface(LayoutEditorCanvas* canvas)
        : QAccessibleWidget(canvas, QAccessible::List) {}

    int childCount() const override { return static_cast<int>(inUse().size()); }
    QAccessibleInterface* child(int index) const override {
        const QWidgetList children = inUse();
        return index >= 0 && index < children.size()
                   ? QAccessible::queryAccessibleInterface(children[index])
                   : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child ? static_cast<int>(inUse().indexOf(qobject_cast<QWidget*>(child->object())))
                     : -1;
    }

private:
    [[nodiscard]] QWidgetList inUse() const {
        QWidgetList found;
        // The zones first, in their order; the handles belong to one of them.
        for (ZoneEditorTile* tile : ofKind<ZoneEditorTile>()) {
            if (!tile->isHidden())
                found.append(tile);
        }
        for (ZoneEditorHandle* handle : ofKind<ZoneEditorHandle>()) {
            if (!handle->isHidden())
                found.append(handle);
        }
        return found;
    }
    template<class Kind>
    [[nodiscard]] QList<Kind*> ofKind() const {
        auto found = widget()->findChildren<Kind*>(QString(), Qt::FindDirectChildrenOnly);
        if constexpr (std::is_same_v<Kind, ZoneEditorTile>) {
            std::sort(found.begin(), found.end(), [](const Kind* one, const Kind* other) {
                return one->index() < other->index();
            });
        }
        return found;
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    // Qt owns what a factory answers.
    if (auto* tile = qobject_cast<ZoneEditorTile*>(object))
        return new TileInterface(tile);
    if (auto* handle = qobject_cast<ZoneEditorHandle*>(object))
        // The accessibility bus has no role for a grip: readers would be told "unknown".
        return new QAccessibleWidget(handle, QAccessible::Button);
    if (auto* canvas = qobject_cast<LayoutEditorCanvas*>(object))
        return new CanvasInterface(canvas);
    if (auto* badge = qobject_cast<EditingBadge*>(object))
        return new QAccessibleWidget(badge, QAccessible::StaticText);
    if (auto* toast = qobject_cast<EditorToast*>(object))
        // Screen readers read an alert out when it comes up.
        return new QAccessibleWidget(toast, QAccessible::AlertMessage);
    return nullptr;
}

} // namespace

void installZoneEditorAccessibility() {
    // A factory installed twice is asked once.
    QAccessible::installFactory(makeInterface);
}

} // namespace tilewright
