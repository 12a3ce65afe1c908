#include "CompanionTexts.h"

#include <Companion/CompanionDecoder.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

std::optional<CompanionMessage> decode(const char* method, const QByteArray& text) {
    return CompanionDecoder::decode(QString::fromLatin1(method), text);
}

template<class Message>
std::optional<Message> decodeAs(const char* method, const QByteArray& text) {
    const auto message = decode(method, text);
    if (!message || !std::holds_alternative<Message>(*message))
        return std::nullopt;
    return std::get<Message>(*message);
}

} // namespace

TEST(CompanionDecoder, ReadsAGreetingWhole) {
    const auto hello = decodeAs<CompanionHello>(
        "Hello", helloText(displayText() + "," +
                               displayText(false, "[1920,-100,800,600]", "[1920,-100,800,600]", ""),
                           windowText()));
    ASSERT_TRUE(hello);
    EXPECT_EQ(hello->protocol, 1);
    EXPECT_EQ(hello->shell, QStringLiteral("43.9"));
    ASSERT_EQ(hello->displays.size(), 2U);
    const CompanionDisplay& first = hello->displays[0];
    EXPECT_TRUE(first.isPrimary);
    EXPECT_EQ(first.frame, (CompanionRect{0, 0, 1920, 1080}));
    EXPECT_EQ(first.workArea, (CompanionRect{0, 32, 1920, 1048}));
    EXPECT_EQ(first.connector, QStringLiteral("Virtual-7"));
    EXPECT_EQ(first.product, QStringLiteral("Virtual remote monitor"));
    EXPECT_EQ(hello->displays[1].frame, (CompanionRect{1920, -100, 800, 600}));
    EXPECT_EQ(hello->displays[1].connector, QString());
    ASSERT_TRUE(hello->focus);
    EXPECT_EQ(hello->focus->id, CompanionWindowID{7});
    EXPECT_EQ(hello->focus->process, 123);
    EXPECT_FALSE(hello->focus->isOurs);
    EXPECT_EQ(hello->focus->frame, (CompanionRect{100, 120, 400, 300}));
    EXPECT_EQ(hello->pointer, (CompanionPoint{10, 20}));
}

TEST(CompanionDecoder, TakesACompanionThatDoesNotSayOtherwiseForOneThatTellsTheKeys) {
    const auto tellsKeys = [](const QByteArray& field) {
        const auto message = CompanionDecoder::decode(u"Hello", "{" + field + helloText().mid(1));
        return message ? std::optional(std::get<CompanionHello>(*message).tellsKeys) : std::nullopt;
    };
    EXPECT_EQ(tellsKeys(""), true);
    EXPECT_EQ(tellsKeys(R"("tellsKeys":true,)"), true);
    EXPECT_EQ(tellsKeys(R"("tellsKeys":false,)"), false);
    EXPECT_EQ(tellsKeys(R"("tellsKeys":1,)"), std::nullopt);
}

TEST(CompanionDecoder, ReadsTheWishForLessMotionWhereACompanionTellsIt) {
    const auto greeted = [](const QByteArray& field) {
        return decodeAs<CompanionHello>("Hello", "{" + field + helloText().mid(1));
    };
    EXPECT_EQ(greeted("")->reducedMotion, std::nullopt) << "an older one";
    EXPECT_EQ(greeted(R"("reducedMotion":null,)")->reducedMotion, std::nullopt);
    EXPECT_EQ(greeted(R"("reducedMotion":true,)")->reducedMotion, true);
    EXPECT_EQ(greeted(R"("reducedMotion":false,)")->reducedMotion, false);
    EXPECT_FALSE(greeted(R"("reducedMotion":1,)"));
    EXPECT_EQ(decodeAs<CompanionMotionWish>("MotionWish", R"({"reduced":true})"),
              CompanionMotionWish{true});
    EXPECT_FALSE(decode("MotionWish", "{}"));
}

TEST(CompanionDecoder, ReadsNothingMoreOfAProtocolThatIsNotSpokenHere) {
    const auto hello = decodeAs<CompanionHello>("Hello", R"({"protocol":2,"displays":"others"})");
    ASSERT_TRUE(hello);
    EXPECT_EQ(hello->protocol, 2);
    EXPECT_TRUE(hello->displays.empty());
}

