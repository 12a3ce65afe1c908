#include "OverlayFixture.h"

using namespace tilewright;
using namespace tilewright::testing;

TEST(SnapOverlayModel, HoldsWhatItWasCreatedWith) {
    const ZoneLayout layout = makeLayout({makeZone(0, 0, 1, 1)});
    const SnapOverlayModel model(layout, layout.zones[0].id);
    EXPECT_EQ(model.layout(), layout);
    EXPECT_EQ(model.highlightedZoneID(), layout.zones[0].id);
}

TEST(SnapOverlayModel, AnnouncesEachAssignmentBeforeItHappens) {
    const ZoneLayout first = makeLayout({});
    const ZoneLayout second = makeLayout({makeZone(0, 0, 1, 1)});
    SnapOverlayModel model(first, std::nullopt);
    std::vector<std::pair<ZoneLayout, std::optional<QUuid>>> seen;
    QObject::connect(&model, &ObservableObject::objectWillChange, &model,
                     [&] { seen.emplace_back(model.layout(), model.highlightedZoneID()); });
    model.setLayout(second);
    model.setHighlightedZoneID(second.zones[0].id);
    model.setHighlightedZoneID(second.zones[0].id);
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_EQ(seen[0].first, first);
    EXPECT_EQ(seen[1].first, second);
    EXPECT_EQ(seen[1].second, std::nullopt);
    EXPECT_EQ(seen[2].second, second.zones[0].id);
}
