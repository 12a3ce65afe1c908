#include "CompanionTexts.h"

#include <Companion/CompanionDecoder.h>
#include <Companion/CompanionState.h>

#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

constexpr int control = 2;
constexpr ModifierFlags controlHeld{ModifierFlag::control};

class CompanionStateTest : public ::testing::Test {
protected:
    CompanionStateTest() {
        QObject::connect(&state, &CompanionState::input, &state,
                         [this](const Event& event, bool isOurs) {
                             types.push_back(event.type);
                             flags.push_back(event.modifierFlags);
                             ours.push_back(isOurs);
                         });
    }

    void tell(const char* method, const QByteArray& text) {
        const auto message = CompanionDecoder::decode(QString::fromLatin1(method), text);
        ASSERT_TRUE(message) << text.toStdString();
        state.take(*message);
    }
    void forgetInput() {
        types.clear();
        flags.clear();
        ours.clear();
    }

    CompanionState state;
    std::vector<EventType> types;
    std::vector<ModifierFlags> flags;
    std::vector<bool> ours;
};

} // namespace

TEST_F(CompanionStateTest, HearsNobodyBeforeHisGreeting) {
    tell("DragBegin", dragText(1, "[1,1]", control));
    tell("Focus", R"({"focus":)" + windowText() + "}");
    EXPECT_FALSE(state.isConnected());
    EXPECT_TRUE(types.empty());
    EXPECT_FALSE(state.lastActive());
    tell("Hello", helloText());
    EXPECT_TRUE(state.isConnected());
}

TEST_F(CompanionStateTest, IsNotConnectedToWhoSpeaksAnotherProtocol) {
    tell("Hello", helloText());
    tell("Hello", R"({"protocol":9})");
    EXPECT_FALSE(state.isConnected());
}

TEST_F(CompanionStateTest, TurnsADragIntoTheInputThatItIs) {
    tell("Hello", helloText());
    tell("DragBegin", dragText(1, "[10,20]", 0));
    EXPECT_TRUE(types.empty()) << "a press alone is nothing yet";
    EXPECT_EQ(state.dragged()->id, CompanionWindowID{7});
    tell("DragMotion", dragText(1, "[10,20]", control));
    EXPECT_EQ(types, std::vector{EventType::flagsChanged});
    EXPECT_EQ(flags, std::vector{controlHeld});
    forgetInput();
    tell("DragMotion", dragText(1, "[11,20]", control));
    EXPECT_EQ(types, std::vector{EventType::leftMouseDragged});
    EXPECT_EQ(state.pointer(), (CompanionPoint{11, 20}));
    forgetInput();
    tell("DragEnd", dragEndText(1, "[12,20]", control, false));
    EXPECT_EQ(types, (std::vector{EventType::leftMouseDragged, EventType::leftMouseUp}));
    EXPECT_FALSE(state.dragged());
    EXPECT_EQ(ours, (std::vector{false, false}));
}

TEST_F(CompanionStateTest, TellsOfAKeyThatWasReleasedWithTheButtonBeforeTheRelease) {
    tell("Hello", helloText());
    tell("DragBegin", dragText(1, "[10,20]", control));
    forgetInput();
    tell("DragEnd", dragEndText(1, "[10,20]", 0, false));
    EXPECT_EQ(types, (std::vector{EventType::flagsChanged, EventType::leftMouseUp}));
    EXPECT_EQ(flags.front(), ModifierFlags());
}

TEST_F(CompanionStateTest, TellsOfNoKeysBeforeACancelledDragEnds) {
    tell("Hello", helloText());
    tell("DragBegin", dragText(1, "[10,20]", control));
    forgetInput();
    tell("DragEnd", dragEndText(1, "[30,20]", control, true));
    EXPECT_EQ(types, (std::vector{EventType::flagsChanged, EventType::leftMouseUp}));
    EXPECT_EQ(flags.front(), ModifierFlags());
    forgetInput();
    tell("DragBegin", dragText(2, "[10,20]", control));
    EXPECT_EQ(flags, std::vector{controlHeld}) << "it is still held at the next drag";
}

