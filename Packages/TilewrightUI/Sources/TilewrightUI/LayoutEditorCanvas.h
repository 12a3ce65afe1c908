#pragma once

#include "ZoneEditorDrag.h"
#include "ZoneEditorHandle.h"
#include "ZoneEditorTile.h"

#include <QWidget>
#include <array>
#include <optional>
#include <vector>

namespace tilewright {

/// The editor's picture of a display, with one tile for each zone and four handles on the selected
/// one.
///
/// It runs the drags. A press belongs to the handle under the pointer, else to the topmost zone
/// there. A tap selects that zone, however often; Tab reaches those beneath.
class LayoutEditorCanvas final : public QWidget {
    Q_OBJECT

public:
    /// Width to height.
    static constexpr double aspectRatio = 1.6;
    /// How far the handles of small zones may stick out of the canvas, in points.
    static constexpr int margin = 12;
    /// The same at its sides, where there is more of it: as much as a handle can be hit outside a
    /// zone.
    static constexpr int sideMargin = 24;

    /// The model has to outlive the canvas.
    explicit LayoutEditorCanvas(LayoutEditorModel& model, QWidget* parent = nullptr);
    ~LayoutEditorCanvas() override;

    /// Takes up what the model says.
    void refresh();

    /// The canvas itself, in this widget's points: the largest of its proportions inside the
    /// margin.
    [[nodiscard]] QRectF canvasFrame() const;
    /// The tile of the zone at that place of the list.
    [[nodiscard]] ZoneEditorTile& tile(std::size_t index) const { return *tiles_.at(index); }
    [[nodiscard]] ZoneEditorHandle& handle(ZoneEditorGeometry::Corner corner) const {
        return *handles_.at(static_cast<std::size_t>(corner));
    }
    /// Whether the pointer is dragging a zone or one of its corners.
    [[nodiscard]] bool isDragging() const { return drag_ && drag_->hasBegun(); }
    /// Undoes the drag under way.
    void cancelDrag();
    /// Gives the keyboard focus to the selected zone's tile.
    void focusSelected();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// What a press at a point would drag.
    struct Target {
        std::size_t index;
        std::optional<ZoneEditorGeometry::Corner> corner;
    };

    [[nodiscard]] std::optional<Target> targetAt(QPointF point) const;
    [[nodiscard]] std::optional<std::size_t> topmostAt(QPointF point) const;
    void updateTiles();
    void updateHandles();
    void updateCursor();

    LayoutEditorModel& model_;
    /// One for each zone; further ones are hidden and wait for the next.
    std::vector<ZoneEditorTile*> tiles_;
    std::array<ZoneEditorHandle*, 4> handles_{};
    std::optional<std::size_t> handlesFollow_;
    std::optional<ZoneEditorDrag> drag_;
    QPointF pressedAt_;
    QPointF pointer_;
};

} // namespace tilewright
