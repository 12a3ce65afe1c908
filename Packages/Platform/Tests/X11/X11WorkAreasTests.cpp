#include <X11/X11WorkAreas.h>

#include <array>
#include <cstdint>
#include <gtest/gtest.h>

using namespace tilewright;

namespace {

const QRect left(0, 0, 1920, 1080);
const QRect right(1920, 0, 1920, 1080);
const QSize both(3840, 1080);

std::vector<QRect> areasWith(const std::vector<X11Strut>& struts) {
    X11WorkAreaHints hints;
    hints.struts = struts;
    return visibleAreas({left, right}, both, hints);
}

} // namespace

TEST(X11WorkAreas, LeavesWholeMonitorsWithoutPanels) {
    EXPECT_EQ(areasWith({}), (std::vector<QRect>{left, right}));
}

TEST(X11WorkAreas, TakesATopPanelFromItsMonitorOnly) {
    EXPECT_EQ(areasWith({{X11Strut::Edge::top, 30, 1920, 3839}}),
              (std::vector<QRect>{left, right.adjusted(0, 30, 0, 0)}));
}

TEST(X11WorkAreas, TakesAPanelThatSpansBothFromBoth) {
    EXPECT_EQ(areasWith({{X11Strut::Edge::bottom, 40, 0, 3839}}),
              (std::vector<QRect>{left.adjusted(0, 0, 0, -40), right.adjusted(0, 0, 0, -40)}));
}

TEST(X11WorkAreas, TakesAPanelOnAnInnerEdgeFromTheMonitorItIsOn) {
    EXPECT_EQ(areasWith({{X11Strut::Edge::left, 1920 + 48, 0, 1079}}),
              (std::vector<QRect>{left, right.adjusted(48, 0, 0, 0)}));
    EXPECT_EQ(areasWith({{X11Strut::Edge::right, 1920 + 48, 0, 1079}}),
              (std::vector<QRect>{left.adjusted(0, 0, -48, 0), right}));
}

TEST(X11WorkAreas, TakesPanelsOnTheInnerEdgesOfStackedMonitors) {
    const QRect upper(0, 0, 1920, 1080);
    const QRect lower(0, 1080, 1920, 1080);
    X11WorkAreaHints hints;
    hints.struts = {{X11Strut::Edge::top, 1080 + 24, 0, 1919},
                    {X11Strut::Edge::bottom, 1080 + 36, 0, 1919}};
    EXPECT_EQ(visibleAreas({upper, lower}, {1920, 2160}, hints),
              (std::vector<QRect>{upper.adjusted(0, 0, 0, -36), lower.adjusted(0, 24, 0, 0)}));
}

TEST(X11WorkAreas, MeasuresFromTheScreensEdgeForAMonitorThatStandsOff) {
    const QRect low(1920, 200, 1280, 800);
    X11WorkAreaHints hints;
    hints.struts = {{X11Strut::Edge::top, 230, 1920, 3199}};
    EXPECT_EQ(visibleAreas({left, low}, {3200, 1080}, hints),
              (std::vector<QRect>{left, low.adjusted(0, 30, 0, 0)}));
}

TEST(X11WorkAreas, BelievesTheAreasPerMonitorBeforeStruts) {
    X11WorkAreaHints hints;
    hints.perMonitor = {left.adjusted(0, 27, 0, 0), right};
    hints.struts = {{X11Strut::Edge::top, 99, 0, 3839}};
    EXPECT_EQ(visibleAreas({left, right}, both, hints),
              (std::vector<QRect>{left.adjusted(0, 27, 0, 0), right}));
}

TEST(X11WorkAreas, LooksToTheCommonAreaWithASingleMonitorOnly) {
    X11WorkAreaHints hints;
    hints.together = QRect(0, 0, 1920, 1054);
    EXPECT_EQ(visibleAreas({left}, left.size(), hints).front(), QRect(0, 0, 1920, 1054));
    EXPECT_EQ(visibleAreas({left, right}, both, hints), (std::vector<QRect>{left, right}));
}

TEST(X11WorkAreas, TakesWhatWouldLeaveNothingForAMistake) {
    X11WorkAreaHints hints;
    hints.together = QRect(5000, 5000, 10, 10);
    EXPECT_EQ(visibleAreas({left}, left.size(), hints).front(), left);
    EXPECT_EQ(areasWith({{X11Strut::Edge::top, 60000, 0, 3839}}),
              (std::vector<QRect>{left, right}));
}

TEST(X11WorkAreas, ReadsPartialStrutsBeforeWholeOnes) {
    const std::vector<std::uint32_t> partial{0, 0, 30, 0, 0, 0, 0, 0, 1920, 3839, 0, 0};
    const std::vector<std::uint32_t> whole{0, 0, 30, 0};
    EXPECT_EQ(strutsFrom(partial, whole, both),
              (std::vector<X11Strut>{{X11Strut::Edge::top, 30, 1920, 3839}}));
    EXPECT_EQ(strutsFrom({}, whole, both),
              (std::vector<X11Strut>{{X11Strut::Edge::top, 30, 0, 3839}}));
    EXPECT_TRUE(strutsFrom({}, {1, 2}, both).empty());
}

TEST(X11WorkAreas, ReadsAreasInTheirOrder) {
    const std::vector<std::uint32_t> items{0, 30, 1920, 1050, 5, 6, 7, 8, 9};
    EXPECT_EQ(workAreaAt(items, 0), QRect(0, 30, 1920, 1050));
    EXPECT_EQ(workAreaAt(items, 1), QRect(5, 6, 7, 8));
    EXPECT_EQ(workAreaAt(items, 2), std::nullopt);
    EXPECT_EQ(workAreaAt(items, SIZE_MAX), std::nullopt);
}

TEST(X11WorkAreas, CutsNumbersBeyondAnyScreen) {
    for (const std::uint32_t extreme : {65536U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
        EXPECT_EQ(workAreaAt({extreme, extreme, extreme, extreme}, 0),
                  QRect(65535, 65535, 65535, 65535));
        for (std::size_t place = 0; place < 4; ++place) {
            std::vector<std::uint32_t> items{0, 0, 1920, 1080};
            items[place] = extreme;
            X11WorkAreaHints hints;
            hints.together = workAreaAt(items, 0);
            EXPECT_EQ(visibleAreas({left}, left.size(), hints), std::vector<QRect>{left});
        }
    }
}

TEST(X11WorkAreas, LeavesEveryMonitorWithinItselfWhateverStrutsSay) {
    constexpr std::array extremes{0U,     1U,          1080U,       1920U,      32767U,
                                  65536U, 0x7fffffffU, 0x80000000U, 0xffffffffU};
    for (std::size_t place = 0; place < 12; ++place) {
        for (const std::uint32_t extreme : extremes) {
            for (const std::uint32_t others : extremes) {
                std::vector<std::uint32_t> partial(12, others);
                partial[place] = extreme;
                for (const auto& struts :
                     {strutsFrom(partial, {}, both),
                      strutsFrom({}, {partial[0], partial[1], partial[2], partial[3]}, both)}) {
                    const auto areas = areasWith(struts);
                    EXPECT_TRUE(!areas[0].isEmpty() && left.contains(areas[0]));
                    EXPECT_TRUE(!areas[1].isEmpty() && right.contains(areas[1]));
                }
            }
        }
    }
}
