#include "FakePlatform.h"

#include <TilewrightUI/LayoutEditorModel.h>

#include <gtest/gtest.h>
#include <set>

namespace tilewright {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Toast = LayoutEditorModel::Toast;

class LayoutEditorModelTest : public ::testing::Test {
protected:
    LayoutStore& store() { return LayoutStore::shared(); }
    testing::FakeMainLoop& loop() { return desktop.platform.fakeMainLoop; }

    ZoneLayout saved(const QString& name) {
        const ZoneLayout layout{QUuid::createUuid(), name, u"square.dashed"_s, false,
                                ZoneLayout::halves().zones};
        store().addCustomLayout(layout);
        return layout;
    }
    Toast nameTaken(const QString& name) { return {u"“"_s + name + u"” already exists"_s, true}; }

    testing::FakeDesktop desktop;
    LayoutEditorModel model{LayoutStore::shared(), desktop.platform.mainLoop};
};

TEST_F(LayoutEditorModelTest, StartsWithTheBentoBoxAndNothingEdited) {
    EXPECT_EQ(model.zones(), ZoneLayout::bentoBox().zones);
    EXPECT_EQ(model.selectedID(), std::nullopt);
    EXPECT_EQ(model.layoutName(), u"My Layout"_s);
    EXPECT_TRUE(model.snapToEdges());
    EXPECT_EQ(model.toast(), std::nullopt);
    EXPECT_EQ(model.editingLayoutID(), std::nullopt);
    EXPECT_EQ(LayoutEditorModel::minZoneSize, 0.05);
    EXPECT_TRUE(model.canSave());
    EXPECT_FALSE(model.canDelete());
}

TEST_F(LayoutEditorModelTest, AnnouncesEachChangeBeforeItHappens) {
    int announcements = 0;
    QString nameThen;
    QObject::connect(&model, &ObservableObject::objectWillChange, &model, [&] {
        ++announcements;
        nameThen = model.layoutName();
    });
    model.setLayoutName(u"Other"_s);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(nameThen, u"My Layout"_s);
}

TEST_F(LayoutEditorModelTest, LoadsAPresetUnderFreshIdsAndAPossessiveName) {
    model.select(model.zones()[0].id);
    model.loadPreset(ZoneLayout::halves());
    ASSERT_EQ(model.zones().size(), 2U);
    for (std::size_t index = 0; index < 2; ++index) {
        Zone expected = ZoneLayout::halves().zones[index];
        EXPECT_NE(model.zones()[index].id, expected.id);
        expected.id = model.zones()[index].id;
        EXPECT_EQ(model.zones()[index], expected);
    }
    EXPECT_EQ(model.layoutName(), u"My Halves"_s);
    EXPECT_EQ(model.editingLayoutID(), std::nullopt);
    EXPECT_EQ(model.selectedID(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, LoadsASavedLayoutForEditingAsItIs) {
    const ZoneLayout layout = saved(u"  Grid %1 "_s);
    model.select(model.zones()[0].id);
    model.loadForEditing(layout);
    EXPECT_EQ(model.zones(), layout.zones);
    EXPECT_EQ(model.layoutName(), u"  Grid %1 "_s);
    EXPECT_EQ(model.editingLayoutID(), layout.id);
    EXPECT_EQ(model.selectedID(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, StartsANewLayoutWithItsLeftHalf) {
    model.loadForEditing(saved(u"Grid"_s));
    model.select(model.zones()[0].id);
    model.newLayout();
    ASSERT_EQ(model.zones().size(), 1U);
    const Zone expected{model.zones()[0].id, u"Zone 1"_s, 0, 0, 0.5, 1.0};
    EXPECT_EQ(model.zones()[0], expected);
    EXPECT_FALSE(expected.id.isNull());
    EXPECT_EQ(model.layoutName(), u"My Layout"_s);
    EXPECT_EQ(model.editingLayoutID(), std::nullopt);
    EXPECT_EQ(model.selectedID(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, AddsTheLeftHalfToAnEmptyCanvasThenTheRightHalf) {
    model.loadForEditing({QUuid::createUuid(), u"Empty"_s, u"square.dashed"_s, false, {}});
    model.addZone();
    ASSERT_EQ(model.zones().size(), 1U);
    EXPECT_EQ(model.zones()[0], (Zone{model.zones()[0].id, u"Zone 1"_s, 0, 0, 0.5, 1.0}));
    EXPECT_EQ(model.selectedID(), model.zones()[0].id);

    model.addZone();
    ASSERT_EQ(model.zones().size(), 2U);
    EXPECT_EQ(model.zones()[1].name, u"Zone 2"_s);
    EXPECT_NEAR(model.zones()[1].x, 0.5, 1e-12);
    EXPECT_EQ(model.zones()[1].height, 1.0);
    EXPECT_EQ(model.selectedID(), model.zones()[1].id);
    EXPECT_EQ(model.toast(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, NumbersANewZoneByTheCountEvenIfTheNumberIsInUse) {
    model.newLayout();
    model.addZone();
    model.select(model.zones()[0].id);
    model.deleteSelected();
    model.addZone();
    ASSERT_EQ(model.zones().size(), 2U);
    EXPECT_EQ(model.zones()[0].name, u"Zone 2"_s);
    EXPECT_EQ(model.zones()[1].name, u"Zone 2"_s);
    EXPECT_NE(model.zones()[0].id, model.zones()[1].id);
}

TEST_F(LayoutEditorModelTest, SaysWhenThereIsNoSpaceForAnotherZone) {
    const auto before = model.zones();
    EXPECT_FALSE(model.freeSlot().has_value());
    model.addZone();
    EXPECT_EQ(model.zones(), before);
    EXPECT_EQ(model.selectedID(), std::nullopt);
    EXPECT_EQ(model.toast(), (Toast{u"No space for another zone"_s, true}));
}

TEST_F(LayoutEditorModelTest, DeletesEveryZoneWithTheSelectedIdKeepingTheOrder) {
    const QUuid twice = QUuid::createUuid();
    const Zone first{QUuid::createUuid(), u"A"_s, 0, 0, 0.2, 1};
    const Zone last{QUuid::createUuid(), u"D"_s, 0.6, 0, 0.2, 1};
    model.loadForEditing(
        {QUuid::createUuid(),
         u"Twins"_s,
         u"square.dashed"_s,
         false,
         {first, {twice, u"B"_s, 0.2, 0, 0.2, 1}, {twice, u"C"_s, 0.4, 0, 0.2, 1}, last}});
    model.deleteSelected();
    EXPECT_EQ(model.zones().size(), 4U);
    model.select(twice);
    EXPECT_TRUE(model.canDelete());
    EXPECT_EQ(model.selectedIndex(), 2U);
    model.deleteSelected();
    EXPECT_EQ(model.zones(), (std::vector{first, last}));
    EXPECT_EQ(model.selectedID(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, SavesUnderTheTrimmedNameAndGoesOnEditingWhatItSaved) {
    model.newLayout();
    model.setLayoutName(u"  Grid  "_s);
    model.saveAsNew();
    ASSERT_EQ(store().customLayouts().size(), 1U);
    const ZoneLayout& layout = store().customLayouts()[0];
    EXPECT_EQ(layout.name, u"Grid"_s);
    EXPECT_EQ(layout.systemImage, u"square.dashed"_s);
    EXPECT_FALSE(layout.isBuiltIn);
    EXPECT_EQ(layout.zones, model.zones());
    EXPECT_EQ(model.editingLayoutID(), layout.id);
    EXPECT_EQ(model.layoutName(), u"  Grid  "_s);
    EXPECT_EQ(model.toast(), (Toast{u"Layout saved"_s, false}));
}

TEST_F(LayoutEditorModelTest, RefusesANameThatDiffersInCaseOnly) {
    saved(u"Grid"_s);
    model.setLayoutName(u"\tgrid "_s);
    model.saveAsNew();
    EXPECT_EQ(store().customLayouts().size(), 1U);
    EXPECT_EQ(model.editingLayoutID(), std::nullopt);
    EXPECT_EQ(model.toast(), nameTaken(u"grid"_s));
}

TEST_F(LayoutEditorModelTest, RefusesThePresetsNames) {
    model.setLayoutName(u"bento BOX"_s);
    model.saveAsNew();
    EXPECT_TRUE(store().customLayouts().empty());
    EXPECT_EQ(model.toast(), nameTaken(u"bento BOX"_s));
}

TEST_F(LayoutEditorModelTest, SavesTheSamePresetTwiceUnderTwoNamesWithDifferentZoneIds) {
    model.loadPreset(ZoneLayout::thirds());
    model.update();
    model.loadPreset(ZoneLayout::thirds());
    model.update();
    EXPECT_EQ(store().customLayouts().size(), 1U);
    EXPECT_EQ(model.toast(), nameTaken(u"My Thirds"_s));

    model.setLayoutName(u"My other Thirds"_s);
    model.update();
    ASSERT_EQ(store().customLayouts().size(), 2U);
    std::set<QUuid> ids;
    for (const ZoneLayout& layout : store().customLayouts()) {
        for (const Zone& zone : layout.zones)
            ids.insert(zone.id);
    }
    EXPECT_EQ(ids.size(), 6U);
    EXPECT_NE(store().customLayouts()[0].id, store().customLayouts()[1].id);
}

TEST_F(LayoutEditorModelTest, UpdatesALayoutUnderItsOwnNameInPlace) {
    const ZoneLayout layout = saved(u"Grid"_s);
    const ZoneLayout other = saved(u"Other"_s);
    model.loadForEditing(layout);
    Zone changed = model.zones()[0];
    changed.width = 0.25;
    model.setZone(0, changed);
    model.update();
    ASSERT_EQ(store().customLayouts().size(), 2U);
    EXPECT_EQ(store().customLayouts()[0].id, layout.id);
    EXPECT_EQ(store().customLayouts()[0].zones[0].width, 0.25);
    EXPECT_EQ(store().customLayouts()[1], other);
    EXPECT_EQ(model.toast(), (Toast{u"Layout updated"_s, false}));
}

TEST_F(LayoutEditorModelTest, RenamesALayoutButNotToAnothersName) {
    const ZoneLayout layout = saved(u"Grid"_s);
    saved(u"Other"_s);
    model.loadForEditing(layout);
    model.setLayoutName(u"OTHER"_s);
    model.update();
    EXPECT_EQ(store().customLayouts()[0], layout);
    EXPECT_EQ(model.toast(), nameTaken(u"OTHER"_s));

    model.setLayoutName(u"GRID"_s);
    model.update();
    EXPECT_EQ(store().customLayouts()[0].name, u"GRID"_s);
    EXPECT_EQ(model.toast(), (Toast{u"Layout updated"_s, false}));
}

TEST_F(LayoutEditorModelTest, SavesACopyUnderANewNameWhileEditing) {
    const ZoneLayout layout = saved(u"Grid"_s);
    model.loadForEditing(layout);
    model.saveAsNew();
    EXPECT_EQ(model.toast(), nameTaken(u"Grid"_s));
    EXPECT_EQ(model.editingLayoutID(), layout.id);

    model.setLayoutName(u"Grid copy"_s);
    model.saveAsNew();
    ASSERT_EQ(store().customLayouts().size(), 2U);
    EXPECT_NE(store().customLayouts()[1].id, layout.id);
    EXPECT_EQ(model.editingLayoutID(), store().customLayouts()[1].id);
}

TEST_F(LayoutEditorModelTest, SavesAsNewWhenUpdatingRightAfterNew) {
    model.loadForEditing(saved(u"Grid"_s));
    model.newLayout();
    model.update();
    ASSERT_EQ(store().customLayouts().size(), 2U);
    EXPECT_EQ(store().customLayouts()[1].name, u"My Layout"_s);
    EXPECT_EQ(model.editingLayoutID(), store().customLayouts()[1].id);
    EXPECT_EQ(model.toast(), (Toast{u"Layout saved"_s, false}));
}

TEST_F(LayoutEditorModelTest, ShowsSuccessForALayoutThatIsGoneFromTheStore) {
    const ZoneLayout layout = saved(u"Grid"_s);
    model.loadForEditing(layout);
    store().removeCustomLayout(layout.id);
    model.update();
    EXPECT_TRUE(store().customLayouts().empty());
    EXPECT_EQ(model.toast(), (Toast{u"Layout updated"_s, false}));
}

TEST_F(LayoutEditorModelTest, ShowsSuccessEvenIfTheFileCannotBeWritten) {
    // A folder in the file's place: no file can replace it.
    const QTemporaryDir folder;
    LayoutStore unwritable(folder.path());
    LayoutEditorModel editor(unwritable, loop());
    editor.saveAsNew();
    EXPECT_EQ(editor.toast(), (Toast{u"Layout saved"_s, false}));
    EXPECT_EQ(unwritable.customLayouts().size(), 1U);
}

TEST_F(LayoutEditorModelTest, CountsEveryLayoutButTheIgnoredOneInNameChecks) {
    const ZoneLayout layout = saved(u"Grid"_s);
    EXPECT_TRUE(model.nameTaken(u"gRID"_s, std::nullopt));
    EXPECT_FALSE(model.nameTaken(u"gRID"_s, layout.id));
    EXPECT_TRUE(model.nameTaken(u"halves"_s, layout.id));
    EXPECT_FALSE(model.nameTaken(u"halves"_s, ZoneLayout::halves().id));
    EXPECT_FALSE(model.nameTaken(u"Gri"_s, std::nullopt));
    saved(u"Ébauche"_s);
    EXPECT_TRUE(model.nameTaken(u"ébauche"_s, std::nullopt));
}

TEST_F(LayoutEditorModelTest, TrimsSpacesAndTabsButNoLineBreaks) {
    EXPECT_EQ(LayoutEditorModel::trimmed(u" \t Grid 2\t "_s), u"Grid 2"_s);
    EXPECT_EQ(LayoutEditorModel::trimmed(u"\u00a0\u3000Grid\u2003"_s), u"Grid"_s);
    EXPECT_EQ(LayoutEditorModel::trimmed(u" \nGrid\r\n "_s), u"\nGrid\r\n"_s);
    EXPECT_EQ(LayoutEditorModel::trimmed(u" \t "_s), u""_s);
    EXPECT_EQ(LayoutEditorModel::trimmed(u""_s), u""_s);
}

TEST_F(LayoutEditorModelTest, CanSaveOnlyZonesUnderAName) {
    model.setLayoutName(u" \t "_s);
    EXPECT_FALSE(model.canSave());
    model.setLayoutName(u" x "_s);
    EXPECT_TRUE(model.canSave());
    model.newLayout();
    model.select(model.zones()[0].id);
    model.deleteSelected();
    EXPECT_FALSE(model.canSave());
}

TEST_F(LayoutEditorModelTest, DoesNotCheckInTheOperationsWhatTheButtonsCheck) {
    model.loadForEditing({QUuid::createUuid(), u" "_s, u"square.dashed"_s, false, {}});
    model.saveAsNew();
    ASSERT_EQ(store().customLayouts().size(), 1U);
    EXPECT_EQ(store().customLayouts()[0].name, u""_s);
    EXPECT_TRUE(store().customLayouts()[0].zones.empty());
}

TEST_F(LayoutEditorModelTest, HidesAToastAfterOnePointEightSeconds) {
    model.showToast(u"Done"_s, false);
    loop().advance(1799ms);
    EXPECT_EQ(model.toast(), (Toast{u"Done"_s, false}));
    loop().advance(1ms);
    EXPECT_EQ(model.toast(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, NeverLetsAnOldTimerHideANewerToast) {
    model.showToast(u"Old"_s, false);
    loop().advance(1000ms);
    model.showToast(u"New"_s, false);
    EXPECT_EQ(model.toast(), (Toast{u"New"_s, false}));
    loop().advance(800ms);
    EXPECT_EQ(model.toast(), (Toast{u"New"_s, false}));
    loop().advance(1000ms);
    EXPECT_EQ(model.toast(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, EndsARepeatedToastAtTheFirstTimer) {
    model.showToast(u"Same"_s, true);
    loop().advance(1000ms);
    model.showToast(u"Same"_s, true);
    loop().advance(800ms);
    EXPECT_EQ(model.toast(), std::nullopt);

    // A third showing meanwhile is ended by the second one's timer in turn.
    model.showToast(u"Same"_s, true);
    loop().advance(1000ms);
    EXPECT_EQ(model.toast(), std::nullopt);
}

TEST_F(LayoutEditorModelTest, TellsToastsApartByTheirKindToo) {
    model.showToast(u"Same"_s, true);
    loop().advance(1000ms);
    model.showToast(u"Same"_s, false);
    loop().advance(800ms);
    EXPECT_EQ(model.toast(), (Toast{u"Same"_s, false}));
}

TEST_F(LayoutEditorModelTest, LeavesNoTimerBehind) {
    {
        LayoutEditorModel shortLived(store(), loop());
        shortLived.showToast(u"A"_s, false);
        shortLived.showToast(u"B"_s, false);
        EXPECT_EQ(loop().activeTimerCount(), 2U);
    }
    EXPECT_EQ(loop().activeTimerCount(), 0U);
    loop().advance(5s);
}

TEST_F(LayoutEditorModelTest, TakesTheZonesOfOtherIdsAsNeighbours) {
    model.setSnapToEdges(false);
    const ZoneEditorGeometry geometry = model.geometryFor(1);
    const auto& zones = model.zones();
    EXPECT_EQ(geometry.others, (std::vector{zones[0], zones[2], zones[3]}));
    EXPECT_FALSE(geometry.snapToEdges);
    model.setSnapToEdges(true);
    EXPECT_TRUE(model.geometryFor(1).snapToEdges);
}

TEST_F(LayoutEditorModelTest, NudgesAZoneByTheRulesButWithoutSnapping) {
    model.newLayout();
    model.nudge(0, LayoutEditorModel::nudgeStep, 0);
    // Half a canvas wide, 0.01 from the left edge: dragging would have snapped it back.
    EXPECT_NEAR(model.zones()[0].x, 0.01, 1e-12);
    EXPECT_TRUE(model.isSelected(0));
    EXPECT_TRUE(model.snapToEdges());
    model.nudge(0, LayoutEditorModel::largeNudgeStep, LayoutEditorModel::largeNudgeStep);
    EXPECT_NEAR(model.zones()[0].x, 0.06, 1e-12);
    EXPECT_NEAR(model.zones()[0].y, 0, 1e-12);
}

TEST_F(LayoutEditorModelTest, StopsANudgedZoneAtItsNeighbours) {
    model.loadPreset(ZoneLayout::halves());
    model.nudge(0, LayoutEditorModel::nudgeStep, 0);
    EXPECT_EQ(model.zones()[0].x, 0);
    model.nudgeCorner(0, ZoneEditorGeometry::Corner::bottomRight, 0.05, -0.05);
    EXPECT_NEAR(model.zones()[0].width, 0.5, 1e-12);
    EXPECT_NEAR(model.zones()[0].height, 0.95, 1e-12);
}

TEST_F(LayoutEditorModelTest, IgnoresPlacesPastTheEndOfTheList) {
    const auto before = model.zones();
    model.setZone(4, before[0]);
    model.nudge(4, 0.1, 0.1);
    model.nudgeCorner(4, ZoneEditorGeometry::Corner::topLeft, 0.1, 0.1);
    EXPECT_EQ(model.zones(), before);
    EXPECT_FALSE(model.isSelected(4));
}

} // namespace
} // namespace tilewright
