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
                         QWidget* stretching)
    : leading_(std::move(leading))
    , trailing_(std::move(trailing))
    , stretching_(stretching) {}

std::vector<WrappingRow::Line> WrappingRow::linesFor(int width) const {
    std::vector<Line> lines(1);
    const auto add = [&](QWidget* widget, bool isTrailing) {
        if (widget->isHidden())
            return;
        const QSize hint = widget->sizeHint();
        const int least = widget == stretching_ ? widget->minimumSizeHint().width() : hint.width();
        Line* line = &lines.back();
        const int gap = line->items.empty() ? 0 : spacing;
        if (!line->items.empty() && line->width + gap + least > width)
            line = &lines.emplace_back();
        line->width += (line->items.empty() ? 0 : spacing) + least;
        line->height = std::max(line->height, hint.height());
        line->items.push_back({widget, isTrailing, {least, hint.height()}});
    };
    for (QWidget* widget : leading_)
        add(widget, false);
    for (QWidget* widget : trailing_)
        add(widget, true);
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
