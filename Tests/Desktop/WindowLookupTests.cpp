// Which window counts as the one under a place, where a window manager lays windows of its own over
// those of applications: covers that catch the mouse during a drag, outlines, the size in figures.

#include "SnapBench.h"

#include <XClient.h>

#include <xcb/shape.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

constexpr quint32 normalState = 1;
constexpr quint32 iconicState = 3;

/// What a window is made with.
struct LayerTraits {
    xcb_window_class_t kind = XCB_WINDOW_CLASS_INPUT_OUTPUT;
    quint32 events = XCB_EVENT_MASK_NO_EVENT;
    const char* type = nullptr;
    /// 0 for a window that nobody manages.
    quint32 state = 0;
};

/// Makes windows straight on the screen, each above those before.
class Maker {
public:
    explicit Maker(const QString& display)
        : client_(display) {}

    xcb_window_t lay(const QRect& area, const LayerTraits& traits = {}) {
        const xcb_window_t window = xcb_generate_id(client_.xcb());
        const std::array<quint32, 2> values{1, traits.events};
        xcb_create_window(client_.xcb(), XCB_COPY_FROM_PARENT, window, client_.root(),
                          static_cast<qint16>(area.x()), static_cast<qint16>(area.y()),
                          static_cast<quint16>(area.width()), static_cast<quint16>(area.height()),
                          0, static_cast<quint16>(traits.kind), XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
        if (traits.type)
            set(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {client_.atom(traits.type)});
        if (traits.state != 0)
            set(window, "WM_STATE", client_.atom("WM_STATE"), {traits.state, 0});
        xcb_map_window(client_.xcb(), window);
        client_.sync();
        return window;
    }
    void unmap(xcb_window_t window) {
        xcb_unmap_window(client_.xcb(), window);
        client_.sync();
    }
    /// Lets the mouse through, but for a part of the window.
    void takeInputIn(xcb_window_t window, const QRect& part) {
        const xcb_rectangle_t rectangle{
            static_cast<qint16>(part.x()), static_cast<qint16>(part.y()),
            static_cast<quint16>(part.width()), static_cast<quint16>(part.height())};
        xcb_shape_rectangles(client_.xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, window, 0, 0, part.isEmpty() ? 0 : 1,
                             &rectangle);
        client_.sync();
    }
    /// Becomes the screen's window manager, as far as the extended hints tell.
    void manage() {
        const xcb_window_t check = lay({-10, -10, 1, 1});
        for (const xcb_window_t window : {check, client_.root()})
            set(window, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {check});
        set(client_.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM,
            {client_.atom("_NET_MOVERESIZE_WINDOW"), client_.atom("_NET_ACTIVE_WINDOW")});
        client_.sync();
    }

private:
    void set(xcb_window_t window, const char* property, xcb_atom_t type,
             const std::vector<quint32>& items) {
        client_.setProperty(window, client_.atom(property), type, items);
    }

    XClient client_;
};

/// A screen with a window manager that does nothing but lay windows about, and an application.
class WindowLookup : public ::testing::Test {
protected:
    void SetUp() override {
        manager.manage();
        platform = std::make_unique<X11TestPlatform>(desktop.display());
        ASSERT_TRUE(waitUntil([&] { return platform->accessibility.isTrusted(); }));
    }
    /// The window found in the middle of the area; 0 where there is none.
    [[nodiscard]] XInspector::Window found() {
        const QPoint middle = area.center();
        const auto element =
            platform->accessibility.elementAtPosition({double(middle.x()), double(middle.y())});
        return element.value ? windowOf(*element.value) : 0;
    }
    xcb_window_t layWindow() {
        return application.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_EXPOSURE,
                                      "_NET_WM_WINDOW_TYPE_NORMAL", normalState});
    }
    /// Full-screen, to catch the mouse, and nobody asks for what it catches.
    xcb_window_t layCover() {
        return manager.lay(QRect(QPoint(), desktop.inspector().screenSize()),
                           {XCB_WINDOW_CLASS_INPUT_ONLY, XCB_EVENT_MASK_NO_EVENT, nullptr, 0});
    }

    const QRect area{200, 150, 400, 300};
    DesktopSession desktop;
    Maker manager{desktop.display()};
    Maker application{desktop.display()};
    std::unique_ptr<X11TestPlatform> platform;
};

} // namespace

