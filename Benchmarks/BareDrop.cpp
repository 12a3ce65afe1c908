#include "BareDrop.h"

#include <xcb/xinput.h>

BareDrop::BareDrop(const char* display, std::uint32_t window)
    : request_(display, window)
    , listener_(display, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE, [this] {
        const std::lock_guard lock(mutex_);
        request_.set(outer_);
    }) {}

void BareDrop::aim(const BareFrame& outer) {
    const std::lock_guard lock(mutex_);
    outer_ = outer;
}
