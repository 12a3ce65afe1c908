#include <FakePlatform.h>
#include <WindowManager/DisplayIdentity.h>
#include <WindowManager/LayoutCoding.h>
#include <WindowManager/LayoutStore.h>

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

using namespace tilewright;
using namespace Qt::StringLiterals;
using tilewright::testing::FakeDesktop;
using tilewright::testing::makeScreen;

namespace {

ZoneLayout customLayout(const QString& name) {
    return {QUuid::createUuid(),
            name,
            u"square"_s,
            false,
            {{QUuid::createUuid(), u"Zone"_s, 0.1, 0.2, 0.3, 0.4}}};
}

/// A desktop of its own with two displays, and the store's default file on it.
class LayoutStoreTest : public ::testing::Test {
protected:
    [[nodiscard]] QString path() {
        return *desktop.platform.fakeApplicationSupport.folder() + u"/Tilewright/layouts.json"_s;
    }
    [[nodiscard]] QByteArray fileContents() {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QByteArray& bytes) {
        QDir().mkpath(QFileInfo(path()).path());
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] std::optional<LayoutCoding::Persisted> onDisk() {
        return LayoutCoding::decodePersisted(fileContents());
    }
    [[nodiscard]] static QString keyOf(const Screen& screen) {
        return displayIdentity(screen)->key;
    }

    FakeDesktop desktop;
    const std::shared_ptr<tilewright::testing::FakeScreen> first =
        makeScreen({.displayID = 1, .persistentUUID = u"11111111-0000-4000-8000-000000000000"_s});
    const std::shared_ptr<tilewright::testing::FakeScreen> second = makeScreen({.displayID = 2});
};

/// What an observer saw of a store: its state at each announcement.
struct Announcements {
    explicit Announcements(LayoutStore& store) {
        QObject::connect(&store, &ObservableObject::objectWillChange, &store, [this, &store] {
            layouts.push_back(store.customLayouts());
            assignments.push_back(store.assignments());
        });
    }
    std::vector<std::vector<ZoneLayout>> layouts;
    std::vector<LayoutStore::Assignments> assignments;
};

} // namespace

TEST_F(LayoutStoreTest, WithoutAFileHoldsTheFiveBuiltInLayouts) {
    const LayoutStore store;
    EXPECT_EQ(store.allLayouts(), ZoneLayout::builtIns());
    EXPECT_TRUE(store.customLayouts().empty());
    EXPECT_TRUE(store.assignments().empty());
    EXPECT_EQ(store.layoutFor(*first), ZoneLayout::bentoBox());
    EXPECT_EQ(store.layoutFor(*second), ZoneLayout::bentoBox());
    EXPECT_FALSE(QFile::exists(path())) << "nothing is written before the first change";
}

TEST_F(LayoutStoreTest, IsSharedAndLivesInTheApplicationSupportFolder) {
    LayoutStore::shared().addCustomLayout(customLayout(u"Mine"_s));
    EXPECT_EQ(&LayoutStore::shared(), &LayoutStore::shared());
    EXPECT_EQ(onDisk()->customLayouts, LayoutStore::shared().customLayouts());
}

TEST_F(LayoutStoreTest, IsReadOnFirstUseOnly) {
    write(*LayoutCoding::encode(LayoutCoding::Persisted{{customLayout(u"Before"_s)}, {}}));
    ASSERT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
    write("changed by somebody else");
    EXPECT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
    LayoutStore::shared().addCustomLayout(customLayout(u"After"_s));
    EXPECT_EQ(onDisk()->customLayouts, LayoutStore::shared().customLayouts());
}

TEST_F(LayoutStoreTest, ListsCustomLayoutsAfterTheBuiltIns) {
    LayoutStore store;
    const auto a = customLayout(u"a"_s);
    const auto b = customLayout(u"b"_s);
    store.addCustomLayout(a);
    store.addCustomLayout(b);
    auto expected = ZoneLayout::builtIns();
    expected.push_back(a);
    expected.push_back(b);
    EXPECT_EQ(store.allLayouts(), expected);
    EXPECT_EQ(LayoutStore().allLayouts(), expected);
}

