// More events than anybody can heed, from a client that changes properties without pause.

#include "SnapBench.h"

#include <BareClient.h>
#include <DesktopSession.h>
#include <Waiting.h>
#include <X11/X11StaleNotices.h>
#include <X11TestPlatform.h>
#include <XClient.h>

#include <gtest/gtest.h>
#include <malloc.h>

namespace tilewright::testing {
namespace {

constexpr int floodLength = 100'000;

/// In bytes; what is allocated on the heap and not freed.
std::size_t heapInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

/// Tells of an active window again and again; in the end of this one.
void floodActiveWindow(const XClient& anybody, xcb_window_t last) {
    const xcb_atom_t property = anybody.atom("_NET_ACTIVE_WINDOW");
    for (int i = 1; i <= floodLength; ++i)
        anybody.setProperty(anybody.root(), property, XCB_ATOM_WINDOW,
                            {i == floodLength ? last : 1});
    anybody.sync();
}

std::unique_ptr<BareClient> windowOf(const QString& display) {
    return std::make_unique<BareClient>(
        display, QRect(300, 200, 400, 300),
        BareClientTraits{{}, static_cast<quint32>(QCoreApplication::applicationPid()), false, 0});
}

/// A connection that reads a root property at each notice of it that it hears, as Qt does.
class Reader {
public:
    explicit Reader(const XClient& client, xcb_atom_t property)
        : client_(client)
        , property_(property) {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(client.xcb(), client.root(), XCB_CW_EVENT_MASK, &events);
        client.sync();
    }

    /// Hears all that the server has told so far.
    void hear() {
        client_.sync();
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(client_.xcb())}) {
            ++arrived;
            if (filter_.nativeEventFilter("xcb_generic_event_t", event.get(), nullptr))
                continue;
            ++reads;
            const XReply<xcb_get_property_reply_t> reply(
                xcb_get_property_reply(client_.xcb(),
                                       xcb_get_property(client_.xcb(), 0, client_.root(), property_,
                                                        XCB_ATOM_CARDINAL, 0, 1),
                                       nullptr));
            known = *static_cast<const quint32*>(xcb_get_property_value(reply.get()));
        }
    }

    int arrived = 0;
    int reads = 0;
    quint32 known = 0;

private:
    const XClient& client_;
    const xcb_atom_t property_;
    X11StaleNotices filter_{client_.xcb()};
};

class FloodOnADisplay : public ::testing::Test {
protected:
    DesktopSession desktop;
};

} // namespace

TEST_F(FloodOnADisplay, OfARootPropertyIsReadAFewTimesAndTheLastOfItIsKnown) {
    ASSERT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
    X11TestPlatform platform(desktop.display());
    const auto window = windowOf(desktop.display());
    // The window manager tells of it, too: the flood is to begin after that.
    ASSERT_TRUE(activate(desktop, window->window()));
    ASSERT_TRUE(waitUntil([&] { return platform.workspace.frontmostApplication().has_value(); }));
    const XClient anybody(desktop.display());
    const std::uint64_t roundTrips = platform.connection().roundTrips();
    const std::size_t heap = heapInUse();
    floodActiveWindow(anybody, window->window());
    EXPECT_TRUE(waitUntil([&] {
        return platform.connection().eventsLeftOut() + 1000 >= std::uint64_t{floodLength};
    })) << platform.connection().eventsLeftOut()
        << " events were left out";
    EXPECT_LT(platform.connection().roundTrips(), roundTrips + 1000);
    EXPECT_EQ(platform.workspace.frontmostApplication(), QCoreApplication::applicationPid());
    constexpr std::size_t little = 1'000'000;
    EXPECT_LT(heapInUse(), heap + little);
}

