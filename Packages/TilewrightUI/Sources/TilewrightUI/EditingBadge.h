#pragma once

#include <QWidget>

namespace tilewright {

/// The small badge "Editing" that tells that a saved layout is being changed.
class EditingBadge final : public QWidget {
    Q_OBJECT

public:
    explicit EditingBadge(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QString text() const { return accessibleName(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tilewright