TEST_F(LayoutStoreTest, FindsTheAssignedLayoutAgainAfterARestart) {
    {
        LayoutStore store;
        store.assign(ZoneLayout::quadrants(), *first);
        EXPECT_EQ(store.layoutFor(*first), ZoneLayout::quadrants());
        EXPECT_EQ(store.layoutFor(*second), ZoneLayout::bentoBox());
    }
    EXPECT_EQ(LayoutStore().layoutFor(*first), ZoneLayout::quadrants());
    first->values.localizedName = u"Renamed"_s;
    EXPECT_EQ(LayoutStore().layoutFor(*first), ZoneLayout::quadrants());
}

TEST_F(LayoutStoreTest, WritesOneObjectWithLayoutsAndAssignments) {
    LayoutStore store;
    const auto mine = customLayout(u"Mine"_s);
    store.addCustomLayout(mine);
    store.assign(mine, *first);
    store.assign(ZoneLayout::quadrants(), *second);
    EXPECT_EQ(onDisk(),
              (LayoutCoding::Persisted{{mine},
                                       {{u"11111111-0000-4000-8000-000000000000"_s, mine.id},
                                        {u"display-2"_s, ZoneLayout::quadrants().id}}}));
    EXPECT_TRUE(fileContents().contains("\"display-2\":\"00000000-0000-0000-0000-000000000003\""));
}

TEST_F(LayoutStoreTest, ReplacesAnEarlierAssignment) {
    LayoutStore store;
    store.assign(ZoneLayout::quadrants(), *first);
    store.assign(ZoneLayout::halves(), *first);
    EXPECT_EQ(store.assignments(),
              (LayoutStore::Assignments{{keyOf(*first), ZoneLayout::halves().id}}));
}

TEST_F(LayoutStoreTest, AssignsALayoutItDoesNotKnow) {
    LayoutStore store;
    const auto unknown = customLayout(u"Unknown"_s);
    store.assign(unknown, *first);
    EXPECT_EQ(store.assignments().at(keyOf(*first)), unknown.id);
    EXPECT_TRUE(store.customLayouts().empty());
    EXPECT_EQ(store.layoutFor(*first), ZoneLayout::bentoBox());
    store.addCustomLayout(unknown);
    EXPECT_EQ(store.layoutFor(*first), unknown);
}

TEST_F(LayoutStoreTest, DoesNothingForADisplayWithoutIdentity) {
    LayoutStore store;
    const Announcements announcements(store);
    const auto nameless = makeScreen({.displayID = std::nullopt});
    store.assign(ZoneLayout::halves(), *nameless);
    EXPECT_TRUE(store.assignments().empty());
    EXPECT_TRUE(announcements.layouts.empty());
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_EQ(store.layoutFor(*nameless), ZoneLayout::bentoBox());
}

TEST_F(LayoutStoreTest, LoadsAFileThatLacksAssignmentsAsEmpty) {
    auto persisted = LayoutCoding::Persisted{{customLayout(u"Lost"_s)}, {}};
    QByteArray bytes = *LayoutCoding::encode(persisted);
    bytes.replace("assignments", "somethings");
    write(bytes);
    LayoutStore store;
    EXPECT_EQ(store.allLayouts(), ZoneLayout::builtIns());
    EXPECT_EQ(fileContents(), bytes) << "the file stays until the first change";
    const auto mine = customLayout(u"Mine"_s);
    store.addCustomLayout(mine);
    EXPECT_EQ(onDisk(), (LayoutCoding::Persisted{{mine}, {}}));
}

