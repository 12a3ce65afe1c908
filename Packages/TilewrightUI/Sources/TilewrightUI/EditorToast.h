#pragma once

#include "LayoutEditorModel.h"
#include "Spring.h"

#include <QWidget>

namespace tilewright {

/// The capsule that floats over the top of the editor and says how an operation went. It comes from
/// the parent's top edge and leaves there; the pointer passes through it.
class EditorToast final : public QWidget {
    Q_OBJECT

public:
    explicit EditorToast(QWidget* parent);

    /// Shows a message, in place of one shown already, or takes it away.
    void setToast(const std::optional<LayoutEditorModel::Toast>& toast);
    /// Finds its place again after the parent's size or the font has changed.
    void updatePlace();
    /// What is painted: the message, shortened where the parent is too narrow for it.
    [[nodiscard]] QString shownText() const { return shownText_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRectF capsule() const;
    void announce(bool replacesAnother);

    std::optional<LayoutEditorModel::Toast> toast_;
    /// What was shown last, still seen while it leaves.
    LayoutEditorModel::Toast shown_;
    QString shownText_;
    /// From 0, above the edge, to 1, in place.
    SpringAnimation presence_;
};

} // namespace tilewright
