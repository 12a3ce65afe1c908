#pragma once

#include <QWidget>

namespace tilewright {

/// A divider: a line one point thick, as wide as it is given room.
class Hairline final : public QWidget {
    Q_OBJECT

public:
    explicit Hairline(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {1, 1}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tilewright