TEST_F(LayoutStoreTest, LoadsAFileInWhichOneZoneLacksItsHeightAsEmpty) {
    LayoutCoding::Persisted persisted{{customLayout(u"a"_s), customLayout(u"b"_s)},
                                      {{u"display-2"_s, ZoneLayout::halves().id}}};
    QByteArray bytes = *LayoutCoding::encode(persisted);
    bytes.replace(bytes.lastIndexOf("height"), 6, "weight");
    write(bytes);
    LayoutStore store;
    EXPECT_TRUE(store.customLayouts().empty());
    EXPECT_TRUE(store.assignments().empty());
    const auto mine = customLayout(u"Mine"_s);
    store.addCustomLayout(mine);
    EXPECT_EQ(onDisk(), (LayoutCoding::Persisted{{mine}, {}}));
}

TEST_F(LayoutStoreTest, UpdatesALayoutInItsPlace) {
    LayoutStore store;
    const auto a = customLayout(u"a"_s);
    const auto b = customLayout(u"b"_s);
    store.addCustomLayout(a);
    store.addCustomLayout(b);
    auto changed = a;
    changed.name = u"changed"_s;
    changed.zones.clear();
    store.updateCustomLayout(changed);
    EXPECT_EQ(store.customLayouts(), (std::vector{changed, b}));
    EXPECT_EQ(onDisk()->customLayouts, store.customLayouts());
}

TEST_F(LayoutStoreTest, DoesNotTouchTheFileWhenThereIsNothingToUpdate) {
    LayoutStore store;
    store.addCustomLayout(customLayout(u"a"_s));
    const auto longAgo = QDateTime::fromSecsSinceEpoch(1000000000);
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    }
    const Announcements announcements(store);
    const auto before = store.customLayouts();
    store.updateCustomLayout(customLayout(u"b"_s));
    store.updateCustomLayout(ZoneLayout::halves());
    EXPECT_EQ(store.customLayouts(), before);
    EXPECT_TRUE(announcements.layouts.empty());
    EXPECT_EQ(QFileInfo(path()).lastModified(), longAgo);
}

TEST_F(LayoutStoreTest, RemovingALayoutClearsItFromEveryDisplay) {
    LayoutStore store;
    const auto mine = customLayout(u"Mine"_s);
    store.addCustomLayout(mine);
    store.assign(mine, *first);
    store.assign(mine, *second);
    store.removeCustomLayout(mine.id);
    EXPECT_EQ(store.layoutFor(*first), ZoneLayout::bentoBox());
    EXPECT_EQ(store.layoutFor(*second), ZoneLayout::bentoBox());
    EXPECT_EQ(onDisk(), LayoutCoding::Persisted{});
    EXPECT_FALSE(
        fileContents().contains(mine.id.toString(QUuid::WithoutBraces).toUpper().toUtf8()));
}

TEST_F(LayoutStoreTest, RemovesEveryLayoutWithTheIdAndKeepsTheOrderOfTheRest) {
    LayoutStore store;
    const auto a = customLayout(u"a"_s);
    auto twin = customLayout(u"twin"_s);
    const auto b = customLayout(u"b"_s);
    auto otherTwin = twin;
    otherTwin.name = u"other twin"_s;
    for (const auto& layout : {twin, a, otherTwin, b})
        store.addCustomLayout(layout);
    store.removeCustomLayout(twin.id);
    EXPECT_EQ(store.customLayouts(), (std::vector{a, b}));
}

TEST_F(LayoutStoreTest, RemovingTheIdOfABuiltInOnlyClearsItsAssignments) {
    LayoutStore store;
    const auto mine = customLayout(u"Mine"_s);
    store.addCustomLayout(mine);
    store.assign(ZoneLayout::halves(), *first);
    store.assign(mine, *second);
    store.removeCustomLayout(ZoneLayout::halves().id);
    EXPECT_EQ(store.customLayouts(), std::vector{mine});
    EXPECT_EQ(store.assignments(), (LayoutStore::Assignments{{keyOf(*second), mine.id}}));
    EXPECT_EQ(onDisk()->assignments, store.assignments());
}

TEST_F(LayoutStoreTest, RemovingAnUnknownIdStillWritesTheFile) {
    LayoutStore store;
    const Announcements announcements(store);
    store.removeCustomLayout(QUuid::createUuid());
    EXPECT_EQ(onDisk(), LayoutCoding::Persisted{});
    EXPECT_EQ(announcements.layouts.size(), 2U);
}

