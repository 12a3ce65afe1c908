#include <FreeDesktop/DisplayKeys.h>

#include <QUuid>
#include <gtest/gtest.h>

using namespace tilewright;

namespace {

Edid monitor(quint16 product, quint32 serial, const QString& serialText = {}) {
    Edid edid;
    edid.manufacturer = 0x10ac;
    edid.product = product;
    edid.serialNumber = serial;
    edid.serialText = serialText;
    return edid;
}

DisplayKeys::Display at(const char* connector, std::optional<Edid> edid) {
    return {QString::fromLatin1(connector), std::move(edid)};
}

using Keys = std::vector<std::optional<QString>>;

/// What a monitor with such a block gets at a connector, with nothing else connected.
std::optional<QString> keyAt(const char* connector, const char* block) {
    return DisplayKeys().update({at(connector, Edid::parse(QByteArray::fromHex(block)))})[0];
}

// Whole blocks: of a monitor with both serials, of one with none, and of one with a number only.
constexpr const char* withBothSerials =
    "00ffffffffffff005197f140040302010c1f0104b53c22783aee95a3544c9926"
    "0f505400000001010101010101010101010101010101023a801871382d40582c"
    "450055502100001e000000ff0041423132433344340a20202020000000fc0054"
    "616c6c2032370a202020202000000010000000000000000000000000000000e6";
constexpr const char* withoutSerial =
    "00ffffffffffff004653070b00000000281d0104b53c22783aee95a3544c9926"
    "0f505400000001010101010101010101010101010101023a801871382d40582c"
    "450055502100001e000000fc00576964652033340a2020202020000000100000"
    "0000000000000000000000000000001000000000000000000000000000000097";
constexpr const char* withASerialNumber =
    "00ffffffffffff00633a07002a00000001190104b53c22783aee95a3544c9926"
    "0f505400000001010101010101010101010101010101023a801871382d40582c"
    "450055502100001e000000100000000000000000000000000000000000100000"
    "0000000000000000000000000000001000000000000000000000000000000045";

} // namespace

TEST(DisplayKeys, NamesAMonitorWithASerialWhereverItIsPluggedIn) {
    DisplayKeys here;
    DisplayKeys there;
    const Keys one = here.update({at("DP-1", monitor(7, 42))});
    const Keys other = there.update({at("HDMI-2", monitor(7, 42))});
    ASSERT_TRUE(one[0].has_value());
    EXPECT_EQ(one, other);
}

TEST(DisplayKeys, GivesUpperCaseUuidsOfVersionFive) {
    DisplayKeys keys;
    const QString uuid = keys.update({at("DP-1", monitor(7, 42))})[0].value();
    EXPECT_EQ(uuid, uuid.toUpper());
    EXPECT_EQ(uuid.size(), 36);
    EXPECT_EQ(QUuid(uuid).version(), QUuid::Sha1);
}

TEST(DisplayKeys, TellsMonitorsApartByEveryFieldOfTheirIdentity) {
    DisplayKeys keys;
    const Keys all =
        keys.update({at("A", monitor(7, 42)), at("B", monitor(8, 42)), at("C", monitor(7, 43)),
                     at("D", monitor(7, 42, QStringLiteral("X1")))});
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = i + 1; j < all.size(); ++j)
            EXPECT_NE(all[i], all[j]) << i << " and " << j;
    }
}

TEST(DisplayKeys, TellsMonitorsWithoutASerialApartByTheirConnectors) {
    DisplayKeys keys;
    const Keys both = keys.update({at("DP-1", monitor(7, 0)), at("DP-2", monitor(7, 0))});
    EXPECT_NE(both[0], both[1]);
    DisplayKeys later;
    EXPECT_EQ(later.update({at("DP-2", monitor(7, 0))})[0], both[1]);
}

TEST(DisplayKeys, GivesNoneWithoutAnEdid) {
    DisplayKeys keys;
    EXPECT_EQ(keys.update({at("DP-1", std::nullopt)})[0], std::nullopt);
}

