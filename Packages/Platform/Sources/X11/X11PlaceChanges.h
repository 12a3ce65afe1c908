#pragma once

#include <QPoint>
#include <cstdint>
#include <map>
#include <vector>

namespace tilewright {

/// Which of the windows that the server tells of have changed place. Knows no connection.
class X11PlaceChanges {
public:
    /// More windows than this are not told apart: nobody drags as many.
    static constexpr std::size_t most = 64;

    /// The server tells how a window is now, as it does when the window is moved, resized or
    /// restacked.
    void configured(std::uint32_t window, QPoint place);
    void clear();

    /// The windows that were told of at more than one place, in no order. What the first one was
    /// before it was told of is not known: it takes two moves, or a raise and a move.
    [[nodiscard]] std::vector<std::uint32_t> moved() const;
    /// Whether there is any.
    [[nodiscard]] bool hasMoved() const { return hasMoved_; }

private:
    struct Place {
        QPoint first;
        bool isLeft = false;
    };
    std::map<std::uint32_t, Place> places_;
    bool hasMoved_ = false;
};

} // namespace tilewright