TEST_F(LayoutStoreTest, RemovesByAnIdThatBelongsToTheLayoutItRemoves) {
    LayoutStore store;
    store.addCustomLayout(customLayout(u"Mine"_s));
    store.assign(store.customLayouts().front(), *first);
    store.removeCustomLayout(store.customLayouts().front().id);
    EXPECT_TRUE(store.customLayouts().empty());
    EXPECT_TRUE(store.assignments().empty());
}

TEST_F(LayoutStoreTest, TakesItsOwnLayoutsAsArguments) {
    LayoutStore store;
    store.addCustomLayout(customLayout(u"Mine"_s));
    const auto mine = store.customLayouts().front();
    store.addCustomLayout(store.customLayouts().front());
    store.updateCustomLayout(store.customLayouts().back());
    EXPECT_EQ(store.customLayouts(), (std::vector{mine, mine}));
}

TEST_F(LayoutStoreTest, AnnouncesEachChangeOnceBeforeItHappens) {
    LayoutStore store;
    const Announcements seen(store);
    const auto mine = customLayout(u"Mine"_s);
    auto renamed = mine;
    renamed.name = u"Renamed"_s;
    using Layouts = std::vector<std::vector<ZoneLayout>>;

    store.addCustomLayout(mine);
    EXPECT_EQ(seen.layouts, (Layouts{{}}));
    store.updateCustomLayout(renamed);
    EXPECT_EQ(seen.layouts, (Layouts{{}, {mine}}));
    store.assign(mine, *first);
    EXPECT_EQ(seen.layouts, (Layouts{{}, {mine}, {renamed}}));
    EXPECT_TRUE(seen.assignments.back().empty());
    store.removeCustomLayout(mine.id);
    // First for the layouts, then for the assignments.
    EXPECT_EQ(seen.layouts, (Layouts{{}, {mine}, {renamed}, {renamed}, {}}));
    const LayoutStore::Assignments assigned{{keyOf(*first), mine.id}};
    EXPECT_EQ(seen.assignments,
              (std::vector<LayoutStore::Assignments>{{}, {}, {}, assigned, assigned}));
}