TEST(CompanionDecoder, TellsTheStepsOfADragApart) {
    using Step = CompanionDrag::Step;
    const auto stepOf = [](const char* method, const QByteArray& text) {
        const auto drag = decodeAs<CompanionDrag>(method, text);
        return drag ? std::optional(drag->step) : std::nullopt;
    };
    EXPECT_EQ(stepOf("DragBegin", dragText(3, "[1,2]", 0)), Step::begin);
    EXPECT_EQ(stepOf("DragMotion", dragText(3, "[1,2]", 0)), Step::motion);
    EXPECT_EQ(stepOf("DragEnd", dragEndText(3, "[1,2]", 0, false)), Step::drop);
    EXPECT_EQ(stepOf("DragEnd", dragEndText(3, "[1,2]", 0, true)), Step::cancellation);
    EXPECT_EQ(stepOf("DragEnd", dragText(3, "[1,2]", 0)), std::nullopt)
        << "whether it was cancelled matters";
}

TEST(CompanionDecoder, ReadsTheFourKeysAndPassesOverOthers) {
    const auto keysOf = [](int keys) {
        return decodeAs<CompanionDrag>("DragMotion", dragText(1, "[0,0]", keys))->keys;
    };
    EXPECT_EQ(keysOf(0), ModifierFlags());
    EXPECT_EQ(keysOf(1), ModifierFlags{ModifierFlag::shift});
    EXPECT_EQ(keysOf(2), ModifierFlags{ModifierFlag::control});
    EXPECT_EQ(keysOf(4), ModifierFlags{ModifierFlag::option});
    EXPECT_EQ(keysOf(8), ModifierFlags{ModifierFlag::command});
    EXPECT_EQ(keysOf(10 + 64), (ModifierFlags{ModifierFlag::control, ModifierFlag::command}));
}

TEST(CompanionDecoder, ReadsTheSmallMessages) {
    EXPECT_EQ(decodeAs<CompanionFocus>("Focus", R"({"focus":null})"), CompanionFocus{std::nullopt});
    EXPECT_TRUE(decodeAs<CompanionFocus>("Focus", R"({"focus":)" + windowText() + "}"));
    EXPECT_EQ(decodeAs<CompanionFrameSettled>("FrameSettled", R"({"window":9,"frame":[1,2,3,4]})"),
              (CompanionFrameSettled{CompanionWindowID{9}, {1, 2, 3, 4}}));
    EXPECT_EQ(decodeAs<CompanionItemClick>("ItemClicked", R"({"item":[1,2,3,4],"pointer":[5,6]})"),
              (CompanionItemClick{{1, 2, 3, 4}, {5, 6}}));
    EXPECT_EQ(decodeAs<CompanionPanelAwaited>("PanelAwaited", "{}"), CompanionPanelAwaited{});
    EXPECT_EQ(decodeAs<CompanionPressOutside>("PressOutside", R"({"overview":true})"),
              CompanionPressOutside{true});
    EXPECT_EQ(decodeAs<CompanionPointerPlace>("Pointer", R"({"pointer":[5,6],"keys":2})"),
              (CompanionPointerPlace{{5, 6}, {ModifierFlag::control}}));
    EXPECT_EQ(decodeAs<CompanionGone>("Gone", R"({"window":7})"),
              CompanionGone{CompanionWindowID{7}});
    EXPECT_TRUE(decodeAs<CompanionPoll>("NextCommand", "{}"));
    EXPECT_TRUE(decodeAs<CompanionDisplays>("Displays", R"({"displays":[]})"));
}

TEST(CompanionDecoder, PassesOverFieldsThatItDoesNotKnow) {
    EXPECT_EQ(decodeAs<CompanionGone>("Gone", R"({"later":[{"a":[1]}],"window":7,"x":null})"),
              CompanionGone{CompanionWindowID{7}});
}

TEST(CompanionDecoder, RefusesWhatIsNoMessage) {
    EXPECT_FALSE(decode("Gone", ""));
    EXPECT_FALSE(decode("Gone", "[]"));
    EXPECT_FALSE(decode("Gone", R"({"window":7)"));
    EXPECT_FALSE(decode("Gone", R"({"window":7}{)"));
    EXPECT_FALSE(decode("Gone", "{}"));
    EXPECT_FALSE(decode("Quit", R"({"window":7})"));
    EXPECT_FALSE(decode("", "{}"));
}

