// Displays of real servers: plugged, unplugged, moved, named, and with panels on them.

#include "SnapBench.h"

#include <BareClient.h>
#include <WindowManager/DisplayIdentity.h>

#include <QRegularExpression>
#include <QSignalSpy>
#include <xcb/randr.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

struct DisplayBench {
    explicit DisplayBench(std::unique_ptr<XServer> server = XServer::twoOutputs())
        : desktop(std::move(server)) {
        EXPECT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
        restart();
    }
    /// As when the program is started again.
    void restart() {
        changes.reset();
        platform.reset();
        platform = std::make_unique<X11TestPlatform>(desktop.display());
        changes = std::make_unique<QSignalSpy>(&platform->screens, &Screens::screensChanged);
    }
    void xrandr(const QStringList& arguments) {
        static_cast<void>(outputOf(QStringLiteral("xrandr"), arguments, desktop.environment()));
    }
    [[nodiscard]] const std::vector<ScreenPtr>& screens() { return platform->screens.all(); }
    /// What each output measures, by the word of another client: they are alike.
    [[nodiscard]] QSize outputSize() const {
        const QString listed = outputOf(QStringLiteral("xrandr"),
                                        {QStringLiteral("--listmonitors")}, desktop.environment());
        const QRegularExpression numbers(QStringLiteral(" (\\d+)/\\d+x(\\d+)/\\d+\\+0\\+0"));
        const auto match = numbers.match(listed);
        return {match.captured(1).toInt(), match.captured(2).toInt()};
    }
    /// Writes what a monitor would tell of itself.
    void setEdid(const char* output, const QByteArray& edid) {
        xcb_connection_t* xcb = desktop.inspector().connection();
        const XReply<xcb_randr_get_screen_resources_reply_t> resources(
            xcb_randr_get_screen_resources_reply(
                xcb, xcb_randr_get_screen_resources(xcb, desktop.inspector().root()), nullptr));
        ASSERT_NE(resources, nullptr);
        const auto* outputs = xcb_randr_get_screen_resources_outputs(resources.get());
        for (int i = 0; i < xcb_randr_get_screen_resources_outputs_length(resources.get()); ++i) {
            const XReply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
                xcb, xcb_randr_get_output_info(xcb, outputs[i], XCB_CURRENT_TIME), nullptr));
            const QByteArray name(
                reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                xcb_randr_get_output_info_name_length(info.get()));
            if (name == output)
                xcb_randr_change_output_property(
                    xcb, outputs[i], desktop.inspector().atom("EDID"), XCB_ATOM_INTEGER, 8,
                    XCB_PROP_MODE_REPLACE, static_cast<quint32>(edid.size()), edid.constData());
        }
        xcb_flush(xcb);
    }

    DesktopSession desktop;
    std::unique_ptr<X11TestPlatform> platform;
    std::unique_ptr<QSignalSpy> changes;
};

QByteArray edid(char serial) {
    QByteArray bytes(128, '\0');
    bytes.replace(0, 8, QByteArray("\x00\xff\xff\xff\xff\xff\xff\x00", 8));
    bytes[8] = char(0x10);
    bytes[9] = char(0xac);
    bytes[10] = char(0x42);
    bytes[12] = serial;
    bytes[57] = char(0xfc);
    bytes.replace(59, 13, QByteArray("Bench 24\n    "));
    return bytes;
}

/// Under which keys the two displays of a server that has just come up are known, left one first.
/// A monitor without an EDID is given as an empty one.
std::vector<QString> keysOnANewServer(const QByteArray& left, const QByteArray& right) {
    DisplayBench bench;
    if (!left.isEmpty())
        bench.setEdid("DUMMY0", left);
    if (!right.isEmpty())
        bench.setEdid("DUMMY1", right);
    EXPECT_NE(bench.desktop.inspector().inputFocus(), ~0U); // A round trip: the EDIDs are there.
    bench.restart();
    std::vector<QString> keys;
    keys.reserve(bench.screens().size());
    for (const ScreenPtr& screen : bench.screens())
        keys.push_back(displayIdentity(*screen).value_or(DisplayIdentity{}).key);
    EXPECT_EQ(keys.size(), 2U);
    EXPECT_NE(keys.front(), keys.back());
    return keys;
}

} // namespace

