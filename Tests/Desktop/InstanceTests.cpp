// One instance of the program on an X display.

#include <DesktopSession.h>
#include <Waiting.h>
#include <X11/X11InstanceActivation.h>
#include <XClient.h>

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>

namespace tilewright::testing {
namespace {

using Claim = InstanceActivation::Claim;

/// A start of the program, as far as it is about being the one.
class Start {
public:
    explicit Start(const QString& display)
        : connection_(X11Connection::open(display))
        , instance_(std::in_place, *connection_)
        , requested_(std::in_place, &*instance_, &InstanceActivation::activationRequested) {}

    [[nodiscard]] Claim claim() { return instance_->claim(); }
    [[nodiscard]] qsizetype timesAsked() const { return requested_->size(); }

private:
    std::unique_ptr<X11Connection> connection_;
    std::optional<X11InstanceActivation> instance_;
    std::optional<QSignalSpy> requested_;
};

class InstanceOnADisplay : public ::testing::Test {
protected:
    DesktopSession desktop;
};

} // namespace

TEST_F(InstanceOnADisplay, IsTheFirstWhichTheOthersAskToShowItself) {
    Start first(desktop.display());
    EXPECT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(first.timesAsked(), 0);
    Start second(desktop.display());
    EXPECT_EQ(second.claim(), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return first.timesAsked() == 1; }));
    Start third(desktop.display() + QStringLiteral(".0"));
    EXPECT_EQ(third.claim(), Claim::another) << "all screens of a display are one";
    EXPECT_TRUE(waitUntil([&] { return first.timesAsked() == 2; }));
}

TEST_F(InstanceOnADisplay, IsAnotherOnAnotherDisplay) {
    DesktopSession other;
    Start first(desktop.display());
    Start second(other.display());
    EXPECT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(second.claim(), Claim::first);
}

TEST_F(InstanceOnADisplay, IsTheNextOneOnceTheFormerHasEnded) {
    for (int i = 0; i < 3; ++i) {
        Start start(desktop.display());
        EXPECT_TRUE(waitUntil([&] { return start.claim() == Claim::first; }));
    }
}

TEST_F(InstanceOnADisplay, IsOneOfManyThatStartTogether) {
    std::vector<std::unique_ptr<Start>> starts;
    for (int i = 0; i < 20; ++i)
        starts.push_back(std::make_unique<Start>(desktop.display()));
    int firsts = 0;
    for (const auto& start : starts)
        firsts += start->claim() == Claim::first ? 1 : 0;
    EXPECT_EQ(firsts, 1);
}

TEST_F(InstanceOnADisplay, IsNotTakenFromOneOfWhichAServerThatIsHeldCannotTell) {
    Start first(desktop.display());
    ASSERT_EQ(first.claim(), Claim::first);
    Start second(desktop.display());
    const XClient holder(desktop.display());
    xcb_grab_server(holder.xcb());
    holder.sync();
    EXPECT_EQ(second.claim(), Claim::first) << "nothing here can tell";
    xcb_ungrab_server(holder.xcb());
    holder.sync();
    Start third(desktop.display());
    EXPECT_EQ(third.claim(), Claim::another);
    EXPECT_TRUE(waitUntil([&] { return first.timesAsked() == 1; }));
}

TEST_F(InstanceOnADisplay, IsAskedOnceByAFloodOfMessagesAndNeverByOthersThanThese) {
    Start first(desktop.display());
    ASSERT_EQ(first.claim(), Claim::first);
    const XClient anybody(desktop.display());
    const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        anybody.xcb(), xcb_get_selection_owner(anybody.xcb(), anybody.atom("_TILEWRIGHT_INSTANCE")),
        nullptr));
    ASSERT_TRUE(owner);
    const auto flood = [&](const char* type) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = owner->owner;
        message.type = anybody.atom(type);
        for (int i = 0; i < 1000; ++i)
            xcb_send_event(anybody.xcb(), 0, owner->owner, XCB_EVENT_MASK_NO_EVENT,
                           static_cast<const char*>(static_cast<const void*>(&message)));
        anybody.sync();
    };
    flood("_SOMETHING_ELSE");
    flood("_TILEWRIGHT_INSTANCE");
    EXPECT_TRUE(waitUntil([&] { return first.timesAsked() > 0; }));
    EXPECT_LT(first.timesAsked(), 1000);
}

} // namespace tilewright::testing