TEST_F(WindowLookup, LooksThroughWhatTheWindowManagerLaysOverTheWindowsWhileItMovesOne) {
    const xcb_window_t window = layWindow();
    EXPECT_EQ(found(), window);
    layCover();
    EXPECT_EQ(found(), window) << "beneath a cover";
    manager.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_STRUCTURE_NOTIFY, nullptr, 0});
    EXPECT_EQ(found(), window) << "beneath an outline";
    manager.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_BUTTON_PRESS,
                       "_NET_WM_WINDOW_TYPE_NORMAL", 0});
    EXPECT_EQ(found(), window) << "beneath an outline made with a toolkit";
    manager.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_BUTTON_PRESS,
                       "_NET_WM_WINDOW_TYPE_NOTIFICATION", 0});
    EXPECT_EQ(found(), window) << "beneath the size in figures";
}

TEST_F(WindowLookup, FindsNothingBeneathMenusAndPanelsOfTheWindowManager) {
    layWindow();
    for (const char* type : {"_NET_WM_WINDOW_TYPE_POPUP_MENU", "_NET_WM_WINDOW_TYPE_DOCK",
                             static_cast<const char*>(nullptr)}) {
        const xcb_window_t menu = manager.lay(
            area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_BUTTON_PRESS, type, 0});
        EXPECT_EQ(found(), 0U) << (type ? type : "no type");
        layCover();
        EXPECT_EQ(found(), 0U) << "beneath a cover: " << (type ? type : "no type");
        manager.unmap(menu);
    }
}

TEST_F(WindowLookup, FindsNothingBeneathWhatAnApplicationShowsByItself) {
    layWindow();
    application.lay(area);
    EXPECT_EQ(found(), 0U);
    layCover();
    EXPECT_EQ(found(), 0U) << "beneath a cover";
}

TEST_F(WindowLookup, FindsThePanelBeneathACoverToBeNoWindowForUsers) {
    layWindow();
    application.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_BUTTON_PRESS,
                           "_NET_WM_WINDOW_TYPE_DOCK", normalState});
    layCover();
    EXPECT_EQ(found(), 0U);
}

TEST_F(WindowLookup, PassesOverWhatTheUserDoesNotSeeBeneathACover) {
    const xcb_window_t window = layWindow();
    application.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_EXPOSURE,
                           "_NET_WM_WINDOW_TYPE_NORMAL", iconicState});
    layCover();
    EXPECT_EQ(found(), window) << "beneath a minimised window";
    application.unmap(layWindow());
    layCover();
    EXPECT_EQ(found(), window) << "beneath a window that is not on the screen";
    application.lay(area.translated(area.width(), 0),
                    {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_EXPOSURE, nullptr, normalState});
    layCover();
    EXPECT_EQ(found(), window) << "beside a window";
    const xcb_window_t shaped = layWindow();
    application.takeInputIn(shaped, {});
    layCover();
    EXPECT_EQ(found(), window) << "beneath a window that lets the mouse through";
    application.takeInputIn(shaped, {area.width() / 2 - 5, area.height() / 2 - 5, 10, 10});
    EXPECT_EQ(found(), shaped) << "beneath no more than a part of a window";
}

TEST_F(WindowLookup, FindsNothingWhereAllIsOutOfSightBeneathACover) {
    application.lay(area, {XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_EVENT_MASK_EXPOSURE,
                           "_NET_WM_WINDOW_TYPE_NORMAL", iconicState});
    layCover();
    EXPECT_EQ(found(), 0U);
}