TEST_F(CompanionStateTest, EndsADragWithItsCompanionItsWindowOrAnother) {
    const auto endsBy = [this](const std::function<void()>& action) {
        tell("Hello", helloText());
        tell("DragBegin", dragText(1, "[10,20]", control));
        forgetInput();
        action();
        return types == std::vector{EventType::flagsChanged, EventType::leftMouseUp} &&
               flags.front() == ModifierFlags() && !state.dragged();
    };
    EXPECT_TRUE(endsBy([this] { state.lose(); }));
    EXPECT_TRUE(endsBy([this] { tell("Hello", helloText()); }));
    EXPECT_TRUE(endsBy([this] { tell("Gone", R"({"window":7})"); }));
    EXPECT_TRUE(endsBy([this] { state.cancelDrag(); }));
    tell("Hello", helloText());
    tell("DragBegin", dragText(1, "[10,20]", control));
    forgetInput();
    tell("DragBegin", dragText(2, "[10,20]", 0, windowText(8)));
    EXPECT_EQ(types, (std::vector{EventType::flagsChanged, EventType::leftMouseUp}));
    EXPECT_EQ(state.dragged()->id, CompanionWindowID{8});
}

TEST_F(CompanionStateTest, PassesOverWhatComesLateOrTwice) {
    tell("Hello", helloText());
    tell("DragBegin", dragText(5, "[10,20]", control));
    tell("DragEnd", dragEndText(5, "[10,20]", control, false));
    forgetInput();
    tell("DragEnd", dragEndText(5, "[10,20]", control, false));
    tell("DragMotion", dragText(5, "[90,20]", control));
    tell("DragBegin", dragText(5, "[10,20]", 0));
    tell("DragBegin", dragText(4, "[10,20]", 0));
    EXPECT_TRUE(types.empty());
    EXPECT_FALSE(state.dragged());
    tell("DragBegin", dragText(6, "[10,20]", control));
    tell("DragMotion", dragText(5, "[90,20]", 0));
    EXPECT_TRUE(types.empty());
    EXPECT_TRUE(state.dragged());
}

TEST_F(CompanionStateTest, CountsDragsAnewAfterAGreeting) {
    tell("Hello", helloText());
    tell("DragBegin", dragText(500, "[10,20]", 0));
    tell("Hello", helloText());
    tell("DragBegin", dragText(1, "[10,20]", 0));
    EXPECT_TRUE(state.dragged());
}

TEST_F(CompanionStateTest, KnowsInWhoseWindowADragIs) {
    tell("Hello", helloText());
    tell("DragBegin", dragText(1, "[10,20]", control, windowText(9, "[0,0,10,10]", true)));
    EXPECT_EQ(ours, std::vector{true});
}

TEST_F(CompanionStateTest, RemembersTheLastWindowThatIsNotOurs) {
    const auto focus = [this](const QByteArray& window) {
        tell("Focus", R"({"focus":)" + window + "}");
    };
    tell("Hello", helloText(displayText(), windowText(1, "[0,0,10,10]", false, 11)));
    EXPECT_EQ(state.lastActive()->id, CompanionWindowID{1});
    focus(windowText(2, "[0,0,10,10]", false, 22));
    focus(windowText(3, "[0,0,10,10]", true, 33));
    EXPECT_TRUE(state.isFocusOurs());
    EXPECT_EQ(state.lastActive()->id, CompanionWindowID{2});
    focus("null");
    EXPECT_EQ(state.lastActive()->id, CompanionWindowID{2}) << "the desktop has the focus";
    EXPECT_EQ(state.lastActiveOf(11)->id, CompanionWindowID{1});
    EXPECT_FALSE(state.lastActiveOf(99));
    tell("Gone", R"({"window":2})");
    EXPECT_EQ(state.lastActive()->id, CompanionWindowID{1});
    EXPECT_FALSE(state.window(CompanionWindowID{2}));
    tell("Hello", helloText());
    EXPECT_FALSE(state.lastActive()) << "a greeting means: forget all";
}

TEST_F(CompanionStateTest, FollowsTheFramesOfTheWindowsThatItKnows) {
    tell("Hello", helloText(displayText(), windowText(1)));
    tell("FrameSettled", R"({"window":1,"frame":[5,6,7,8]})");
    tell("FrameSettled", R"({"window":2,"frame":[5,6,7,8]})");
    EXPECT_EQ(state.window(CompanionWindowID{1})->frame, (CompanionRect{5, 6, 7, 8}));
    EXPECT_FALSE(state.window(CompanionWindowID{2}));
    EXPECT_EQ(state.lastActive()->frame, (CompanionRect{5, 6, 7, 8}));
}