TEST_F(FloodOnADisplay, IsKeptFromAReaderAsFarAsItHasReadWhatTheFloodTells) {
    const XClient reading(desktop.display());
    const XClient anybody(desktop.display());
    const xcb_atom_t property = anybody.atom("_NET_WORKAREA");
    Reader reader(reading, property);
    const auto flood = [&](quint32 last) {
        for (quint32 i = 1; i <= floodLength; ++i)
            anybody.setProperty(anybody.root(), property, XCB_ATOM_CARDINAL,
                                {i == floodLength ? last : i});
        anybody.sync();
    };
    for (int round = 1; round <= 3; ++round) {
        flood(static_cast<quint32>(round));
        reader.hear();
        EXPECT_EQ(reader.arrived, round * floodLength);
        EXPECT_EQ(reader.reads, round) << "all that had arrived was as old as the first reading";
        EXPECT_EQ(reader.known, static_cast<quint32>(round));
    }
    // A single change after the last reading is no flood.
    anybody.setProperty(anybody.root(), property, XCB_ATOM_CARDINAL, {77});
    anybody.sync();
    reader.hear();
    EXPECT_EQ(reader.reads, 4);
    EXPECT_EQ(reader.known, 77U);
}

TEST_F(FloodOnADisplay, OfManyPropertiesHidesNoneOfThemFromAReader) {
    const XClient reading(desktop.display());
    const XClient anybody(desktop.display());
    Reader reader(reading, anybody.atom("_NET_WORKAREA"));
    constexpr int names = 1000;
    anybody.setProperty(anybody.root(), anybody.atom("_NET_WORKAREA"), XCB_ATOM_CARDINAL, {5});
    for (int i = 0; i < names; ++i)
        anybody.setProperty(anybody.root(), anybody.atom(("_FLOOD_" + std::to_string(i)).c_str()),
                            XCB_ATOM_CARDINAL, {1});
    anybody.sync();
    reader.hear();
    EXPECT_EQ(reader.reads, names + 1);
}

TEST_F(FloodOnADisplay, OfSettingsManagersIsFollowedAFewTimes) {
    X11TestPlatform platform(desktop.display());
    const XClient anybody(desktop.display());
    const xcb_window_t window = xcb_generate_id(anybody.xcb());
    xcb_create_window(anybody.xcb(), 0, window, anybody.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const xcb_atom_t selection = anybody.atom("_XSETTINGS_S0");
    const std::uint64_t roundTrips = platform.connection().roundTrips();
    for (int i = 0; i < floodLength; ++i)
        xcb_set_selection_owner(anybody.xcb(), window, selection, XCB_CURRENT_TIME);
    anybody.sync();
    EXPECT_TRUE(waitUntil([&] {
        return platform.connection().eventsLeftOut() + 1000 >= std::uint64_t{floodLength};
    })) << platform.connection().eventsLeftOut()
        << " events were left out";
    EXPECT_LT(platform.connection().roundTrips(), roundTrips + 1000);
}

TEST_F(FloodOnADisplay, OfButtonMappingsIsReadAFewTimes) {
    X11TestPlatform platform(desktop.display());
    const auto monitor = platform.eventMonitors.addGlobalMonitor({EventType::leftMouseDown},
                                                                 [](const Event& /*event*/) {});
    ASSERT_TRUE(monitor);
    const XClient anybody(desktop.display());
    const XReply<xcb_get_pointer_mapping_reply_t> mapping(xcb_get_pointer_mapping_reply(
        anybody.xcb(), xcb_get_pointer_mapping(anybody.xcb()), nullptr));
    ASSERT_TRUE(mapping);
    const std::uint64_t roundTrips = platform.connection().roundTrips();
    constexpr int times = 20'000;
    for (int i = 0; i < times; ++i)
        static_cast<void>(xcb_set_pointer_mapping_unchecked(
            anybody.xcb(), static_cast<quint8>(xcb_get_pointer_mapping_map_length(mapping.get())),
            xcb_get_pointer_mapping_map(mapping.get())));
    anybody.sync();
    EXPECT_TRUE(waitUntil([&] {
        return platform.connection().eventsLeftOut() + 1000 >= std::uint64_t{times};
    })) << platform.connection().eventsLeftOut()
        << " events were left out";
    EXPECT_LT(platform.connection().roundTrips(), roundTrips + 1000);
    platform.eventMonitors.removeMonitor(*monitor);
}

} // namespace tilewright::testing
