#include "X11OwnInput.h"

#include <algorithm>

namespace tilewright {
namespace {

/// How deep windows are nested at most between the root and one of an application.
constexpr int mostWindowLevels = 8;

} // namespace

X11OwnInput::X11OwnInput(X11Connection& connection, X11OwnWindows own)
    : connection_(connection)
    , own_(std::move(own)) {}

X11OwnInput::~X11OwnInput() {
    dropQuestions();
}

void X11OwnInput::notePress() {
    hadGrab_ = hadGrab_ || (own_.hasGrab && own_.hasGrab());
}

void X11OwnInput::ask() {
    dropQuestions();
    isAsked_ = true;
    const auto windows = own_.takingInput ? own_.takingInput() : std::vector<xcb_window_t>();
    if (windows.empty())
        return;
    xcb_connection_t* xcb = connection_.xcb();
    focus_ = xcb_get_input_focus(xcb);
    for (const xcb_window_t window : windows)
        windows_.push_back({xcb_query_pointer(xcb, window), xcb_get_geometry(xcb, window)});
}

X11InputOwners X11OwnInput::take(const xcb_query_pointer_reply_t* pointer) {
    if (!isAsked_)
        ask();
    X11InputOwners owners;
    if (focus_) {
        const auto focus =
            connection_.reply<xcb_get_input_focus_reply_t>(*std::exchange(focus_, {}));
        if (focus && owns(focus->focus))
            owners.keyboard = X11InputOwner::own;
    }
    bool isWithin = false;
    for (const Asked& asked : std::exchange(windows_, {}))
        isWithin = takeIsWithin(asked) || isWithin;
    if (hadGrab_ || (isWithin && pointer && isOwnAtPointer(pointer->child)))
        owners.pointer = X11InputOwner::own;
    reset();
    return owners;
}

void X11OwnInput::reset() {
    dropQuestions();
    hadGrab_ = false;
}

void X11OwnInput::dropQuestions() {
    if (focus_)
        xcb_discard_reply(connection_.xcb(), focus_->sequence);
    for (const Asked& asked : windows_) {
        xcb_discard_reply(connection_.xcb(), asked.pointer.sequence);
        xcb_discard_reply(connection_.xcb(), asked.geometry.sequence);
    }
    focus_.reset();
    windows_.clear();
    isAsked_ = false;
}

bool X11OwnInput::owns(xcb_window_t window) const {
    return window != XCB_NONE && own_.owns && own_.owns(window);
}

bool X11OwnInput::takeIsWithin(const Asked& asked) {
    const auto pointer = connection_.reply<xcb_query_pointer_reply_t>(asked.pointer);
    const auto geometry = connection_.reply<xcb_get_geometry_reply_t>(asked.geometry);
    return pointer && geometry && pointer->win_x >= 0 && pointer->win_y >= 0 &&
           pointer->win_x < geometry->width && pointer->win_y < geometry->height;
}

bool X11OwnInput::isOwnAtPointer(xcb_window_t top) {
    // Another window may lie over ours.
    xcb_window_t window = top;
    for (int level = 0; level < mostWindowLevels && window != XCB_NONE; ++level) {
        if (owns(window))
            return true;
        const auto pointer = connection_.reply<xcb_query_pointer_reply_t>(
            xcb_query_pointer(connection_.xcb(), window));
        window = pointer ? pointer->child : static_cast<xcb_window_t>(XCB_NONE);
    }
    return false;
}

} // namespace tilewright