TEST(CompanionDecoder, RefusesNumbersOutOfTheirRange) {
    const auto point = [](const QByteArray& numbers) {
        return decode("Pointer", R"({"keys":0,"pointer":)" + numbers + "}").has_value();
    };
    EXPECT_TRUE(point("[-1000000,1e6]"));
    for (const char* bad : {"[1000001,0]", "[0,-1e7]", "[1e999,0]", "[0,null]", "[0,\"1\"]", "[0]",
                            "[0,1,2]", "7", "[true,0]", "[[0],0]"})
        EXPECT_FALSE(point(bad)) << bad;
    const auto frame = [](const QByteArray& numbers) {
        return decode("FrameSettled", R"({"window":1,"frame":)" + numbers + "}").has_value();
    };
    EXPECT_TRUE(frame("[0,0,0,0]"));
    EXPECT_FALSE(frame("[0,0,-1,5]"));
    const auto window = [](const QByteArray& id) {
        return decode("Gone", R"({"window":)" + id + "}").has_value();
    };
    EXPECT_TRUE(window("9007199254740991"));
    for (const char* bad : {"-1", "1.5", "1e300", "\"7\"", "true"})
        EXPECT_FALSE(window(bad)) << bad;
}

TEST(CompanionDecoder, RefusesADisplayOfNoSizeAndOddScales) {
    const auto displays = [](const QByteArray& display) {
        return decode("Displays", R"({"displays":[)" + display + "]}").has_value();
    };
    EXPECT_TRUE(displays(displayText()));
    EXPECT_FALSE(displays(displayText(true, "[0,0,0,1080]")));
    EXPECT_FALSE(displays(displayText().replace(R"("unit":1)", R"("unit":0)")));
    EXPECT_FALSE(displays(displayText().replace(R"("scale":1)", R"("scale":1000)")));
    EXPECT_FALSE(displays(displayText().replace(R"("primary":true)", R"("primary":1)")));
    EXPECT_FALSE(displays(displayText() + ",7"));
}

TEST(CompanionDecoder, KeepsAWorkAreaOnItsDisplay) {
    const auto areaOf = [](const QByteArray& work) {
        return decodeAs<CompanionDisplays>("Displays",
                                           R"({"displays":[)" +
                                               displayText(true, "[0,0,1920,1080]", work) + "]}")
            ->displays[0]
            .workArea;
    };
    EXPECT_EQ(areaOf("[-50,32,4000,1048]"), (CompanionRect{0, 32, 1920, 1048}));
    EXPECT_EQ(areaOf("[5000,0,100,100]"), (CompanionRect{0, 0, 1920, 1080}))
        << "one of a display that is gone";
    EXPECT_EQ(areaOf("[0,0,0,0]"), (CompanionRect{0, 0, 1920, 1080}));
}

TEST(CompanionDecoder, RefusesWhatIsTooLongTooManyOrTooDeep) {
    const auto displays = [](int count) {
        QByteArray list;
        for (int i = 0; i < count; ++i)
            list += (i > 0 ? "," : "") + displayText();
        return decode("Displays", R"({"displays":[)" + list + "]}").has_value();
    };
    EXPECT_TRUE(displays(CompanionDecoder::mostDisplays));
    EXPECT_FALSE(displays(CompanionDecoder::mostDisplays + 1));
    const auto shell = [](qsizetype length) {
        return decode("Hello", helloText().replace("43.9", QByteArray(length, 'x'))).has_value();
    };
    EXPECT_TRUE(shell(CompanionDecoder::longestText));
    EXPECT_FALSE(shell(CompanionDecoder::longestText + 1));
    const auto padded = [](qsizetype length) {
        const QByteArray text = R"({"window":7})";
        return decode("Gone", text + QByteArray(length - text.size(), ' ')).has_value();
    };
    EXPECT_TRUE(padded(CompanionDecoder::longestMessage));
    EXPECT_FALSE(padded(CompanionDecoder::longestMessage + 1));
    const auto nested = [](int depth) {
        return decode("Gone",
                      R"({"window":7,"x":)" + QByteArray(depth, '[') + QByteArray(depth, ']') + "}")
            .has_value();
    };
    EXPECT_TRUE(nested(15));
    EXPECT_FALSE(nested(16));
    EXPECT_FALSE(nested(30'000));
    EXPECT_TRUE(decode("Gone", R"({"window":7,"x":"\"[[[[[[[[[[[[[[[[[[[["})"))
        << "brackets in a text are none";
}

} // namespace tilewright::testing
