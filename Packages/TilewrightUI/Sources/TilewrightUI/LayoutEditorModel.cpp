#include "LayoutEditorModel.h"

#include "FreeSlot.h"

#include <WindowManager/ZoneLayout.h>

#include <algorithm>

namespace tilewright {

LayoutEditorModel::LayoutEditorModel(LayoutStore& store, MainLoop& mainLoop)
    : store_(store)
    , mainLoop_(mainLoop)
    , zones_(*this, ZoneLayout::bentoBox().zones)
    , selectedID_(*this, std::nullopt)
    , layoutName_(*this, tr("My Layout"))
    , snapToEdges_(*this, true)
    , toast_(*this, std::nullopt)
    , editingLayoutID_(*this, std::nullopt) {}

LayoutEditorModel::~LayoutEditorModel() = default;

void LayoutEditorModel::setZone(std::size_t index, const Zone& zone) {
    if (index >= zones().size())
        return;
    std::vector<Zone> changed = zones();
    changed[index] = zone;
    zones_ = std::move(changed);
}

bool LayoutEditorModel::isSelected(std::size_t index) const {
    return index < zones().size() && selectedID() == zones()[index].id;
}

std::optional<std::size_t> LayoutEditorModel::selectedIndex() const {
    for (std::size_t index = zones().size(); index-- > 0;) {
        if (isSelected(index))
            return index;
    }
    return std::nullopt;
}

ZoneEditorGeometry LayoutEditorModel::geometryFor(std::size_t index) const {
    ZoneEditorGeometry geometry;
    geometry.snapToEdges = snapToEdges();
    geometry.others.reserve(zones().size());
    for (const Zone& zone : zones()) {
        if (zone.id != zones().at(index).id)
            geometry.others.push_back(zone);
    }
    return geometry;
}

void LayoutEditorModel::nudge(std::size_t index, double dx, double dy) {
    if (index >= zones().size())
        return;
    ZoneEditorGeometry geometry = geometryFor(index);
    geometry.snapToEdges = false;
    select(zones()[index].id);
    setZone(index, geometry.moved(zones()[index], dx, dy));
}

void LayoutEditorModel::nudgeCorner(std::size_t index, ZoneEditorGeometry::Corner corner, double dx,
                                    double dy) {
    if (index >= zones().size())
        return;
    ZoneEditorGeometry geometry = geometryFor(index);
    geometry.snapToEdges = false;
    select(zones()[index].id);
    setZone(index, geometry.resized(zones()[index], corner, dx, dy));
}

void LayoutEditorModel::loadPreset(const ZoneLayout& preset) {
    std::vector<Zone> zones = preset.zones;
    // A layout saved from a preset never shares zone ids with it.
    for (Zone& zone : zones)
        zone.id = QUuid::createUuid();
    zones_ = std::move(zones);
    layoutName_ = tr("My %1").arg(preset.name);
    editingLayoutID_ = std::nullopt;
    selectedID_ = std::nullopt;
}

void LayoutEditorModel::loadForEditing(const ZoneLayout& layout) {
    zones_ = layout.zones;
    layoutName_ = layout.name;
    editingLayoutID_ = layout.id;
    selectedID_ = std::nullopt;
}

void LayoutEditorModel::newLayout() {
    zones_ = {{QUuid::createUuid(), tr("Zone %1").arg(1), 0, 0, 0.5, 1.0}};
    layoutName_ = tr("My Layout");
    editingLayoutID_ = std::nullopt;
    selectedID_ = std::nullopt;
}

std::optional<Zone> LayoutEditorModel::freeSlot() const {
    return tilewright::freeSlot(zones(), minZoneSize);
}

void LayoutEditorModel::addZone() {
    std::optional<Zone> zone = freeSlot();
    if (!zone) {
        showToast(tr("No space for another zone"), true);
        return;
    }
    zone->name = tr("Zone %1").arg(zones().size() + 1);
    std::vector<Zone> changed = zones();
    changed.push_back(*zone);
    zones_ = std::move(changed);
    selectedID_ = zone->id;
}

void LayoutEditorModel::deleteSelected() {
    std::vector<Zone> remaining = zones();
    std::erase_if(remaining, [this](const Zone& zone) { return selectedID() == zone.id; });
    zones_ = std::move(remaining);
    selectedID_ = std::nullopt;
}

ZoneLayout LayoutEditorModel::layoutToSave(const QUuid& id, const QString& name) const {
    return {.id = id,
            .name = name,
            .systemImage = QStringLiteral("square.dashed"),
            .isBuiltIn = false,
            .zones = zones()};
}

void LayoutEditorModel::saveAsNew() {
    const QString name = trimmed(layoutName());
    if (nameTaken(name, std::nullopt)) {
        showNameTaken(name);
        return;
    }
    const QUuid id = QUuid::createUuid();
    store_.addCustomLayout(layoutToSave(id, name));
    editingLayoutID_ = id;
    showToast(tr("Layout saved"), false);
}

void LayoutEditorModel::update() {
    if (!editingLayoutID()) {
        saveAsNew();
        return;
    }
    const QString name = trimmed(layoutName());
    if (nameTaken(name, editingLayoutID())) {
        showNameTaken(name);
        return;
    }
    store_.updateCustomLayout(layoutToSave(*editingLayoutID(), name));
    showToast(tr("Layout updated"), false);
}

bool LayoutEditorModel::nameTaken(const QString& name, const std::optional<QUuid>& ignoring) const {
    const std::vector<ZoneLayout> layouts = store_.allLayouts();
    return std::any_of(layouts.begin(), layouts.end(), [&](const ZoneLayout& layout) {
        return ignoring != layout.id && name.compare(layout.name, Qt::CaseInsensitive) == 0;
    });
}

void LayoutEditorModel::showNameTaken(const QString& name) {
    showToast(tr("“%1” already exists").arg(name), true);
}

bool LayoutEditorModel::canSave() const {
    return !zones().empty() && !trimmed(layoutName()).isEmpty();
}

void LayoutEditorModel::showToast(const QString& message, bool isError) {
    const Toast shown{message, isError};
    toast_ = shown;
    std::erase_if(toastTimers_, [](const ScopedTimer& timer) { return !timer.isActive(); });
    // Each message has a timer of its own, which ends whatever equals its message by then.
    toastTimers_.emplace_back(mainLoop_.scheduleOnce(toastDuration, [this, shown] {
        if (toast() == shown)
            toast_ = std::nullopt;
    }));
}

QString LayoutEditorModel::trimmed(const QString& name) {
    // Not QString::trimmed, which takes line breaks away too.
    const auto isSpace = [](QChar character) {
        return character == u'\t' || character.category() == QChar::Separator_Space;
    };
    const auto first = std::find_if_not(name.begin(), name.end(), isSpace);
    const auto last = std::find_if_not(name.rbegin(), std::make_reverse_iterator(first), isSpace);
    return QString(first, last.base() - first);
}

} // namespace tilewright
