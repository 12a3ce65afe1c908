#include "BareOverlay.h"

#include <array>
#include <xcb/xinput.h>

namespace {

/// The screen's visual with 32 bits a pixel; none where it has no such.
std::uint32_t blendedVisual(const xcb_screen_t* screen) {
    for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem != 0;
         xcb_depth_next(&depths)) {
        const auto visuals = xcb_depth_visuals_iterator(depths.data);
        if (depths.data->depth == 32 && visuals.rem != 0)
            return visuals.data->visual_id;
    }
    return XCB_NONE;
}

} // namespace

BareOverlay::BareOverlay(const char* display, bool isBlended)
    : connection_(xcb_connect(display, nullptr))
    , screen_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data)
    , window_(xcb_generate_id(connection_)) {
    createWindow(isBlended);
    xcb_flush(connection_);
    listener_.emplace(display, XCB_INPUT_XI_EVENT_MASK_RAW_MOTION, [this] {
        if (!isArmed_.exchange(false))
            return;
        xcb_map_window(connection_, window_);
        xcb_flush(connection_);
    });
}

BareOverlay::~BareOverlay() {
    listener_.reset();
    xcb_disconnect(connection_);
}

void BareOverlay::createWindow(bool isBlended) {
    const std::uint32_t visual = isBlended ? blendedVisual(screen_) : screen_->root_visual;
    const std::uint8_t depth = isBlended ? 32 : screen_->root_depth;
    const std::uint32_t colors = xcb_generate_id(connection_);
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colors, screen_->root, visual);
    constexpr std::uint32_t halfAmber = 0x80684619;
    const std::array<std::uint32_t, 4> values{halfAmber, halfAmber, 1, colors};
    xcb_create_window(connection_, depth, window_, screen_->root, 0, 0, screen_->width_in_pixels,
                      screen_->height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_COLORMAP,
                      values.data());
}

void BareOverlay::hide() {
    isArmed_ = false;
    xcb_unmap_window(connection_, window_);
    xcb_flush(connection_);
}
