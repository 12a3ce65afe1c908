#include <X11/X11EventQueue.h>

#include <gtest/gtest.h>
#include <vector>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

using namespace tilewright;

namespace {

constexpr xcb_window_t root = 0x123;
constexpr xcb_window_t otherWindow = 0x600001;
constexpr std::uint32_t ownNumbers = 0x400000;
constexpr std::uint32_t numbersMask = 0x1fffff;
constexpr xcb_window_t ownWindow = ownNumbers | 7;
constexpr xcb_atom_t someProperty = 300;
constexpr xcb_atom_t otherProperty = 301;
constexpr std::uint8_t selectionNotice = 87;
constexpr std::uint8_t inputExtension = 131;
constexpr std::uint8_t keyboardNotice = 85;

/// What waits, each with the number under which it arrived.
class X11EventQueueTest : public ::testing::Test {
protected:
    X11EventQueue queue{ownNumbers, numbersMask};

    void push(xcb_generic_event_t event) {
        event.full_sequence = ++arrived;
        // The queue frees what it is given as xcb has allocated it.
        auto* copy = static_cast<xcb_generic_event_t*>(std::malloc(sizeof event));
        *copy = event;
        queue.push(X11EventQueue::Event(copy));
    }
    void pushNotice(xcb_window_t window, xcb_atom_t property) {
        xcb_generic_event_t event{};
        auto* notice = static_cast<xcb_property_notify_event_t*>(static_cast<void*>(&event));
        notice->response_type = XCB_PROPERTY_NOTIFY;
        notice->window = window;
        notice->atom = property;
        push(event);
    }
    void pushSelection(xcb_atom_t selection) {
        xcb_generic_event_t event{};
        auto* notice =
            static_cast<xcb_xfixes_selection_notify_event_t*>(static_cast<void*>(&event));
        notice->response_type = selectionNotice;
        notice->selection = selection;
        push(event);
    }
    void pushMapping(std::uint8_t request) {
        xcb_generic_event_t event{};
        auto* notice = static_cast<xcb_mapping_notify_event_t*>(static_cast<void*>(&event));
        notice->response_type = XCB_MAPPING_NOTIFY;
        notice->request = request;
        push(event);
    }
    void pushInput(std::uint16_t number, std::uint8_t extension = inputExtension) {
        xcb_generic_event_t event{};
        auto* notice = static_cast<xcb_ge_generic_event_t*>(static_cast<void*>(&event));
        notice->response_type = XCB_GE_GENERIC;
        notice->extension = extension;
        notice->event_type = number;
        push(event);
    }
    void pushOther(std::uint8_t type) {
        xcb_generic_event_t event{};
        event.response_type = type;
        push(event);
    }
    std::vector<std::uint32_t> takeAll() {
        std::vector<std::uint32_t> numbers;
        while (!queue.isEmpty())
            numbers.push_back(queue.take()->full_sequence);
        return numbers;
    }

private:
    std::uint32_t arrived = 0;
};

using Numbers = std::vector<std::uint32_t>;

} // namespace

TEST_F(X11EventQueueTest, HandsOutEventsInTheOrderOfTheirArrival) {
    EXPECT_EQ(queue.front(), nullptr);
    pushOther(XCB_CONFIGURE_NOTIFY);
    pushNotice(root, someProperty);
    pushOther(XCB_CONFIGURE_NOTIFY);
    EXPECT_EQ(queue.front()->full_sequence, 1U);
    EXPECT_EQ(takeAll(), (Numbers{1, 2, 3}));
    EXPECT_EQ(queue.front(), nullptr);
}

TEST_F(X11EventQueueTest, KeepsTheLastOfTheNoticesOfOneProperty) {
    pushNotice(root, someProperty);
    pushOther(XCB_CONFIGURE_NOTIFY);
    pushNotice(root, otherProperty);
    pushNotice(root, someProperty);
    pushNotice(otherWindow, someProperty);
    pushNotice(root, someProperty);
    EXPECT_EQ(queue.leftOut(), 2U);
    EXPECT_EQ(takeAll(), (Numbers{2, 3, 5, 6}));
}

