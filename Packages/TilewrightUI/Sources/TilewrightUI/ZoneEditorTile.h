#pragma once

#include "LayoutEditorModel.h"

#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QWidget>
#include <optional>

class QKeyEvent;

namespace tilewright {

/// One zone on the editor's canvas: its rectangle, its border and its size in words.
///
/// The pointer passes through to the canvas, which decides whose drag it is. With the keyboard
/// focus the arrow keys move the zone by a hundredth of the canvas (with Shift by a twentieth),
/// Space or Enter selects it, and Delete removes it once it is selected.
class ZoneEditorTile final : public QWidget {
    Q_OBJECT

public:
    /// Shows the zone at that place of the model's list. The model has to outlive the tile.
    ZoneEditorTile(LayoutEditorModel& model, std::size_t index, QWidget* canvas);

    /// Takes up what the model says; the canvas's rectangle is in the parent's points.
    void refresh(const QRectF& canvasFrame);
    /// The zone's rectangle in the parent's points.
    [[nodiscard]] const QRectF& zoneFrame() const { return zoneFrame_; }
    [[nodiscard]] std::size_t index() const { return index_; }
    [[nodiscard]] bool isSelected() const { return isSelected_; }
    /// Makes the zone the selected one.
    void onSelect();

    /// The size in words as the tile shows it: "50% × 100%".
    [[nodiscard]] QString readout() const { return readout_; }
    /// Where that stands, in the parent's points.
    [[nodiscard]] const QRectF& readoutFrame() const { return readoutFrame_; }
    /// What assistive tools call a zone: "Zone 2, 50 % × 100 %".
    [[nodiscard]] static QString accessibleNameOf(const Zone& zone, std::size_t index);
    /// By how much a key moves a zone or a corner; none for other keys.
    [[nodiscard]] static std::optional<QPointF> nudgeOf(const QKeyEvent& event);

Q_SIGNALS:
    /// Escape was pressed: a drag under way is to be undone.
    void cancelRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void paintReadout(QPainter& painter) const;
    void updatePlace();

    LayoutEditorModel& model_;
    const std::size_t index_;
    QRectF zoneFrame_;
    QString readout_;
    QRectF readoutFrame_;
    QFont readoutFont_;
    bool isSelected_ = false;
};

} // namespace tilewright
