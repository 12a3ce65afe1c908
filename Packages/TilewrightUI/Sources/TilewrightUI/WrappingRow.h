#pragma once

#include <QRect>
#include <vector>

class QWidget;

namespace tilewright {

/// A row of controls: some at its leading end, some at its trailing end. Where they do not fit side
/// by side, at large font sizes, they run on over further lines instead of being cut. Hidden
/// controls take no room. Owns nothing.
class WrappingRow {
public:
    /// Whether the trailing controls may be on different lines.
    enum class Trailing { separable, together };

    /// `stretching`, one of the controls or null, takes room between its minimum and its size hint;
    /// the others have the size of their hint.
    WrappingRow(std::vector<QWidget*> leading, std::vector<QWidget*> trailing,
                Trailing cohesion = Trailing::separable, QWidget* stretching = nullptr);

    /// Puts the controls from the top of the area on, as wide as it is, and answers the height
    /// used.
    int arrange(const QRect& area) const;
    /// The height that a width takes.
    [[nodiscard]] int heightFor(int width) const;
    /// The least width at which no control is cut.
    [[nodiscard]] int minimumWidth() const;

private:
    struct Item {
        QWidget* widget;
        bool isTrailing;
        QSize size;
    };
    struct Line {
        std::vector<Item> items;
        int width = 0;
        int height = 0;
    };

    [[nodiscard]] std::vector<Line> linesFor(int width) const;
    [[nodiscard]] int leastWidthOf(const QWidget& widget) const;
    [[nodiscard]] int trailingWidth() const;

    std::vector<QWidget*> leading_;
    std::vector<QWidget*> trailing_;
    Trailing cohesion_;
    QWidget* stretching_;
};

} // namespace tilewright
