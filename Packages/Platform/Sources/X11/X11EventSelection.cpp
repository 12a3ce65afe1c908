#include "X11EventSelection.h"

#include <utility>

namespace tilewright {
namespace {

template<class Action>
void forEachBit(std::uint32_t mask, Action action) {
    while (mask != 0) {
        const std::uint32_t rest = mask & (mask - 1);
        action(mask ^ rest);
        mask = rest;
    }
}

} // namespace

X11EventSelection::X11EventSelection(X11Connection& connection)
    : connection_(connection) {}

X11EventSelection::Interest::Interest(Interest&& other) noexcept
    : selection_(std::exchange(other.selection_, nullptr))
    , window_(other.window_)
    , mask_(other.mask_) {}

X11EventSelection::Interest& X11EventSelection::Interest::operator=(Interest&& other) noexcept {
    if (this != &other) {
        reset();
        selection_ = std::exchange(other.selection_, nullptr);
        window_ = other.window_;
        mask_ = other.mask_;
    }
    return *this;
}

void X11EventSelection::Interest::reset() {
    if (X11EventSelection* selection = std::exchange(selection_, nullptr))
        selection->release(window_, mask_);
}

X11EventSelection::Interest X11EventSelection::select(xcb_window_t window, std::uint32_t mask) {
    const std::uint32_t before = selected(window);
    forEachBit(mask, [&](std::uint32_t bit) { ++wishes_[window][bit]; });
    if ((before | mask) != before)
        apply(window, before | mask);
    return {*this, window, mask};
}

void X11EventSelection::release(xcb_window_t window, std::uint32_t mask) {
    const std::uint32_t before = selected(window);
    auto& counts = wishes_[window];
    forEachBit(mask, [&](std::uint32_t bit) {
        if (--counts[bit] == 0)
            counts.erase(bit);
    });
    if (counts.empty())
        wishes_.erase(window);
    if (selected(window) != before)
        apply(window, selected(window));
}

std::uint32_t X11EventSelection::selected(xcb_window_t window) const {
    std::uint32_t mask = 0;
    if (const auto found = wishes_.find(window); found != wishes_.end()) {
        for (const auto& [bit, count] : found->second)
            mask |= bit;
    }
    return mask;
}

void X11EventSelection::apply(xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(connection_.xcb(), window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace tilewright
