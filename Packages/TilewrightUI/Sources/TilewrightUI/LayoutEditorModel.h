#pragma once

#include "ZoneEditorGeometry.h"

#include <Platform/MainLoop.h>
#include <Platform/ObservableObject.h>
#include <WindowManager/LayoutStore.h>

#include <QString>
#include <optional>
#include <vector>

namespace tilewright {

/// What the layout editor edits and every operation on it, without a view.
///
/// Starts with the zones of the Bento Box and edits nothing that is saved. Nothing reaches the
/// store before `saveAsNew` or `update`. Main thread only.
class LayoutEditorModel final : public ObservableObject {
    Q_OBJECT

public:
    /// A short message over the editor.
    struct Toast {
        QString message;
        bool isError = false;

        friend bool operator==(const Toast&, const Toast&) = default;
    };

    /// The last size tried for a new zone.
    static constexpr double minZoneSize = ZoneEditorGeometry::defaultMinSize;
    static constexpr MainLoop::Interval toastDuration{1800};
    /// How far one press of an arrow key moves a zone or a corner: a hundredth of the canvas, with
    /// Shift a twentieth.
    static constexpr double nudgeStep = 0.01;
    static constexpr double largeNudgeStep = 0.05;

    /// Store and loop have to outlive the model.
    LayoutEditorModel(LayoutStore& store, MainLoop& mainLoop);
    ~LayoutEditorModel() override;

    /// Published: the zones in drawing order.
    [[nodiscard]] const std::vector<Zone>& zones() const { return zones_.value(); }
    /// Published: the zone that is selected.
    [[nodiscard]] const std::optional<QUuid>& selectedID() const { return selectedID_.value(); }
    /// Published: the name as typed, untrimmed.
    [[nodiscard]] const QString& layoutName() const { return layoutName_.value(); }
    /// Published: whether edges snap while zones are dragged.
    [[nodiscard]] bool snapToEdges() const { return snapToEdges_.value(); }
    /// Published: the message shown now.
    [[nodiscard]] const std::optional<Toast>& toast() const { return toast_.value(); }
    /// Published: the saved layout being edited; none while a new one is designed.
    [[nodiscard]] const std::optional<QUuid>& editingLayoutID() const {
        return editingLayoutID_.value();
    }

    /// Takes a name as it is typed; it is trimmed and checked when the layout is saved.
    void setLayoutName(const QString& name) { layoutName_ = name; }
    /// Turns snapping on or off for the drags that follow.
    void setSnapToEdges(bool snaps) { snapToEdges_ = snaps; }
    /// Selects the zone of an id; none is selected where no zone has it.
    void select(const QUuid& id) { selectedID_ = id; }
    /// Replaces the zone at that place of the list; nothing happens past its end.
    void setZone(std::size_t index, const Zone& zone);

    /// Whether the zone at that place of the list has the id that is selected.
    [[nodiscard]] bool isSelected(std::size_t index) const;
    /// The place of the selected zone in the list; of several with its id, the topmost.
    [[nodiscard]] std::optional<std::size_t> selectedIndex() const;
    /// The rules for dragging the zone at that place: its neighbours are the zones of other ids.
    [[nodiscard]] ZoneEditorGeometry geometryFor(std::size_t index) const;

    /// Selects the zone at that place and moves it by the rules of dragging, without snapping.
    void nudge(std::size_t index, double dx, double dy);
    /// The same for one of its corners.
    void nudgeCorner(std::size_t index, ZoneEditorGeometry::Corner corner, double dx, double dy);

    /// Starts a new layout from a preset, with zone ids of its own.
    void loadPreset(const ZoneLayout& preset);
    /// Edits a saved layout.
    void loadForEditing(const ZoneLayout& layout);
    /// Starts a new layout with one zone, the left half.
    void newLayout();
    /// Adds a zone where there is room and selects it; says so where there is none.
    void addZone();
    /// Where `addZone` would put the next zone; see `tilewright::freeSlot`.
    [[nodiscard]] std::optional<Zone> freeSlot() const;
    /// Removes the selected zone.
    void deleteSelected();

    /// Saves as a new layout, which is then the one being edited; refuses a name that is taken.
    void saveAsNew();
    /// Saves over the layout being edited, or as a new one when there is none.
    void update();
    /// Whether a layout other than the ignored one bears the name, in whatever case of letters.
    [[nodiscard]] bool nameTaken(const QString& name, const std::optional<QUuid>& ignoring) const;
    /// Whether there is something to save: zones, and a name that is more than white space.
    [[nodiscard]] bool canSave() const;
    [[nodiscard]] bool canDelete() const { return selectedID().has_value(); }

    /// Shows a message for 1.8 seconds, in place of an older one. The same message shown again
    /// meanwhile ends with the first one's time.
    void showToast(const QString& message, bool isError);

    /// The name without the spaces and tabs around it; line breaks stay.
    [[nodiscard]] static QString trimmed(const QString& name);

private:
    [[nodiscard]] ZoneLayout layoutToSave(const QUuid& id, const QString& name) const;
    void showNameTaken(const QString& name);

    LayoutStore& store_;
    MainLoop& mainLoop_;
    Published<std::vector<Zone>> zones_;
    Published<std::optional<QUuid>> selectedID_;
    Published<QString> layoutName_;
    Published<bool> snapToEdges_;
    Published<std::optional<Toast>> toast_;
    Published<std::optional<QUuid>> editingLayoutID_;
    std::vector<ScopedTimer> toastTimers_;
};

} // namespace tilewright
