#include "ZoneEditorTileAccessible.h"

#include "EditingBadge.h"
#include "LayoutEditorCanvas.h"
#include "ZoneEditorHandle.h"
#include "ZoneEditorTile.h"

#include <QAccessible>
#include <QAccessibleWidget>

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

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    // Qt owns what a factory answers.
    if (auto* tile = qobject_cast<ZoneEditorTile*>(object))
        return new TileInterface(tile);
    if (auto* handle = qobject_cast<ZoneEditorHandle*>(object))
        // The accessibility bus has no role for a grip: readers would be told "unknown".
        return new QAccessibleWidget(handle, QAccessible::Button);
    if (auto* canvas = qobject_cast<LayoutEditorCanvas*>(object))
        return new QAccessibleWidget(canvas, QAccessible::List);
    if (auto* badge = qobject_cast<EditingBadge*>(object))
        return new QAccessibleWidget(badge, QAccessible::StaticText);
    return nullptr;
}

} // namespace

void installZoneEditorAccessibility() {
    // A factory installed twice is asked once.
    QAccessible::installFactory(makeInterface);
}

} // namespace tilewright
