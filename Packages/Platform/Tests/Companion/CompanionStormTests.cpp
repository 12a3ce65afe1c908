// Whatever comes, in whatever order: the program goes on, and nothing of it stays behind.

#include "CompanionNoise.h"

#include <Companion/CompanionAccessibility.h>
#include <Companion/CompanionDecoder.h>
#include <Companion/CompanionEventMonitors.h>
#include <Companion/CompanionOutbox.h>
#include <Companion/CompanionScreens.h>
#include <Companion/CompanionState.h>
#include <FakeMainLoop.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {
namespace {

constexpr int messagesPerStorm = 4000;

class Storm {
public:
    explicit Storm(unsigned seed)
        : noise_(seed) {
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
            const auto [method, text] = noise_.anyMessage();
            const auto message = CompanionDecoder::decode(method, text);
            if (message)
                state_.take(*message);
            if (noise_.oneIn(50))
                state_.lose();
            if (noise_.oneIn(20))
                tellKeysOfOthers();
            if (noise_.oneIn(3))
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
    /// Where somebody else than the companion knows the keys.
    void tellKeysOfOthers() {
        const ModifierFlags keys =
            noise_.oneIn(2) ? ModifierFlags{ModifierFlag::control} : ModifierFlags();
        state_.setKeys(noise_.oneIn(3) ? std::nullopt : std::optional(keys));
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

    CompanionNoise noise_;
    FakeMainLoop loop_;
    CompanionState state_;
    CompanionOutbox outbox_;
    CompanionScreens screens_{state_, DrmConnectors(QStringLiteral("/nonexistent"))};
    CompanionEventMonitors monitors_{state_};
    CompanionAccessibility accessibility_{state_, screens_, outbox_, loop_, [] {}};
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