TEST_F(X11EventQueueTest, KeepsTheLastOfTheNoticesOfASelectionAndOfAMapping) {
    queue.setSelectionNotice(selectionNotice);
    pushSelection(someProperty);
    pushMapping(XCB_MAPPING_POINTER);
    pushSelection(otherProperty);
    pushSelection(someProperty);
    pushMapping(XCB_MAPPING_KEYBOARD);
    pushMapping(XCB_MAPPING_POINTER);
    EXPECT_EQ(takeAll(), (Numbers{3, 4, 5, 6}));
}

TEST_F(X11EventQueueTest, HandsOutANoticeThatArrivesAfterTheOneBeforeWasHeard) {
    pushNotice(root, someProperty);
    EXPECT_EQ(takeAll(), Numbers{1});
    pushNotice(root, someProperty);
    pushNotice(root, someProperty);
    EXPECT_EQ(takeAll(), Numbers{3});
}

TEST_F(X11EventQueueTest, KeepsEachNoticeAboutTheConnectionsOwnWindows) {
    for (int i = 0; i < 3; ++i)
        pushNotice(ownWindow, someProperty);
    EXPECT_EQ(takeAll(), (Numbers{1, 2, 3}));
}

TEST_F(X11EventQueueTest, HoldsNoMoreThanThePropertiesHoweverOftenTheyChange) {
    constexpr int properties = 5;
    for (int i = 0; i < 100'000; ++i)
        pushNotice(root, someProperty + static_cast<xcb_atom_t>(i % properties));
    EXPECT_EQ(queue.size(), std::size_t{properties});
    EXPECT_EQ(takeAll(), (Numbers{99'996, 99'997, 99'998, 99'999, 100'000}));
}

TEST_F(X11EventQueueTest, TakesMovesForOneUntilOtherInputComesBetween) {
    queue.setInputNotices(inputExtension, keyboardNotice);
    pushInput(XCB_INPUT_RAW_MOTION);
    pushNotice(root, someProperty);
    pushInput(XCB_INPUT_RAW_MOTION);
    pushInput(XCB_INPUT_RAW_BUTTON_RELEASE);
    pushInput(XCB_INPUT_RAW_MOTION);
    pushInput(XCB_INPUT_RAW_MOTION);
    pushOther(keyboardNotice);
    pushInput(XCB_INPUT_RAW_MOTION);
    pushOther(keyboardNotice);
    EXPECT_EQ(takeAll(), (Numbers{2, 3, 4, 6, 7, 8, 9}));
    EXPECT_EQ(queue.leftOut(), 2U);
}

TEST_F(X11EventQueueTest, TakesMovesForOneAfterEarlierOnesWereHeard) {
    queue.setInputNotices(inputExtension, keyboardNotice);
    pushInput(XCB_INPUT_RAW_MOTION);
    pushInput(XCB_INPUT_RAW_BUTTON_PRESS);
    pushInput(XCB_INPUT_RAW_MOTION);
    EXPECT_EQ(queue.take()->full_sequence, 1U);
    EXPECT_EQ(queue.take()->full_sequence, 2U);
    pushInput(XCB_INPUT_RAW_MOTION);
    EXPECT_EQ(takeAll(), Numbers{4});
    pushInput(XCB_INPUT_RAW_MOTION);
    EXPECT_EQ(takeAll(), Numbers{5});
}

TEST_F(X11EventQueueTest, KeepsEachEventThatOnlyLooksLikeAMove) {
    queue.setInputNotices(inputExtension, keyboardNotice);
    for (int i = 0; i < 2; ++i) {
        pushInput(XCB_INPUT_RAW_MOTION, inputExtension + 1);
        pushInput(XCB_INPUT_RAW_BUTTON_PRESS);
    }
    EXPECT_EQ(takeAll(), (Numbers{1, 2, 3, 4}));
}

TEST_F(X11EventQueueTest, HoldsOneMoveHoweverManyWait) {
    queue.setInputNotices(inputExtension, keyboardNotice);
    for (int i = 0; i < 100'000; ++i)
        pushInput(XCB_INPUT_RAW_MOTION);
    EXPECT_EQ(takeAll(), Numbers{100'000});
}
