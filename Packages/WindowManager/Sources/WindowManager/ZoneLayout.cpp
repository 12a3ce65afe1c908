#include "ZoneLayout.h"

#include <algorithm>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

bool contains(const Zone& zone, NormalizedPoint point) {
    return zone.x <= point.x && point.x <= zone.x + zone.width && zone.y <= point.y &&
           point.y <= zone.y + zone.height;
}

Zone freshZone(const QString& name, double x, double y, double width, double height) {
    return {QUuid::createUuid(), name, x, y, width, height};
}

// Written out, so that every build has the very same numbers.
constexpr double oneThird = 0.3333333333333333;
constexpr double twoThirds = 0.6666666666666666;

} // namespace

std::optional<Zone> ZoneLayout::zoneAtNormalized(NormalizedPoint point) const {
    const auto found = std::find_if(zones.rbegin(), zones.rend(),
                                    [&](const Zone& zone) { return contains(zone, point); });
    return found == zones.rend() ? std::nullopt : std::optional(*found);
}

const ZoneLayout& ZoneLayout::halves() {
    static const ZoneLayout layout{QUuid::fromString(u"00000000-0000-0000-0000-000000000001"_s),
                                   u"Halves"_s,
                                   u"rectangle.split.2x1"_s,
                                   true,
                                   {freshZone(u"Left"_s, 0, 0, 0.5, 1), //
                                    freshZone(u"Right"_s, 0.5, 0, 0.5, 1)}};
    return layout;
}

const ZoneLayout& ZoneLayout::thirds() {
    static const ZoneLayout layout{QUuid::fromString(u"00000000-0000-0000-0000-000000000002"_s),
                                   u"Thirds"_s,
                                   u"rectangle.split.3x1"_s,
                                   true,
                                   {freshZone(u"Left"_s, 0, 0, oneThird, 1),
                                    freshZone(u"Center"_s, oneThird, 0, oneThird, 1),
                                    freshZone(u"Right"_s, twoThirds, 0, oneThird, 1)}};
    return layout;
}

const ZoneLayout& ZoneLayout::quadrants() {
    static const ZoneLayout layout{QUuid::fromString(u"00000000-0000-0000-0000-000000000003"_s),
                                   u"Quadrants"_s,
                                   u"square.grid.2x2"_s,
                                   true,
                                   {freshZone(u"Top Left"_s, 0, 0, 0.5, 0.5),
                                    freshZone(u"Top Right"_s, 0.5, 0, 0.5, 0.5),
                                    freshZone(u"Bottom Left"_s, 0, 0.5, 0.5, 0.5),
                                    freshZone(u"Bottom Right"_s, 0.5, 0.5, 0.5, 0.5)}};
    return layout;
}

const ZoneLayout& ZoneLayout::priorityCenter() {
    static const ZoneLayout layout{QUuid::fromString(u"00000000-0000-0000-0000-000000000004"_s),
                                   u"Priority Center"_s,
                                   u"rectangle.center.inset.filled"_s,
                                   true,
                                   {freshZone(u"Left"_s, 0, 0, 0.25, 1),
                                    freshZone(u"Center"_s, 0.25, 0, 0.5, 1),
                                    freshZone(u"Right"_s, 0.75, 0, 0.25, 1)}};
    return layout;
}

const ZoneLayout& ZoneLayout::bentoBox() {
    static const ZoneLayout layout{QUuid::fromString(u"00000000-0000-0000-0000-000000000005"_s),
                                   u"Bento Box"_s,
                                   u"square.grid.3x3.square"_s,
                                   true,
                                   {freshZone(u"Primary"_s, 0, 0, 0.62, 1),
                                    freshZone(u"Top Right"_s, 0.62, 0, 0.38, 0.55),
                                    freshZone(u"Mid Right"_s, 0.62, 0.55, 0.19, 0.45),
                                    freshZone(u"Bottom Right"_s, 0.81, 0.55, 0.19, 0.45)}};
    return layout;
}

const std::vector<ZoneLayout>& ZoneLayout::builtIns() {
    static const std::vector<ZoneLayout> layouts{halves(), thirds(), quadrants(), priorityCenter(),
                                                 bentoBox()};
    return layouts;
}

} // namespace tilewright
