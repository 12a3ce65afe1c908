#include "X11WorkAreas.h"

#include <algorithm>
#include <array>

namespace tilewright {
namespace {

constexpr std::array edges{X11Strut::Edge::left, X11Strut::Edge::right, X11Strut::Edge::top,
                           X11Strut::Edge::bottom};

/// X screens are measured in 16 bits. Whoever says more, in whatever property, says nothing.
int bounded(std::uint32_t value) {
    return static_cast<int>(std::min<std::uint32_t>(value, 65535));
}

/// Panels reserve from the edges of the whole X screen. One that sits on an inner edge, between two
/// monitors, thereby seems to reserve all of the monitor behind it: it means the one in which its
/// strip ends.
QRect without(QRect area, const QRect& monitor, const X11Strut& strut, QSize screen) {
    const bool isVertical =
        strut.edge == X11Strut::Edge::left || strut.edge == X11Strut::Edge::right;
    const int from = isVertical ? monitor.top() : monitor.left();
    const int to = isVertical ? monitor.bottom() : monitor.right();
    if (strut.end < from || strut.start > to)
        return area;
    const auto endsInside = [](int edge, int first, int last) {
        return edge > first && edge <= last;
    };
    switch (strut.edge) {
    case X11Strut::Edge::left:
        if (endsInside(strut.thickness, monitor.left(), monitor.right()))
            area.setLeft(std::max(area.left(), strut.thickness));
        break;
    case X11Strut::Edge::top:
        if (endsInside(strut.thickness, monitor.top(), monitor.bottom()))
            area.setTop(std::max(area.top(), strut.thickness));
        break;
    case X11Strut::Edge::right: {
        const int edge = screen.width() - strut.thickness;
        if (endsInside(edge, monitor.left(), monitor.right()))
            area.setRight(std::min(area.right(), edge - 1));
        break;
    }
    case X11Strut::Edge::bottom: {
        const int edge = screen.height() - strut.thickness;
        if (endsInside(edge, monitor.top(), monitor.bottom()))
            area.setBottom(std::min(area.bottom(), edge - 1));
        break;
    }
    }
    return area;
}

} // namespace

std::optional<QRect> workAreaAt(const std::vector<std::uint32_t>& items, std::size_t index) {
    constexpr std::size_t numbers = 4;
    if (items.size() / numbers <= index)
        return std::nullopt;
    const auto at = [&](std::size_t i) { return bounded(items[numbers * index + i]); };
    return QRect(at(0), at(1), at(2), at(3));
}

std::vector<X11Strut> strutsFrom(const std::vector<std::uint32_t>& partial,
                                 const std::vector<std::uint32_t>& whole, QSize screen) {
    const bool isPartial = partial.size() >= 12;
    const std::vector<std::uint32_t>& items = isPartial ? partial : whole;
    std::vector<X11Strut> struts;
    if (items.size() < 4)
        return struts;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (items[i] == 0)
            continue;
        X11Strut strut{edges[i], bounded(items[i]), 0, 0};
        strut.end = (i < 2 ? screen.height() : screen.width()) - 1;
        if (isPartial) {
            strut.start = bounded(items[4 + 2 * i]);
            strut.end = bounded(items[5 + 2 * i]);
        }
        struts.push_back(strut);
    }
    return struts;
}

std::vector<QRect> visibleAreas(const std::vector<QRect>& monitors, QSize screen,
                                const X11WorkAreaHints& hints) {
    std::vector<QRect> areas;
    areas.reserve(monitors.size());
    for (const QRect& monitor : monitors) {
        const auto told =
            std::find_if(hints.perMonitor.begin(), hints.perMonitor.end(), [&](const QRect& area) {
                return !area.isEmpty() && monitor.contains(area);
            });
        QRect area = monitor;
        if (told != hints.perMonitor.end()) {
            area = *told;
        } else {
            for (const X11Strut& strut : hints.struts)
                area = without(area, monitor, strut, screen);
            // Some panels are a part of the window manager and have no strut. With several
            // monitors the one rectangle for all says nothing about each.
            if (monitors.size() == 1 && hints.together)
                area = area.intersected(*hints.together);
        }
        areas.push_back(area.isEmpty() ? monitor : area);
    }
    return areas;
}

} // namespace tilewright
