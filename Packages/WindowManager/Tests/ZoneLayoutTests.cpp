#include "TestHelperProcess.h"

#include <WindowManager/ZoneLayout.h>

#include <gtest/gtest.h>
#include <set>

using namespace tilewright;
using namespace Qt::StringLiterals;

namespace {

struct Place {
    QString name;
    double x, y, width, height;
};

void expectPreset(const ZoneLayout& layout, const QString& id, const QString& name,
                  const QString& symbol, const std::vector<Place>& places) {
    EXPECT_EQ(layout.id.toString(QUuid::WithoutBraces), id);
    EXPECT_EQ(layout.name, name);
    EXPECT_EQ(layout.systemImage, symbol);
    EXPECT_TRUE(layout.isBuiltIn);
    ASSERT_EQ(layout.zones.size(), places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Zone& zone = layout.zones[i];
        EXPECT_EQ(zone, (Zone{zone.id, places[i].name, places[i].x, places[i].y, places[i].width,
                              places[i].height}));
    }
}

QString nameAt(const ZoneLayout& layout, double x, double y) {
    const auto zone = layout.zoneAtNormalized({x, y});
    return zone ? zone->name : u"none"_s;
}

ZoneLayout layoutOf(std::vector<Zone> zones) {
    return {QUuid::createUuid(), u"Layout"_s, u"symbol"_s, false, std::move(zones)};
}

Zone zoneAt(const QString& name, double x, double y, double width, double height) {
    return {QUuid::createUuid(), name, x, y, width, height};
}

std::vector<QString> zoneIDs() {
    std::vector<QString> ids;
    for (const ZoneLayout& layout : ZoneLayout::builtIns()) {
        for (const Zone& zone : layout.zones)
            ids.push_back(zone.id.toString(QUuid::WithoutBraces));
    }
    return ids;
}

} // namespace

TEST(ZoneLayout, HasThePresetHalves) {
    expectPreset(ZoneLayout::halves(), u"00000000-0000-0000-0000-000000000001"_s, u"Halves"_s,
                 u"rectangle.split.2x1"_s,
                 {{u"Left"_s, 0, 0, 0.5, 1}, {u"Right"_s, 0.5, 0, 0.5, 1}});
}

TEST(ZoneLayout, HasThePresetThirds) {
    expectPreset(ZoneLayout::thirds(), u"00000000-0000-0000-0000-000000000002"_s, u"Thirds"_s,
                 u"rectangle.split.3x1"_s,
                 {{u"Left"_s, 0, 0, 1.0 / 3, 1},
                  {u"Center"_s, 1.0 / 3, 0, 1.0 / 3, 1},
                  {u"Right"_s, 2.0 / 3, 0, 1.0 / 3, 1}});
}

TEST(ZoneLayout, HasThePresetQuadrants) {
    expectPreset(ZoneLayout::quadrants(), u"00000000-0000-0000-0000-000000000003"_s, u"Quadrants"_s,
                 u"square.grid.2x2"_s,
                 {{u"Top Left"_s, 0, 0, 0.5, 0.5},
                  {u"Top Right"_s, 0.5, 0, 0.5, 0.5},
                  {u"Bottom Left"_s, 0, 0.5, 0.5, 0.5},
                  {u"Bottom Right"_s, 0.5, 0.5, 0.5, 0.5}});
}

TEST(ZoneLayout, HasThePresetPriorityCenter) {
    expectPreset(ZoneLayout::priorityCenter(), u"00000000-0000-0000-0000-000000000004"_s,
                 u"Priority Center"_s, u"rectangle.center.inset.filled"_s,
                 {{u"Left"_s, 0, 0, 0.25, 1},
                  {u"Center"_s, 0.25, 0, 0.5, 1},
                  {u"Right"_s, 0.75, 0, 0.25, 1}});
}

TEST(ZoneLayout, HasThePresetBentoBox) {
    expectPreset(ZoneLayout::bentoBox(), u"00000000-0000-0000-0000-000000000005"_s, u"Bento Box"_s,
                 u"square.grid.3x3.square"_s,
                 {{u"Primary"_s, 0, 0, 0.62, 1},
                  {u"Top Right"_s, 0.62, 0, 0.38, 0.55},
                  {u"Mid Right"_s, 0.62, 0.55, 0.19, 0.45},
                  {u"Bottom Right"_s, 0.81, 0.55, 0.19, 0.45}});
}

TEST(ZoneLayout, ListsTheBuiltInsInTheirOrder) {
    EXPECT_EQ(ZoneLayout::builtIns(),
              (std::vector<ZoneLayout>{ZoneLayout::halves(), ZoneLayout::thirds(),
                                       ZoneLayout::quadrants(), ZoneLayout::priorityCenter(),
                                       ZoneLayout::bentoBox()}));
}

TEST(ZoneLayout, GivesBuiltInZonesIdsThatAreDistinctAndStableWithinARun) {
    const auto ids = zoneIDs();
    EXPECT_EQ(zoneIDs(), ids);
    EXPECT_EQ(std::set<QString>(ids.begin(), ids.end()).size(), 16U);
}

TEST(ZoneLayout, GivesBuiltInZonesFreshIdsInEachRunButKeepsTheLayouts) {
    const auto here = zoneIDs();
    const QStringList first = runTestHelper({u"built-ins"_s}).lines;
    const QStringList second = runTestHelper({u"built-ins"_s}).lines;
    // Five layouts, then the zones of all of them.
    ASSERT_EQ(first.size(), 5 + 16);
    ASSERT_EQ(second.size(), 5 + 16);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(first[i], QStringLiteral("00000000-0000-0000-0000-00000000000%1").arg(i + 1));
        EXPECT_EQ(second[i], first[i]);
    }
    std::set<QString> zones(here.begin(), here.end());
    for (int i = 5; i < 21; ++i) {
        zones.insert(first[i]);
        zones.insert(second[i]);
    }
    EXPECT_EQ(zones.size(), 3U * 16U);
}

