#pragma once

#include "LayoutEditorModel.h"

#include <QRectF>
#include <QWidget>

namespace tilewright {

/// The handle on one corner of the selected zone.
///
/// The pointer passes through to the canvas, which runs the drag. With the keyboard focus the arrow
/// keys move the corner by a hundredth of the canvas, with Shift by a twentieth.
class ZoneEditorHandle final : public QWidget {
    Q_OBJECT

public:
    using Corner = ZoneEditorGeometry::Corner;

    /// Diameter in points.
    static constexpr double diameter = 18;

    /// The model has to outlive the handle.
    ZoneEditorHandle(LayoutEditorModel& model, Corner corner, QWidget* canvas);

    [[nodiscard]] Corner corner() const { return corner_; }
    /// Shows the handle on the corner of the selected zone, whose rectangle and place in the list
    /// these are; both rectangles are in the parent's points, and the handle stays in the second.
    void attach(std::size_t index, const QRectF& zoneFrame, const QRectF& bounds);
    /// Whether a point of the parent is on the handle, which is hit where it is seen and around it,
    /// outward from its zone, over 24 x 24 points.
    [[nodiscard]] bool contains(QPointF point) const;
    /// The handle's circle, in the parent's points.
    [[nodiscard]] const QRectF& circle() const { return circle_; }
    /// The pointer's shape over the handle.
    [[nodiscard]] static Qt::CursorShape cursorShape(Corner corner);

Q_SIGNALS:
    /// Escape was pressed: a drag under way is to be undone.
    void cancelRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    LayoutEditorModel& model_;
    const Corner corner_;
    std::size_t index_ = 0;
    QRectF circle_;
    QRectF hitArea_;
};

} // namespace tilewright