TEST_F(CompanionStateTest, KeepsNoMoreWindowsThanSomebodyWorksIn) {
    tell("Hello", helloText());
    for (int id = 1; id <= 5000; ++id)
        tell("Focus", R"({"focus":)" + windowText(id) + "}");
    EXPECT_EQ(state.lastActive()->id, CompanionWindowID{5000});
    EXPECT_TRUE(state.window(CompanionWindowID{4990}));
    EXPECT_FALSE(state.window(CompanionWindowID{1}));
}

TEST_F(CompanionStateTest, LosesTheWindowsWithTheCompanionAndKeepsTheDisplays) {
    tell("Hello", helloText(displayText(), windowText()));
    int changes = 0;
    QObject::connect(&state, &CompanionState::connectedChanged, &state, [&] { ++changes; });
    state.lose();
    state.lose();
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(state.lastActive());
    EXPECT_EQ(state.displays().size(), 1U);
}

TEST_F(CompanionStateTest, BelievesOfTheKeysWhoeverKnowsThemAtOnceMoreThanTheCompanion) {
    tell("Hello", R"({"tellsKeys":false,)" + helloText().mid(1));
    EXPECT_TRUE(state.isConnected());
    EXPECT_FALSE(state.hasKeys());
    EXPECT_EQ(state.shell(), QStringLiteral("43.9"));
    state.setKeys(controlHeld);
    EXPECT_TRUE(state.hasKeys());
    EXPECT_TRUE(types.empty()) << "nobody asks between drags";
    tell("DragBegin", dragText(1, "[10,20]", 0));
    EXPECT_EQ(flags, std::vector{controlHeld}) << "held since before the drag";
    tell("DragMotion", dragText(1, "[11,20]", 0));
    EXPECT_EQ(flags.back(), controlHeld);
    forgetInput();
    state.setKeys(ModifierFlags());
    state.setKeys(ModifierFlags());
    EXPECT_EQ(types, std::vector{EventType::flagsChanged}) << "at once, while the pointer rests";
    EXPECT_EQ(flags, std::vector{ModifierFlags()});
    state.setKeys(controlHeld);
    forgetInput();
    state.setKeys(std::nullopt);
    EXPECT_EQ(flags, std::vector{ModifierFlags()}) << "nobody tells of its release any longer";
    EXPECT_FALSE(state.hasKeys());
}

TEST_F(CompanionStateTest, CountsTheLastMotionAgainWithAKeyThatIsToldOfApartFromIt) {
    tell("Hello", R"({"tellsKeys":false,)" + helloText().mid(1));
    state.setKeys(ModifierFlags());
    tell("DragBegin", dragText(1, "[10,20]", 0));
    state.setKeys(controlHeld);
    EXPECT_EQ(types, std::vector{EventType::flagsChanged}) << "there was no motion yet";
    state.setKeys(ModifierFlags());
    tell("DragMotion", dragText(1, "[11,20]", 0));
    forgetInput();
    state.setKeys(controlHeld);
    EXPECT_EQ(types, (std::vector{EventType::flagsChanged, EventType::leftMouseDragged}));
    EXPECT_EQ(flags.back(), controlHeld);
    forgetInput();
    state.setKeys(ModifierFlags());
    EXPECT_EQ(types, std::vector{EventType::flagsChanged}) << "it was released";
}

TEST_F(CompanionStateTest, SaysWhenSomebodyBeginsOrCeasesToTellTheKeys) {
    std::vector<bool> told;
    QObject::connect(&state, &CompanionState::keySourceChanged, &state,
                     [&] { told.push_back(state.hasKeys()); });
    tell("Hello", R"({"tellsKeys":false,)" + helloText().mid(1));
    state.setKeys(ModifierFlags());
    state.setKeys(controlHeld);
    state.setKeys(std::nullopt);
    tell("Hello", helloText());
    EXPECT_EQ(told, (std::vector{false, true, false, true}));
}

} // namespace tilewright::testing
