#include "ZoneEditorGeometry.h"

#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

/// The zone's extent along one axis, so that one set of rules serves both.
struct Span {
    double start;
    double size;

    [[nodiscard]] double end() const { return start + size; }
};

Span columns(const Zone& zone) {
    return {zone.x, zone.width};
}

Span rows(const Zone& zone) {
    return {zone.y, zone.height};
}

bool overlaps(Span span, Span other, double eps) {
    return span.start < other.end() - eps && other.start + eps < span.end();
}

/// Not std::clamp: a zone wider than the canvas makes the upper bound the smaller one, and then the
/// upper bound wins.
double clampedInside(double value, double size) {
    return std::min(std::max(0.0, value), 1 - size);
}

/// `position` held back by a neighbour that lies ahead of where the move began.
double stoppedAt(Span neighbour, Span start, double delta, double position, double eps) {
    if (delta > 0 && neighbour.start + eps >= start.end())
        return std::min(position, neighbour.start - start.size);
    if (delta < 0 && neighbour.end() - eps <= start.start)
        return std::max(position, neighbour.end());
    return position;
}

std::vector<double> lines(const std::vector<Zone>& zones, Span (*span)(const Zone&)) {
    std::vector<double> result{0.0, 1.0};
    result.reserve(2 + 2 * zones.size());
    for (const Zone& zone : zones) {
        result.push_back(span(zone).start);
        result.push_back(span(zone).end());
    }
    return result;
}

/// Two opposite edges of a zone, one of which a corner's drag moves.
struct Edges {
    double start;
    double end;
    bool movesStart;

    [[nodiscard]] double& moving() { return movesStart ? start : end; }

    void drag(double delta) {
        moving() += delta;
        start = std::clamp(start, 0.0, 1.0);
        end = std::clamp(end, 0.0, 1.0);
    }

    void stopAt(Span neighbour, Span origin, double eps) {
        if (movesStart && neighbour.end() <= origin.start + eps)
            start = std::max(start, neighbour.end());
        if (!movesStart && neighbour.start >= origin.end() - eps)
            end = std::min(end, neighbour.start);
    }

    void keepSize(double minSize) {
        if (!(end - start < minSize))
            return;
        if (movesStart)
            start = end - minSize;
        else
            end = start + minSize;
    }
};

double nearestLine(double edge, const std::vector<double>& lines, double threshold) {
    double best = edge;
    double bestDistance = threshold;
    for (const double line : lines) {
        const double distance = std::abs(line - edge);
        if (distance < bestDistance) {
            best = line;
            bestDistance = distance;
        }
    }
    return best;
}

} // namespace

std::vector<double> ZoneEditorGeometry::verticalLines() const {
    return lines(others, columns);
}

std::vector<double> ZoneEditorGeometry::horizontalLines() const {
    return lines(others, rows);
}

double ZoneEditorGeometry::snapEdge(double value, double span,
                                    const std::vector<double>& lines) const {
    if (!snapToEdges)
        return value;
    double best = value;
    double bestDistance = snapThreshold;
    for (const double line : lines) {
        const double leading = std::abs(line - value);
        if (leading < bestDistance) {
            best = line;
            bestDistance = leading;
        }
        const double trailing = std::abs(line - (value + span));
        if (trailing < bestDistance) {
            best = line - span;
            bestDistance = trailing;
        }
    }
    return best;
}

Zone ZoneEditorGeometry::moved(const Zone& start, double dx, double dy) const {
    double x = clampedInside(start.x + dx, start.width);
    x = clampedInside(snapEdge(x, start.width, verticalLines()), start.width);
    for (const Zone& other : others) {
        if (overlaps(rows(start), rows(other), eps))
            x = stoppedAt(columns(other), columns(start), dx, x, eps);
    }

    // The vertical pass looks at the columns reached by the horizontal one: that lets a zone slide
    // along a neighbour's side.
    const Span newColumns{x, start.width};
    double y = clampedInside(start.y + dy, start.height);
    y = clampedInside(snapEdge(y, start.height, horizontalLines()), start.height);
    for (const Zone& other : others) {
        if (overlaps(newColumns, columns(other), eps))
            y = stoppedAt(rows(other), rows(start), dy, y, eps);
    }

    Zone result = start;
    result.x = std::max(0.0, x);
    result.y = std::max(0.0, y);
    return result;
}

Zone ZoneEditorGeometry::resized(const Zone& start, Corner corner, double dx, double dy) const {
    const bool movesLeft = corner == Corner::topLeft || corner == Corner::bottomLeft;
    const bool movesTop = corner == Corner::topLeft || corner == Corner::topRight;
    Edges horizontal{start.x, columns(start).end(), movesLeft};
    Edges vertical{start.y, rows(start).end(), movesTop};

    horizontal.drag(dx);
    vertical.drag(dy);
    if (snapToEdges) {
        horizontal.moving() = nearestLine(horizontal.moving(), verticalLines(), snapThreshold);
        vertical.moving() = nearestLine(vertical.moving(), horizontalLines(), snapThreshold);
    }
    // Unlike moving, both passes look at where the zone started.
    for (const Zone& other : others) {
        if (overlaps(rows(start), rows(other), eps))
            horizontal.stopAt(columns(other), columns(start), eps);
        if (overlaps(columns(start), columns(other), eps))
            vertical.stopAt(rows(other), rows(start), eps);
    }
    // Last, and not clamped again: the minimum size wins over the canvas edge.
    horizontal.keepSize(minSize);
    vertical.keepSize(minSize);

    Zone result = start;
    result.x = horizontal.start;
    result.y = vertical.start;
    result.width = horizontal.end - horizontal.start;
    result.height = vertical.end - vertical.start;
    return result;
}

QString ZoneEditorGeometry::pct(double value) {
    // Adding zero turns a rounded-away negative into plain zero, which would print as "-0".
    return QString::number(std::round(value * 100) + 0.0, 'f', 0) + u'%';
}

} // namespace tilewright
