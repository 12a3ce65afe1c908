#include "WrappingRow.h"

#include "Look.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace tilewright {

namespace {

constexpr int spacing = look::defaultSpacing;

} // namespace

WrappingRow::WrappingRow(std::vector<QWidget*> leading, std::vector<QWidget*> trailing,
                         Trailing cohesion, QWidget* stretching)
    : leading_(std::move(leading))
    , trailing_(std::move(trailing))
    , cohesion_(cohesion)
    , stretching_(stretching) {}

int WrappingRow::leastWidthOf(const QWidget& widget) const {
    return &widget == stretching_ ? widget.minimumSizeHint().width() : widget.sizeHint().width();
}

int WrappingRow::trailingWidth() const {
    int width = 0;
    for (const QWidget* widget : trailing_) {
        if (!widget->isHidden())
            width += (width > 0 ? spacing : 0) + leastWidthOf(*widget);
    }
    return width;
}

std::vector<WrappingRow::Line> WrappingRow::linesFor(int width) const {
    std::vector<Line> lines(1);
    // Whether `wanted` is too wide for what is left of the last line.
    const auto overflows = [&](int wanted) {
        return !lines.back().items.empty() && lines.back().width + spacing + wanted > width;
    };
    const auto add = [&](QWidget* widget, bool isTrailing, bool mayBreak) {
        if (widget->isHidden())
            return;
        const QSize hint = widget->sizeHint();
        const int least = leastWidthOf(*widget);
        if (mayBreak && overflows(least))
            lines.emplace_back();
        Line* line = &lines.back();
        line->width += (line->items.empty() ? 0 : spacing) + least;
        line->height = std::max(line->height, hint.height());
        line->items.push_back({widget, isTrailing, {least, hint.height()}});
    };
    for (QWidget* widget : leading_)
        add(widget, false, true);
    if (cohesion_ == Trailing::together && overflows(trailingWidth()))
        lines.emplace_back();
    for (QWidget* widget : trailing_)
        add(widget, true, cohesion_ == Trailing::separable);
    for (Line& line : lines) {
        for (Item& item : line.items) {
            if (item.widget != stretching_)
                continue;
            const int more =
                std::clamp(width - line.width, 0,
                           std::max(0, item.widget->sizeHint().width() - item.size.width()));
            item.size.rwidth() += more;
            line.width += more;
        }
    }
    return lines;
}

int WrappingRow::arrange(const QRect& area) const {
    int y = area.top();
    for (const Line& line : linesFor(area.width())) {
        if (line.items.empty())
            continue;
        int x = area.left();
        bool isAtTrailingEnd = false;
        for (const Item& item : line.items) {
            if (item.isTrailing && !isAtTrailingEnd) {
                isAtTrailingEnd = true;
                x += std::max(0, area.width() - line.width);
            }
            const QRect place(x, y + ((line.height - item.size.height()) / 2), item.size.width(),
                              item.size.height());
            item.widget->setGeometry(
                QStyle::visualRect(item.widget->layoutDirection(), area, place));
            x += item.size.width() + spacing;
        }
        y += line.height + spacing;
    }
    return std::max(0, y - spacing - area.top());
}

int WrappingRow::heightFor(int width) const {
    int height = 0;
    for (const Line& line : linesFor(width)) {
        if (!line.items.empty())
            height += line.height + (height > 0 ? spacing : 0);
    }
    return height;
}

int WrappingRow::minimumWidth() const {
    int width = 0;
    for (const Line& line : linesFor(0))
        width = std::max(width, line.width);
    return width;
}

} // namespace tilewright