TEST(ZoneLayout, EqualsFieldByField) {
    const ZoneLayout layout = ZoneLayout::halves();
    ZoneLayout other = layout;
    EXPECT_EQ(layout, other);
    other.id = QUuid::createUuid();
    EXPECT_NE(layout, other);
    other = layout;
    other.name = u"Other"_s;
    EXPECT_NE(layout, other);
    other = layout;
    other.systemImage = u"other"_s;
    EXPECT_NE(layout, other);
    other = layout;
    other.isBuiltIn = false;
    EXPECT_NE(layout, other);
    other = layout;
    other.zones.pop_back();
    EXPECT_NE(layout, other);
}

TEST(ZoneLayout, DiffersFromOneWithTheSameZonesInAnotherOrder) {
    ZoneLayout other = ZoneLayout::halves();
    std::swap(other.zones[0], other.zones[1]);
    EXPECT_NE(ZoneLayout::halves(), other);
}

TEST(ZoneLayout, FindsTheZoneUnderAPoint) {
    EXPECT_EQ(nameAt(ZoneLayout::quadrants(), 0.2, 0.2), u"Top Left"_s);
    EXPECT_EQ(nameAt(ZoneLayout::quadrants(), 0.8, 0.2), u"Top Right"_s);
    EXPECT_EQ(nameAt(ZoneLayout::quadrants(), 0.2, 0.8), u"Bottom Left"_s);
    EXPECT_EQ(nameAt(ZoneLayout::bentoBox(), 0.7, 0.9), u"Mid Right"_s);
}

TEST(ZoneLayout, WithoutZonesHasNoneUnderAnyPoint) {
    EXPECT_EQ(layoutOf({}).zoneAtNormalized({0.5, 0.5}), std::nullopt);
}

TEST(ZoneLayout, GivesASharedEdgeToTheLaterZone) {
    EXPECT_EQ(nameAt(ZoneLayout::halves(), 0.5, 0.3), u"Right"_s);
    EXPECT_EQ(nameAt(ZoneLayout::quadrants(), 0.5, 0.5), u"Bottom Right"_s);
}

TEST(ZoneLayout, PrefersTheLaterOfOverlappingZones) {
    const auto layout =
        layoutOf({zoneAt(u"below"_s, 0, 0, 1, 1), zoneAt(u"above"_s, 0.2, 0.2, 0.2, 0.2)});
    EXPECT_EQ(nameAt(layout, 0.3, 0.3), u"above"_s);
    EXPECT_EQ(nameAt(layout, 0.5, 0.5), u"below"_s);
}

TEST(ZoneLayout, IncludesAllFourEdgesOfAZone) {
    const auto layout = layoutOf({zoneAt(u"zone"_s, 0.25, 0.25, 0.5, 0.5)});
    for (const double x : {0.25, 0.75}) {
        for (const double y : {0.25, 0.75})
            EXPECT_EQ(nameAt(layout, x, y), u"zone"_s);
    }
    EXPECT_EQ(nameAt(layout, 0.25 - 1e-9, 0.5), u"none"_s);
    EXPECT_EQ(nameAt(layout, 0.75 + 1e-9, 0.5), u"none"_s);
    EXPECT_EQ(nameAt(layout, 0.5, 0.25 - 1e-9), u"none"_s);
    EXPECT_EQ(nameAt(layout, 0.5, 0.75 + 1e-9), u"none"_s);
    EXPECT_EQ(nameAt(ZoneLayout::quadrants(), 1, 1), u"Bottom Right"_s);
    EXPECT_EQ(nameAt(ZoneLayout::halves(), 1.0000001, 0.5), u"none"_s);
}

TEST(ZoneLayout, HasNoZoneInAGap) {
    const auto layout = layoutOf({zoneAt(u"a"_s, 0, 0, 0.3, 1), zoneAt(u"b"_s, 0.7, 0, 0.3, 1)});
    EXPECT_EQ(nameAt(layout, 0.5, 0.5), u"none"_s);
}

TEST(ZoneLayout, FindsNothingInZonesOfNegativeSize) {
    const auto layout =
        layoutOf({zoneAt(u"narrow"_s, 0.5, 0, -0.5, 1), zoneAt(u"low"_s, 0, 0.5, 1, -0.5)});
    for (const double at : {0.0, 0.25, 0.5})
        EXPECT_EQ(nameAt(layout, at, at), u"none"_s);
}

TEST(ZoneLayout, FindsAZoneOfNoSizeAtItsPointOnly) {
    const auto layout = layoutOf({zoneAt(u"dot"_s, 0.5, 0.5, 0, 0)});
    EXPECT_EQ(nameAt(layout, 0.5, 0.5), u"dot"_s);
    EXPECT_EQ(nameAt(layout, 0.5, 0.5000001), u"none"_s);
}

TEST(ZoneLayout, FindsNothingAtAPointThatIsNoNumber) {
    EXPECT_EQ(nameAt(ZoneLayout::halves(), std::nan(""), 0.5), u"none"_s);
    EXPECT_EQ(nameAt(ZoneLayout::halves(), 0.5, std::nan("")), u"none"_s);
}
