#include <FakeScreens.h>
#include <WindowManager/DisplayIdentity.h>

#include <QHash>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace Qt::StringLiterals;
using tilewright::testing::makeScreen;

namespace {
const QString uuid = u"37D8832A-2D66-02CA-B9F7-8F30A301B230"_s;
}

TEST(DisplayIdentity, IsThePersistentUUIDWhereThereIsOne) {
    const auto screen =
        makeScreen({.displayID = 7, .persistentUUID = uuid, .localizedName = u"Monitor"_s});
    EXPECT_EQ(displayIdentity(*screen), (DisplayIdentity{uuid, u"Monitor"_s}));
}

TEST(DisplayIdentity, IsTheDisplayNumberWhereThereIsNoUUID) {
    EXPECT_EQ(displayIdentity(*makeScreen({.displayID = 1}))->key, u"display-1"_s);
    EXPECT_EQ(displayIdentity(*makeScreen({.displayID = 0}))->key, u"display-0"_s);
    EXPECT_EQ(displayIdentity(*makeScreen({.displayID = 0xFFFFFFFFU}))->key,
              u"display-4294967295"_s);
}

TEST(DisplayIdentity, IsNoneForADisplayWithoutANumber) {
    EXPECT_EQ(displayIdentity(*makeScreen({.displayID = std::nullopt})), std::nullopt);
    EXPECT_EQ(displayIdentity(*makeScreen({.displayID = std::nullopt, .persistentUUID = uuid})),
              std::nullopt);
}

TEST(DisplayIdentity, IsTheSameAtEveryReading) {
    const auto screen = makeScreen({.persistentUUID = uuid});
    EXPECT_EQ(displayIdentity(*screen), displayIdentity(*screen));
}

TEST(DisplayIdentity, TellsDisplaysOfOneModelApartByTheirKeys) {
    const auto a = displayIdentity(*makeScreen({.displayID = 1, .localizedName = u"Twin"_s}));
    const auto b = displayIdentity(*makeScreen({.displayID = 2, .localizedName = u"Twin"_s}));
    EXPECT_EQ(a->localizedName, b->localizedName);
    EXPECT_NE(a->key, b->key);
    EXPECT_NE(a, b);
}

TEST(DisplayIdentity, IsReadAfreshAndKeepsTheKeyOfARenamedDisplay) {
    const auto screen = makeScreen({.persistentUUID = uuid, .localizedName = u"Before"_s});
    const auto before = displayIdentity(*screen);
    screen->values.localizedName = u"After"_s;
    const auto after = displayIdentity(*screen);
    EXPECT_EQ(before->key, after->key);
    EXPECT_EQ(after->localizedName, u"After"_s);
    EXPECT_NE(before, after);
}

TEST(DisplayIdentity, HashesBothFields) {
    const DisplayIdentity identity{u"a"_s, u"b"_s};
    EXPECT_EQ(qHash(identity), qHash(DisplayIdentity{u"a"_s, u"b"_s}));
    EXPECT_NE(qHash(identity), qHash(DisplayIdentity{u"a"_s, u"c"_s}));
    EXPECT_NE(qHash(identity), qHash(DisplayIdentity{u"c"_s, u"b"_s}));
    EXPECT_NE(qHash(identity), qHash(DisplayIdentity{u"b"_s, u"a"_s}));
    const QHash<DisplayIdentity, int> table{{identity, 1}};
    EXPECT_EQ(table.value({u"a"_s, u"b"_s}), 1);
}
