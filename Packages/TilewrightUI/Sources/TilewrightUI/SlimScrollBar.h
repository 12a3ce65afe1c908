#pragma once

#include <QScrollBar>

namespace tilewright {

/// A narrow vertical scroll bar that lies in the padding of what it scrolls. It keeps its width
/// where there is nothing to scroll, and then shows nothing.
class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    /// In points.
    static constexpr int thickness = 10;

    explicit SlimScrollBar(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {thickness, thickness}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tilewright