TEST(Displays, AreListedPrimaryFirstInAppKitSpace) {
    DisplayBench bench;
    ASSERT_EQ(bench.screens().size(), 2U);
    const double width = bench.outputSize().width();
    const double height = bench.outputSize().height();
    ASSERT_GT(width, 0);
    EXPECT_EQ(bench.screens()[0]->frame(), (AppKitRect{0, 0, width, height}));
    EXPECT_EQ(bench.screens()[1]->frame(), (AppKitRect{width, 0, width, height}));
    EXPECT_EQ(bench.screens()[0]->localizedName(), QStringLiteral("DUMMY0"));
    EXPECT_NE(bench.screens()[0]->displayID(), bench.screens()[1]->displayID());
    EXPECT_FALSE(bench.screens()[0]->persistentUUID().has_value());

    bench.xrandr(
        {QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--primary")});
    ASSERT_TRUE(waitUntil([&] { return bench.changes->count() == 1; }));
    EXPECT_EQ(bench.screens()[0]->localizedName(), QStringLiteral("DUMMY1"));
    EXPECT_EQ(bench.screens()[0]->frame(), (AppKitRect{0, 0, width, height}));
    EXPECT_EQ(bench.screens()[1]->frame(), (AppKitRect{-width, 0, width, height}));
}

TEST(Displays, ComeAndGoWithOneAnnouncementForEachBurst) {
    DisplayBench bench;
    ASSERT_EQ(bench.screens().size(), 2U);
    const ScreenPtr stays = bench.screens()[0];
    const ScreenPtr goes = bench.screens()[1];
    const AppKitRect before = goes->frame();
    bench.xrandr({QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--off")});
    ASSERT_TRUE(waitUntil([&] { return bench.screens().size() == 1; }));
    EXPECT_EQ(bench.screens()[0], stays);
    EXPECT_EQ(goes->frame(), before);
    bench.xrandr({QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--mode"),
                  QStringLiteral("640x480"), QStringLiteral("--left-of"),
                  QStringLiteral("DUMMY0")});
    ASSERT_TRUE(waitUntil([&] { return bench.screens().size() == 2; }));
    const double above = before.height - 480;
    EXPECT_TRUE(waitUntil([&] {
        return bench.screens()[1]->frame() == AppKitRect{-640, above, 640, 480};
    }));
    EXPECT_EQ(bench.screens()[1]->displayID(), goes->displayID());
    // One for each of the two commands; the window manager's answer to one may come on its own.
    EXPECT_GE(bench.changes->count(), 2);
    EXPECT_LE(bench.changes->count(), 4);
}

TEST(Displays, FollowAChangeOfResolution) {
    DisplayBench bench;
    bench.xrandr({QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--mode"),
                  QStringLiteral("800x600")});
    EXPECT_TRUE(waitUntil([&] {
        return bench.screens().size() == 2 && bench.screens()[1]->frame().width == 800 &&
               bench.screens()[1]->frame().height == 600;
    }));
}

TEST(Displays, FollowATurnAndKeepTheirIdentity) {
    const auto host = XServer::virtualScreen({1600, 1600});
    ASSERT_TRUE(host);
    DisplayBench bench(XServer::rotatableWithin(*host, {1280, 800}));
    ASSERT_EQ(bench.screens().size(), 1U);
    const ScreenPtr upright = bench.screens()[0];
    ASSERT_EQ(upright->frame(), (AppKitRect{0, 0, 1280, 800}));
    const auto turn = [&](const char* orientation, const AppKitRect& expected) {
        bench.xrandr({QStringLiteral("-o"), QString::fromLatin1(orientation)});
        return waitUntil([&] {
            const Screen& screen = *bench.screens()[0];
            return screen.frame() == expected && screen.visibleFrame() == expected;
        });
    };
    EXPECT_TRUE(turn("left", {0, 0, 800, 1280}));
    EXPECT_GE(bench.changes->count(), 1);
    EXPECT_NE(bench.screens()[0], upright);
    EXPECT_EQ(upright->frame(), (AppKitRect{0, 0, 1280, 800})) << "it keeps its last values";
    EXPECT_EQ(displayIdentity(*bench.screens()[0]), displayIdentity(*upright));
    EXPECT_TRUE(turn("normal", {0, 0, 1280, 800}));
}

TEST(Displays, KeepTheirKeysWhenTheServerIsRestarted) {
    EXPECT_EQ(keysOnANewServer(edid(1), edid(2)), keysOnANewServer(edid(1), edid(2)));
}

TEST(Displays, KeepTheirKeysAsTwinsWhenTheServerIsRestarted) {
    EXPECT_EQ(keysOnANewServer(edid(1), edid(1)), keysOnANewServer(edid(1), edid(1)));
}

TEST(Displays, KeepTheirKeysWithoutASerialOrAnEdidWhenTheServerIsRestarted) {
    EXPECT_EQ(keysOnANewServer(edid(0), {}), keysOnANewServer(edid(0), {}));
}

TEST(Displays, TakeNamesAndLastingKeysFromTheirEdids) {
    DisplayBench bench;
    bench.setEdid("DUMMY0", edid(1));
    bench.setEdid("DUMMY1", edid(1));
    ASSERT_TRUE(waitUntil([&] {
        return bench.screens().size() == 2 && bench.screens()[0]->persistentUUID() &&
               bench.screens()[1]->persistentUUID();
    }));
    EXPECT_EQ(bench.screens()[0]->localizedName(), QStringLiteral("Bench 24"));
    const auto first = bench.screens()[0]->persistentUUID();
    const auto twin = bench.screens()[1]->persistentUUID();
    EXPECT_NE(first, twin);
    bench.xrandr({QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--off")});
    ASSERT_TRUE(waitUntil([&] { return bench.screens().size() == 1; }));
    EXPECT_EQ(bench.screens()[0]->persistentUUID(), first);
    bench.xrandr({QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--auto"),
                  QStringLiteral("--right-of"), QStringLiteral("DUMMY0")});
    ASSERT_TRUE(waitUntil([&] { return bench.screens().size() == 2; }));
    EXPECT_EQ(bench.screens()[1]->persistentUUID(), twin);
    bench.restart();
    EXPECT_EQ(bench.screens()[0]->persistentUUID(), first);
    EXPECT_EQ(bench.screens()[1]->persistentUUID(), twin);
}

TEST(Displays, GiveUpWhatPanelsReserveEachOnItsOwnMonitor) {
    DisplayBench bench;
    const ScreenPtr left = bench.screens()[0];
    const int width = bench.outputSize().width();
    const int height = bench.outputSize().height();
    const auto strut = [&](int thickness) {
        const auto last = static_cast<quint32>(height - 1);
        return std::vector<quint32>{quint32(width + thickness), 0, 0, 0, 0, last, 0, 0, 0, 0, 0, 0};
    };
    const auto leaves = [&](int thickness) {
        return waitUntil([&] {
            return bench.screens()[1]->visibleFrame() == AppKitRect{double(width + thickness), 0,
                                                                    double(width - thickness),
                                                                    double(height)};
        });
    };
    {
        // At the left edge of the right monitor: an inner edge of the screen.
        BareClient panel(bench.desktop.display(), QRect(width, 0, 48, height), strut(48));
        EXPECT_TRUE(leaves(48));
        EXPECT_EQ(bench.screens()[0], left);
        panel.setStrut(strut(80));
        EXPECT_TRUE(leaves(80));
    }
    EXPECT_TRUE(leaves(0));
    EXPECT_EQ(bench.screens()[0], left);
}

TEST(Displays, KnowWhereWindowManagersMayTileAWindowThatIsLetGo) {
    DisplayBench bench;
    const QSize output = bench.outputSize();
    const int width = output.width();
    const int height = output.height();
    const BareClient panel(bench.desktop.display(), QRect(0, 0, width, 40),
                           {0, 0, 40, 0, 0, 0, 0, 0, 0, quint32(width - 1), 0, 0});
    ASSERT_TRUE(waitUntil([&] { return bench.screens().front()->visibleFrame().height < height; }));
    const X11Screens& screens = bench.platform->desktop().screens();
    for (const int left : {0, width}) {
        EXPECT_FALSE(screens.isNearAnEdge({left + width / 2, height / 2}));
        EXPECT_TRUE(screens.isNearAnEdge({left, height / 2}));
        EXPECT_TRUE(screens.isNearAnEdge({left + width - 1, height / 2}));
        EXPECT_TRUE(screens.isNearAnEdge({left + width / 2, 0}));
        EXPECT_TRUE(screens.isNearAnEdge({left + width / 2, height - 1}));
    }
    // An edge is also where the panel ends.
    EXPECT_TRUE(screens.isNearAnEdge({width / 2, 70}));
    EXPECT_FALSE(screens.isNearAnEdge({width + width / 2, 70}));
}

TEST(Displays, GiveUpWhatAWindowReservesThatBecomesAPanelLater) {
    DisplayBench bench;
    const int width = bench.outputSize().width();
    const int height = bench.outputSize().height();
    BareClient window(bench.desktop.display(), QRect(width, 0, width, 40));
    ASSERT_TRUE(waitUntil([&] {
        return bench.platform->accessibility.elementAtPosition({width + 500.0, 20})
            .value.has_value();
    }));
    window.becomePanel({0, 0, 40, 0, 0, 0, 0, 0, quint32(width), quint32(2 * width - 1), 0, 0});
    const auto hasStripOf = [&](int thickness) {
        return waitUntil([&] {
            return bench.screens()[1]->visibleFrame() ==
                   AppKitRect{double(width), 0, double(width), double(height - thickness)};
        });
    };
    EXPECT_TRUE(hasStripOf(40));
    EXPECT_FALSE(
        bench.platform->accessibility.elementAtPosition({width + 500.0, 20}).value.has_value());
    window.setStrut({0, 0, 64, 0, 0, 0, 0, 0, quint32(width), quint32(2 * width - 1), 0, 0});
    EXPECT_TRUE(hasStripOf(64));
}

TEST(Displays, GiveNoElementForAPanelAndTheWallpaper) {
    DisplayBench bench;
    const int width = bench.outputSize().width();
    const int height = bench.outputSize().height();
    const BareClient panel(bench.desktop.display(), QRect(0, 0, width, 40),
                           {0, 0, 40, 0, 0, 0, 0, 0, 0, quint32(width - 1), 0, 0});
    EXPECT_TRUE(waitUntil([&] {
        return bench.screens()[0]->visibleFrame() ==
               AppKitRect{0, 0, double(width), double(height - 40)};
    }));
    auto& accessibility = bench.platform->accessibility;
    EXPECT_FALSE(accessibility.elementAtPosition({500, 20}).value.has_value());
    EXPECT_FALSE(accessibility.elementAtPosition({500, 300}).value.has_value());
    EXPECT_FALSE(accessibility.elementAtPosition({-9e9, 300}).value.has_value());
}

TEST(Displays, KnowTheOneWithTheActiveWindowAndThePointersPlace) {
    DisplayBench bench;
    const int width = bench.outputSize().width();
    const int height = bench.outputSize().height();
    const BareClient client(bench.desktop.display(), QRect(width + 200, 200, 400, 300));
    EXPECT_TRUE(waitUntil(
        [&] { return !bench.desktop.inspector().property(client.window(), "WM_STATE").empty(); }));
    EXPECT_TRUE(activate(bench.desktop, client.window()));
    EXPECT_TRUE(waitUntil([&] { return bench.platform->screens.main() == bench.screens()[1]; }));
    bench.desktop.input().move({width - 1, 0});
    EXPECT_EQ(bench.platform->pointer.location(), (AppKitPoint{width - 0.5, height - 0.5}));
    EXPECT_EQ(WindowManager::screenWithMouse(), bench.screens()[0]);
    bench.desktop.input().move({width, height - 1});
    EXPECT_EQ(bench.platform->pointer.location(), (AppKitPoint{width + 0.5, 0.5}));
    EXPECT_EQ(WindowManager::screenWithMouse(), bench.screens()[1]);
}
