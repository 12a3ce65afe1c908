#pragma once

#include "X11Connection.h"

#include <map>

namespace tilewright {

/// Which core events the server sends this connection, window by window. Several parts of the
/// program may be interested in one window: what is selected is the union of their wishes.
/// Main thread only.
class X11EventSelection {
public:
    explicit X11EventSelection(X11Connection& connection);
    X11EventSelection(const X11EventSelection&) = delete;

    /// Keeps a wish; gives it up when destroyed. Has to go before the selection does.
    class Interest {
    public:
        Interest() = default;
        Interest(Interest&& other) noexcept;
        Interest& operator=(Interest&& other) noexcept;
        ~Interest() { reset(); }

        /// Whether this stands for a wish.
        [[nodiscard]] bool isActive() const { return selection_ != nullptr; }
        /// Gives the wish up.
        void reset();

    private:
        friend class X11EventSelection;
        Interest(X11EventSelection& selection, xcb_window_t window, std::uint32_t mask)
            : selection_(&selection)
            , window_(window)
            , mask_(mask) {}
        X11EventSelection* selection_ = nullptr;
        xcb_window_t window_ = XCB_NONE;
        std::uint32_t mask_ = 0;
    };

    /// Asks for the events in the mask (of `xcb_event_mask_t`) of a window. The request is buffered
    /// and asks for no answer: a window that is gone costs nothing.
    [[nodiscard]] Interest select(xcb_window_t window, std::uint32_t mask);

private:
    void release(xcb_window_t window, std::uint32_t mask);
    [[nodiscard]] std::uint32_t selected(xcb_window_t window) const;
    void apply(xcb_window_t window, std::uint32_t mask);

    X11Connection& connection_;
    /// How many wish for each single event of each window.
    std::map<xcb_window_t, std::map<std::uint32_t, int>> wishes_;
};

} // namespace tilewright
