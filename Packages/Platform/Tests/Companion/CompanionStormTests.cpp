// Whatever comes, in whatever order: the program goes on, and nothing of it stays behind.

#include "CompanionTexts.h"

#include <Companion/CompanionAccessibility.h>
#include <Companion/CompanionDecoder.h>
#include <Companion/CompanionEventMonitors.h>
#include <Companion/CompanionOutbox.h>
#include <Companion/CompanionScreens.h>
#include <Companion/CompanionState.h>
#include <FakeMainLoop.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace tilewright::testing {
namespace {

constexpr int messagesPerStorm = 4000;

class Storm {
public:
    explicit Storm(unsigned seed)
        : random_(seed) {
        for (const bool isLocal : {false, true}) {
            const EventMask mask{EventType::flagsChanged, EventType::leftMouseDragged,
                                 EventType::leftMouseUp};
            const auto handler = [this](const Event& event) { hear(event); };
            EXPECT_TRUE(isLocal ? monitors_.addLocalMonitor(mask, handler)
                                : monitors_.addGlobalMonitor(mask, handler));
        }
    }

    void rage() {
        for (int i = 0; i < messagesPerStorm; ++i) {
            const auto [method, text] = anyMessage();
            const auto message = CompanionDecoder::decode(method, text);
            if (message)
                state_.take(*message);
            if (oneIn(50))
                state_.lose();
            if (oneIn(20))
                tellKeysOfOthers();
            if (oneIn(3))
                act();
            loop_.runPosted();
            check();
        }
    }

    /// What has to work after everything that may have been.
    void checkThatADragWorks() {
        state_.setKeys(std::nullopt);
        state_.take(*CompanionDecoder::decode(u"Hello", helloText()));
        isDragged_ = false;
        EXPECT_FALSE(state_.dragged());
        EXPECT_EQ(keys_, ModifierFlags());
        ups_ = 0;
        state_.take(*CompanionDecoder::decode(u"DragBegin", dragText(1, "[1,1]", 2)));
        state_.take(*CompanionDecoder::decode(u"DragMotion", dragText(1, "[500,500]", 2)));
        EXPECT_TRUE(isDragged_);
        EXPECT_EQ(keys_, ModifierFlags{ModifierFlag::control});
        state_.take(*CompanionDecoder::decode(u"DragEnd", dragEndText(1, "[500,500]", 2, false)));
        EXPECT_EQ(ups_, 1);
        state_.lose();
        EXPECT_EQ(loop_.postedCount(), 0U);
    }

