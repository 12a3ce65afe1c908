#pragma once

#include <Platform/MainLoop.h>

namespace tilewright {

/// How far one tile of the overlay is highlighted: 0 is plain, 1 is highlighted, and on the way
/// from one to the other it follows an ease-out curve. Reads no clock: it is told the time.
class HighlightFade {
public:
    using Time = MainLoop::Interval;

    /// How long a change takes.
    static constexpr Time duration{120};
    /// How far frames are apart while something changes: a whole part of the duration, and about
    /// as often as displays show one. More would only cost time, a large display's most of all.
    static constexpr Time frame{15};

    /// How far the tile is highlighted, as of the last `advance`.
    [[nodiscard]] double value() const { return value_; }
    /// What the tile is, or is on its way to.
    [[nodiscard]] bool isHighlighted() const { return isHighlighted_; }
    /// Whether the value still changes.
    [[nodiscard]] bool isRunning() const { return isRunning_; }

    /// Sets out, from the present value, at this moment. Nothing happens where the tile is on its
    /// way there already.
    void start(bool highlighted, Time now);
    /// Moves on to the moment; ends when the duration has passed.
    void advance(Time now);
    /// Is there at once.
    void finish(bool highlighted);

private:
    double value_ = 0;
    double origin_ = 0;
    Time startedAt_{0};
    bool isHighlighted_ = false;
    bool isRunning_ = false;
};

} // namespace tilewright