TEST(DisplayKeys, KeepsEverybodysKeyWhileATwinComesAndGoes) {
    DisplayKeys keys;
    const auto first = keys.update({at("DP-2", monitor(7, 42))})[0];
    // The newcomer's connector comes first in name order; it is the newcomer all the same.
    const Keys both = keys.update({at("DP-1", monitor(7, 42)), at("DP-2", monitor(7, 42))});
    EXPECT_EQ(both[1], first);
    EXPECT_NE(both[0], first);
    EXPECT_EQ(keys.update({at("DP-2", monitor(7, 42))})[0], first);
    const Keys again = keys.update({at("DP-2", monitor(7, 42)), at("DP-1", monitor(7, 42))});
    EXPECT_EQ(again[0], first);
    EXPECT_EQ(again[1], both[0]);
}

TEST(DisplayKeys, KeepsATwinsKeyWhenTheFirstIsUnplugged) {
    DisplayKeys keys;
    const Keys both = keys.update({at("DP-1", monitor(7, 42)), at("DP-2", monitor(7, 42))});
    EXPECT_EQ(keys.update({at("DP-2", monitor(7, 42))})[0], both[1]);
}

TEST(DisplayKeys, GivesTwinsTheSameKeysAtEveryStartWhateverTheServersOrder) {
    DisplayKeys first;
    DisplayKeys second;
    const Keys one = first.update({at("DP-1", monitor(7, 42)), at("DP-2", monitor(7, 42))});
    const Keys other = second.update({at("DP-2", monitor(7, 42)), at("DP-1", monitor(7, 42))});
    EXPECT_EQ(one[0], other[1]);
    EXPECT_EQ(one[1], other[0]);
}

TEST(DisplayKeys, GivesAnotherMonitorAtTheSameConnectorItsOwnKey) {
    DisplayKeys keys;
    const auto before = keys.update({at("DP-1", monitor(7, 42))})[0];
    const auto after = keys.update({at("DP-1", monitor(7, 43))})[0];
    EXPECT_NE(before, after);
    EXPECT_EQ(keys.update({at("DP-1", monitor(7, 42))})[0], before);
}

TEST(DisplayKeys, NumbersDisplaysByTheirConnectorsNeverWithZero) {
    EXPECT_EQ(displayNumber(QStringLiteral("DP-1")), displayNumber(QStringLiteral("DP-1")));
    EXPECT_NE(displayNumber(QStringLiteral("DP-1")), displayNumber(QStringLiteral("DP-2")));
    EXPECT_NE(displayNumber(QString()), 0U);
}

// The two tests below hold for good: another key for a monitor loses its user's choice of layout.

TEST(DisplayKeys, AreTheseForTheseMonitorsInEveryVersion) {
    const auto whole = QStringLiteral("996C7887-280F-5AFA-8308-6C0611A5DF6E");
    EXPECT_EQ(keyAt("DP-1", withBothSerials), whole);
    EXPECT_EQ(keyAt("HDMI-2", withBothSerials), whole);
    EXPECT_EQ(keyAt("DP-1", withASerialNumber),
              QStringLiteral("9B80FBC8-CE04-5A0A-BD58-FC5CFDDF6B22"));
    EXPECT_EQ(keyAt("DP-1", withoutSerial), QStringLiteral("FC74C519-3714-5793-8EF4-1CCED6502AAD"));
    EXPECT_EQ(keyAt("HDMI-2", withoutSerial),
              QStringLiteral("85CAB162-8020-532C-8EDA-B3FDD143577E"));

    const auto edid = Edid::parse(QByteArray::fromHex(withBothSerials));
    EXPECT_EQ(DisplayKeys().update({at("HDMI-2", edid), at("DP-1", edid)}),
              (Keys{QStringLiteral("4C3388DB-329F-5245-986D-12F73509E1ED"), whole}));
}

TEST(DisplayKeys, NumberTheseConnectorsLikeThisInEveryVersion) {
    EXPECT_EQ(displayNumber(QStringLiteral("DP-1")), 498784119U);
    EXPECT_EQ(displayNumber(QStringLiteral("HDMI-2")), 444614412U);
    EXPECT_EQ(displayNumber(QStringLiteral("eDP-1")), 3327778526U);
    EXPECT_EQ(displayNumber(QStringLiteral("Größe")), 1219707514U);
}