    [[nodiscard]] int count(EventType type) const {
        return static_cast<int>(std::count(heard_.begin(), heard_.end(), type));
    }

private:
    [[nodiscard]] int upTo(int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random_);
    }
    [[nodiscard]] bool oneIn(int count) { return upTo(count) == 0; }
    template<class Item>
    [[nodiscard]] const Item& anyOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(upTo(static_cast<int>(items.size())))];
    }
    [[nodiscard]] QByteArray anyNumber() {
        static const std::vector<QByteArray> odd{"0",     "-1",    "1e6",    "-1e6", "1e7",
                                                 "1e308", "1e999", "0.5",    "null", "true",
                                                 "\"7\"", "[]",    "999999", "-0.0", "{}"};
        return oneIn(12) ? anyOf(odd) : QByteArray::number(upTo(2000) - 200);
    }
    [[nodiscard]] QByteArray anyNumbers(int count) {
        QByteArray text = "[";
        for (int i = 0; i < count; ++i)
            text += (i > 0 ? "," : "") + anyNumber();
        return text + "]";
    }
    [[nodiscard]] QByteArray anyRect() {
        return oneIn(8) ? anyNumbers(4)
                        : "[" + QByteArray::number(upTo(3000)) + ",5," +
                              QByteArray::number(upTo(900)) + ",700]";
    }
    [[nodiscard]] QByteArray anyWindow() {
        return windowText(upTo(6), anyRect(), oneIn(4), upTo(5) - 1);
    }
    [[nodiscard]] QByteArray anyDisplays() {
        QByteArray text = "[";
        const int count = oneIn(20) ? 40 : upTo(4);
        for (int i = 0; i < count; ++i)
            text += (i > 0 ? "," : "") + displayText(oneIn(2), anyRect(), anyRect());
        return text + "]";
    }
    [[nodiscard]] std::pair<QString, QByteArray> anyMessage() {
        const int serial = upTo(8);
        const QByteArray pointer = anyNumbers(2);
        std::vector<std::pair<QString, QByteArray>> messages{
            {QStringLiteral("Hello"),
             R"({"protocol":)" + QByteArray(oneIn(6) ? "2" : "1") + R"(,"shell":"","displays":)" +
                 anyDisplays() + (oneIn(4) ? R"(,"tellsKeys":false)" : "") + R"(,"focus":)" +
                 (oneIn(2) ? "null" : anyWindow()) + R"(,"pointer":)" + pointer + R"(,"keys":0})"},
            {QStringLiteral("Displays"), R"({"displays":)" + anyDisplays() + "}"},
            {QStringLiteral("Focus"),
             R"({"focus":)" + (oneIn(3) ? QByteArray("null") : anyWindow()) + "}"},
            {QStringLiteral("MotionWish"),
             R"({"reduced":)" + QByteArray(oneIn(2) ? "true}" : "false}")},
            {QStringLiteral("DragBegin"), dragText(serial, pointer, upTo(20), anyWindow())},
            {QStringLiteral("DragMotion"), dragText(serial, pointer, upTo(20), anyWindow())},
            {QStringLiteral("DragMotion"), dragText(serial, pointer, upTo(20), anyWindow())},
            {QStringLiteral("DragEnd"),
             dragEndText(serial, pointer, upTo(20), oneIn(2), anyWindow())},
            {QStringLiteral("FrameSettled"),
             R"({"window":)" + anyNumber() + R"(,"frame":)" + anyRect() + "}"},
            {QStringLiteral("ItemClicked"),
             R"({"item":)" + anyRect() + R"(,"pointer":)" + pointer + "}"},
            {QStringLiteral("PanelAwaited"), "{}"},
            {QStringLiteral("PressOutside"), R"({"overview":true})"},
            {QStringLiteral("Pointer"), R"({"keys":1,"pointer":)" + pointer + "}"},
            {QStringLiteral("Gone"), R"({"window":)" + anyNumber() + "}"},
            {QStringLiteral("Nonsense"), "{}"}};
        auto message = oneIn(10) && !last_.first.isEmpty() ? last_ : anyOf(messages);
        last_ = message;
        return spoilt(message);
    }
    [[nodiscard]] std::pair<QString, QByteArray> spoilt(std::pair<QString, QByteArray> message) {
        QByteArray& text = message.second;
        if (oneIn(15))
            text.truncate(upTo(static_cast<int>(text.size())));
        else if (oneIn(15))
            text[upTo(static_cast<int>(text.size()))] = static_cast<char>(upTo(256));
        else if (oneIn(200))
            text.append(QByteArray(100'000, ' '));
        else if (oneIn(200))
            text = QByteArray(60'000, '[');
        return message;
    }

    /// Where somebody else than the companion knows the keys.
    void tellKeysOfOthers() {
        const ModifierFlags keys =
            oneIn(2) ? ModifierFlags{ModifierFlag::control} : ModifierFlags();
        state_.setKeys(oneIn(3) ? std::nullopt : std::optional(keys));
    }
    /// What the core does meanwhile.
    void act() {
        const auto element = accessibility_.elementAtPosition({200, 200}).value;
        if (!element)
            return;
        static_cast<void>(
            element->setValue(AXAttribute::size, *accessibility_.makeValue(AXSize{300, 200})));
        static_cast<void>(
            element->setValue(AXAttribute::position, *accessibility_.makeValue(AXPoint{5, 6})));
    }
    void hear(const Event& event) {
        heard_.push_back(event.type);
        keys_ = event.modifierFlags;
        isDragged_ = event.type == EventType::leftMouseDragged ||
                     (isDragged_ && event.type != EventType::leftMouseUp);
        ups_ += event.type == EventType::leftMouseUp ? 1 : 0;
    }
    void check() {
        EXPECT_FALSE(isDragged_ && !state_.dragged()) << "a drag that nobody ends";
        EXPECT_FALSE(screens_.all().empty());
        for (const ScreenPtr& screen : screens_.all())
            EXPECT_GT(screen->visibleFrame().width, 0);
        EXPECT_LE(outbox_.take().size(), 64 * 1024);
    }

    std::mt19937 random_;
    FakeMainLoop loop_;
    CompanionState state_;
    CompanionOutbox outbox_;
    CompanionScreens screens_{state_, DrmConnectors(QStringLiteral("/nonexistent"))};
    CompanionEventMonitors monitors_{state_};
    CompanionAccessibility accessibility_{state_, screens_, outbox_, loop_, [] {}};
    std::pair<QString, QByteArray> last_;
    std::vector<EventType> heard_;
    ModifierFlags keys_;
    bool isDragged_ = false;
    int ups_ = 0;
};

} // namespace

TEST(CompanionStorm, LeavesNoDragBehindWhateverComesInWhateverOrder) {
    int drags = 0;
    for (unsigned seed = 1; seed <= 25; ++seed) {
        Storm storm(seed);
        storm.rage();
        storm.checkThatADragWorks();
        drags += storm.count(EventType::leftMouseUp);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "seed " << seed;
    }
    EXPECT_GT(drags, 500) << "hardly anything of the storm was understood";
}

} // namespace tilewright::testing
