#include <Tilewright/SnapModifier.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tilewright;

TEST(SnapModifier, OffersTheFourKeysInOrder) {
    EXPECT_EQ(SnapModifiers::allCases, (std::array{SnapModifier::control, SnapModifier::shift,
                                                   SnapModifier::option, SnapModifier::command}));
}

TEST(SnapModifier, HasFixedTextsForEachKey) {
    struct Row {
        SnapModifier modifier;
        QString rawValue;
        char16_t symbol;
        QString label;
    };
    const std::vector<Row> rows{
        {SnapModifier::control, u"control"_s, 0x2303, u"\u2303 Control"_s},
        {SnapModifier::shift, u"shift"_s, 0x21E7, u"\u21E7 Shift"_s},
        {SnapModifier::option, u"option"_s, 0x2325, u"\u2325 Option"_s},
        {SnapModifier::command, u"command"_s, 0x2318, u"\u2318 Command"_s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(rawValue(row.modifier), row.rawValue);
        EXPECT_EQ(symbol(row.modifier), QString(QChar(row.symbol)));
        EXPECT_EQ(pickerLabel(row.modifier), row.label);
    }
}

TEST(SnapModifier, KnowsTheBitOfEachKeyInAnEventsFlags) {
    EXPECT_EQ(static_cast<quint32>(eventFlag(SnapModifier::control)), 0x40000U);
    EXPECT_EQ(static_cast<quint32>(eventFlag(SnapModifier::shift)), 0x20000U);
    EXPECT_EQ(static_cast<quint32>(eventFlag(SnapModifier::option)), 0x80000U);
    EXPECT_EQ(static_cast<quint32>(eventFlag(SnapModifier::command)), 0x100000U);
}

TEST(SnapModifier, IsFoundByItsExactRawValueOnly) {
    for (const SnapModifier modifier : SnapModifiers::allCases)
        EXPECT_EQ(snapModifierFromRawValue(rawValue(modifier)), modifier);
    for (const QString& text : {u"Control"_s, u"CONTROL"_s, u" control"_s, u"control "_s, u""_s,
                                QString(), u"ctrl"_s, u"\u2303"_s, u"alt"_s})
        EXPECT_EQ(snapModifierFromRawValue(text), std::nullopt) << text.toStdString();
}

TEST(SnapModifier, CountsAsHeldWhateverElseIsHeld) {
    const ModifierFlags flags{ModifierFlag::control, ModifierFlag::option};
    EXPECT_TRUE(flags.contains(eventFlag(SnapModifier::control)));
    EXPECT_TRUE(flags.contains(eventFlag(SnapModifier::option)));
    EXPECT_FALSE(flags.contains(eventFlag(SnapModifier::shift)));
    EXPECT_FALSE(flags.contains(eventFlag(SnapModifier::command)));
    // Bits of other keys, such as caps lock, say nothing about these four.
    EXPECT_FALSE(ModifierFlags(0x10000U | 0x100U).contains(eventFlag(SnapModifier::shift)));
    EXPECT_TRUE(ModifierFlags(0x10000U | 0x20000U).contains(eventFlag(SnapModifier::shift)));
}
