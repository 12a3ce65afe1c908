#pragma once

#include <QScrollBar>

namespace tilewright {

/// A narrow vertical scroll bar that lies in the padding of what it scrolls. It keeps its width
/// where there is nothing to scroll, and then shows nothing. Its slider can be dragged wherever it
/// is seen; a press beside it scrolls a page.
class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    /// In points.
    static constexpr int thickness = 10;

    explicit SlimScrollBar(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {thickness, thickness}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    /// A piece of the bar's height, in points from its top.
    struct Span {
        double start = 0;
        double length = 0;
    };
    /// Where the slider can be.
    [[nodiscard]] Span track() const;
    /// Where the slider is; of no length where there is nothing to scroll.
    [[nodiscard]] Span slider() const;

    /// How far below the slider's top the pointer took hold of it.
    double hold_ = 0;
};

} // namespace tilewright