TEST_F(LayoutStoreTest, SavesAfterTheChangeIsAnnounced) {
    LayoutStore store;
    bool fileExisted = true;
    QObject::connect(&store, &ObservableObject::objectWillChange, &store,
                     [&] { fileExisted = QFile::exists(path()); });
    store.addCustomLayout(customLayout(u"Mine"_s));
    EXPECT_FALSE(fileExisted);
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(LayoutStoreTest, LetsTheBuiltInWinOverACustomLayoutWithItsId) {
    LayoutStore store;
    auto impostor = customLayout(u"Impostor"_s);
    impostor.id = QUuid::fromString(u"00000000-0000-0000-0000-000000000001"_s);
    store.addCustomLayout(impostor);
    const LayoutStore reloaded;
    EXPECT_EQ(reloaded.allLayouts().at(5), impostor);
    EXPECT_EQ(reloaded.layoutWithID(impostor.id), ZoneLayout::halves());
}

TEST_F(LayoutStoreTest, LetsTheEarlierOfTwoLayoutsWithOneIdWin) {
    LayoutStore store;
    const auto a = customLayout(u"a"_s);
    auto b = a;
    b.name = u"b"_s;
    store.addCustomLayout(a);
    store.addCustomLayout(b);
    EXPECT_EQ(store.layoutWithID(a.id), a);
    auto changed = a;
    changed.name = u"changed"_s;
    store.updateCustomLayout(changed);
    EXPECT_EQ(store.customLayouts(), (std::vector{changed, b}));
}

TEST_F(LayoutStoreTest, KnowsNoLayoutUnderAnUnknownId) {
    EXPECT_EQ(LayoutStore().layoutWithID(QUuid::createUuid()), std::nullopt);
    EXPECT_EQ(LayoutStore().layoutWithID(QUuid()), std::nullopt);
}

TEST_F(LayoutStoreTest, KnowsALayoutOfTheNilIdLikeAnyOther) {
    LayoutStore store;
    auto nil = customLayout(u"Nil"_s);
    nil.id = QUuid();
    store.addCustomLayout(nil);
    EXPECT_EQ(store.layoutWithID(QUuid()), nil);
    store.assign(nil, *first);
    EXPECT_EQ(LayoutStore().layoutFor(*first), nil);
    nil.name = u"Renamed"_s;
    store.updateCustomLayout(nil);
    EXPECT_EQ(store.customLayouts(), std::vector{nil});
    store.removeCustomLayout(QUuid());
    EXPECT_EQ(onDisk(), LayoutCoding::Persisted{});
}

TEST_F(LayoutStoreTest, UpdatesACustomLayoutThatIsMarkedAsBuiltIn) {
    LayoutStore store;
    auto marked = customLayout(u"Marked"_s);
    marked.isBuiltIn = true;
    store.addCustomLayout(marked);
    marked.name = u"Renamed"_s;
    store.updateCustomLayout(marked);
    EXPECT_EQ(store.customLayouts(), std::vector{marked});
    EXPECT_EQ(onDisk()->customLayouts, std::vector{marked});
}

TEST_F(LayoutStoreTest, StoresTheBuiltInMarkOfACustomLayoutAsItIs) {
    auto marked = customLayout(u"Marked"_s);
    marked.isBuiltIn = true;
    LayoutStore().addCustomLayout(marked);
    EXPECT_EQ(LayoutStore().customLayouts(), std::vector{marked});
}

TEST_F(LayoutStoreTest, FallsBackToBentoBoxForAnAssignmentToNothing) {
    write(
        *LayoutCoding::encode(LayoutCoding::Persisted{{}, {{keyOf(*first), QUuid::createUuid()}}}));
    EXPECT_EQ(LayoutStore().layoutFor(*first), ZoneLayout::bentoBox());
}

TEST_F(LayoutStoreTest, KeepsAChangeThatCannotBeEncodedInMemoryUntilOneCan) {
    LayoutStore store;
    const auto good = customLayout(u"good"_s);
    store.addCustomLayout(good);
    const QByteArray before = fileContents();
    auto bad = customLayout(u"bad"_s);
    bad.zones[0].width = std::numeric_limits<double>::infinity();
    store.addCustomLayout(bad);
    EXPECT_EQ(store.customLayouts(), (std::vector{good, bad}));
    EXPECT_EQ(fileContents(), before);
    store.assign(bad, *first);
    EXPECT_EQ(fileContents(), before);
    bad.zones[0].width = 0.5;
    store.updateCustomLayout(bad);
    EXPECT_EQ(onDisk(), (LayoutCoding::Persisted{{good, bad}, {{keyOf(*first), bad.id}}}));
}

using LayoutStoreDeathTest = LayoutStoreTest;

TEST_F(LayoutStoreDeathTest, LookingUpOffTheMainThreadIsFatalAndNamesTheStore) {
    const auto elsewhere = [](auto call) { std::thread(call).join(); };
    const char* message = "LayoutStore:[0-9]+: must be called on the main thread";
    LayoutStore store;
    EXPECT_DEATH(elsewhere([&] { (void)store.layoutWithID(QUuid()); }), message);
    EXPECT_DEATH(elsewhere([&] { store.updateCustomLayout(ZoneLayout::halves()); }), message);
    EXPECT_DEATH(elsewhere([&] { store.removeCustomLayout(QUuid()); }), message);
}

TEST_F(LayoutStoreDeathTest, APlatformWithoutAnApplicationSupportFolderIsFatal) {
    const QString given = path();
    desktop.platform.fakeApplicationSupport.isReported = false;
    EXPECT_DEATH(LayoutStore{}, "no application support folder");
    const LayoutStore elsewhere(given);
    EXPECT_TRUE(elsewhere.customLayouts().empty());
}
