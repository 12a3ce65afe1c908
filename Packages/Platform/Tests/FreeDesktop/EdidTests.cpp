#include <FreeDesktop/Edid.h>

#include <gtest/gtest.h>

using namespace tilewright;

namespace {

/// A block of a "DEL" monitor, product 0x40f1, with the descriptors given.
QByteArray block(quint32 serial, const std::vector<std::pair<quint8, QByteArray>>& descriptors) {
    QByteArray bytes(128, '\0');
    bytes.replace(0, 8, QByteArray("\x00\xff\xff\xff\xff\xff\xff\x00", 8));
    bytes[8] = char(0x10);
    bytes[9] = char(0xac);
    bytes[10] = char(0xf1);
    bytes[11] = char(0x40);
    for (int i = 0; i < 4; ++i)
        bytes[12 + i] = static_cast<char>(serial >> (8 * i));
    qsizetype at = 54;
    for (const auto& [tag, text] : descriptors) {
        bytes[at + 3] = static_cast<char>(tag);
        bytes.replace(at + 5, 13, text.leftJustified(13, ' ', true));
        at += 18;
    }
    return bytes;
}

} // namespace

TEST(Edid, ReadsWhoMadeWhatAndItsSerials) {
    const auto edid = Edid::parse(block(0x01020304, {{0xfc, "U2720Q\n"}, {0xff, "AB12\n"}}));
    ASSERT_TRUE(edid.has_value());
    EXPECT_EQ(edid->manufacturerLetters(), QStringLiteral("DEL"));
    EXPECT_EQ(edid->product, 0x40f1);
    EXPECT_EQ(edid->serialNumber, 0x01020304U);
    EXPECT_EQ(edid->serialText, QStringLiteral("AB12"));
    EXPECT_EQ(edid->name, QStringLiteral("U2720Q"));
}

TEST(Edid, KnowsWhetherThereIsASerialOfEitherKind) {
    EXPECT_FALSE(Edid::parse(block(0, {}))->hasSerial());
    EXPECT_TRUE(Edid::parse(block(1, {}))->hasSerial());
    EXPECT_TRUE(Edid::parse(block(0, {{0xff, "S\n"}}))->hasSerial());
    EXPECT_FALSE(Edid::parse(block(0, {{0xff, "   \n"}}))->hasSerial());
}

TEST(Edid, TakesNoTimingForAText) {
    QByteArray bytes = block(0, {{0xfc, "Fake\n"}});
    bytes[54] = char(0x02);
    EXPECT_TRUE(Edid::parse(bytes)->name.isEmpty());
}

TEST(Edid, ReadsATextThatFillsItsDescriptorAndLeavesOutWhatIsNoText) {
    EXPECT_EQ(Edid::parse(block(0, {{0xfc, "ThirteenChars"}}))->name,
              QStringLiteral("ThirteenChars"));
    EXPECT_EQ(Edid::parse(block(0, {{0xfc, "A\x01\xff"
                                           "B\n"}}))
                  ->name,
              QStringLiteral("AB"));
}

TEST(Edid, RefusesWhatIsNoBlock) {
    EXPECT_FALSE(Edid::parse({}).has_value());
    EXPECT_FALSE(Edid::parse(block(1, {}).left(127)).has_value());
    EXPECT_FALSE(Edid::parse(QByteArray(128, '\0')).has_value());
    EXPECT_FALSE(Edid::parse(QByteArray(256, char(0xff))).has_value());
}

TEST(Edid, ReadsABlockWithExtensionsAsItsFirstPart) {
    EXPECT_EQ(Edid::parse(block(5, {}) + QByteArray(128, 'x')), Edid::parse(block(5, {})));
}
