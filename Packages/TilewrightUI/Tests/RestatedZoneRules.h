#pragma once

#include <TilewrightUI/ZoneEditorGeometry.h>

#include <cmath>
#include <vector>

/// The editor's rules for moving and resizing once more, written out edge by edge with no shared
/// parts, to compare `ZoneEditorGeometry` with.
namespace tilewright::testing::restated {

struct Rules {
    std::vector<Zone> others;
    bool snapToEdges;
    double minSize = 0.05;
    double snapThreshold = 0.025;
    double eps = 0.0005;
};

inline double snapped(const Rules& rules, double value, double span, bool columns) {
    if (!rules.snapToEdges)
        return value;
    double best = value;
    double bestDistance = rules.snapThreshold;
    const auto consider = [&](double line) {
        if (std::fabs(line - value) < bestDistance) {
            best = line;
            bestDistance = std::fabs(line - value);
        }
        if (std::fabs(line - (value + span)) < bestDistance) {
            best = line - span;
            bestDistance = std::fabs(line - (value + span));
        }
    };
    consider(0.0);
    consider(1.0);
    for (const Zone& o : rules.others) {
        consider(columns ? o.x : o.y);
        consider(columns ? o.x + o.width : o.y + o.height);
    }
    return best;
}

inline double insideCanvas(double value, double size) {
    double result = value;
    if (result < 0)
        result = 0;
    if (result > 1 - size)
        result = 1 - size;
    return result;
}

inline Zone moved(const Rules& rules, const Zone& start, double dx, double dy) {
    const double eps = rules.eps;
    const double w = start.width;
    const double h = start.height;

    double x = insideCanvas(start.x + dx, w);
    x = snapped(rules, x, w, true);
    x = insideCanvas(x, w);
    for (const Zone& o : rules.others) {
        if (!(start.y < o.y + o.height - eps && o.y + eps < start.y + h))
            continue;
        if (dx > 0 && o.x + eps >= start.x + w) {
            if (o.x - w < x)
                x = o.x - w;
        } else if (dx < 0 && o.x + o.width - eps <= start.x) {
            if (o.x + o.width > x)
                x = o.x + o.width;
        }
    }

    double y = insideCanvas(start.y + dy, h);
    y = snapped(rules, y, h, false);
    y = insideCanvas(y, h);
    for (const Zone& o : rules.others) {
        if (!(x < o.x + o.width - eps && o.x + eps < x + w))
            continue;
        if (dy > 0 && o.y + eps >= start.y + h) {
            if (o.y - h < y)
                y = o.y - h;
        } else if (dy < 0 && o.y + o.height - eps <= start.y) {
            if (o.y + o.height > y)
                y = o.y + o.height;
        }
    }

    return {start.id, start.name, x < 0 ? 0 : x, y < 0 ? 0 : y, w, h};
}

inline double snappedEdge(const Rules& rules, double edge, bool columns) {
    double best = edge;
    double bestDistance = rules.snapThreshold;
    std::vector<double> lines{0, 1};
    for (const Zone& o : rules.others) {
        lines.push_back(columns ? o.x : o.y);
        lines.push_back(columns ? o.x + o.width : o.y + o.height);
    }
    for (std::size_t index = 0; index < lines.size(); ++index) {
        if (std::fabs(lines[index] - edge) < bestDistance) {
            best = lines[index];
            bestDistance = std::fabs(lines[index] - edge);
        }
    }
    return best;
}

inline double unit(double value) {
    return value < 0 ? 0 : (value > 1 ? 1 : value);
}

inline Zone resized(const Rules& rules, const Zone& start, ZoneEditorGeometry::Corner corner,
                    double dx, double dy) {
    using Corner = ZoneEditorGeometry::Corner;
    const double eps = rules.eps;
    const double startRight = start.x + start.width;
    const double startBottom = start.y + start.height;
    const bool left = corner == Corner::topLeft || corner == Corner::bottomLeft;
    const bool top = corner == Corner::topLeft || corner == Corner::topRight;

    double L = start.x;
    double T = start.y;
    double R = startRight;
    double B = startBottom;
    switch (corner) {
    case Corner::topLeft:
        L += dx;
        T += dy;
        break;
    case Corner::topRight:
        R += dx;
        T += dy;
        break;
    case Corner::bottomLeft:
        L += dx;
        B += dy;
        break;
    case Corner::bottomRight:
        R += dx;
        B += dy;
        break;
    }
    L = unit(L);
    T = unit(T);
    R = unit(R);
    B = unit(B);

    if (rules.snapToEdges) {
        if (left)
            L = snappedEdge(rules, L, true);
        else
            R = snappedEdge(rules, R, true);
        if (top)
            T = snappedEdge(rules, T, false);
        else
            B = snappedEdge(rules, B, false);
    }

    for (const Zone& o : rules.others) {
        if (start.y < o.y + o.height - eps && o.y + eps < startBottom) {
            if (left && o.x + o.width <= start.x + eps && o.x + o.width > L)
                L = o.x + o.width;
            if (!left && o.x >= startRight - eps && o.x < R)
                R = o.x;
        }
    }
    for (const Zone& o : rules.others) {
        if (start.x < o.x + o.width - eps && o.x + eps < startRight) {
            if (top && o.y + o.height <= start.y + eps && o.y + o.height > T)
                T = o.y + o.height;
            if (!top && o.y >= startBottom - eps && o.y < B)
                B = o.y;
        }
    }

    if (R - L < rules.minSize) {
        if (left)
            L = R - rules.minSize;
        else
            R = L + rules.minSize;
    }
    if (B - T < rules.minSize) {
        if (top)
            T = B - rules.minSize;
        else
            B = T + rules.minSize;
    }
    return {start.id, start.name, L, T, R - L, B - T};
}

} // namespace tilewright::testing::restated
