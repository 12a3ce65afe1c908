#pragma once

#include "BareWayland.h"

#include <QPoint>
#include <cstdint>

struct zwlr_screencopy_frame_v1;

namespace tilewright::testing {

/// Looks at one pixel of a display from outside: it has it copied each time that the display shows
/// something else.
class ScreenWatch {
public:
    /// `probe` is in the compositor's units.
    ScreenWatch(const QString& socketPath, QPoint probe);

    /// Waits until the compositor is about to tell of the next change: one that comes before is
    /// told of only with the one after.
    void prepare();
    /// Waits until the pixel has another colour than when this was called last, or begun; turns the
    /// event loop meanwhile.
    void waitForChange();

private:
    void ask();
    void offer(std::uint32_t format, std::uint32_t width, std::uint32_t height,
               std::uint32_t stride);
    void take(std::uint32_t secondsHigh, std::uint32_t secondsLow, std::uint32_t nanoseconds);

    const QPoint probe_;
    BareWayland wayland_;
    BarePicture picture_;
    zwlr_screencopy_frame_v1* frame_ = nullptr;
    std::uint32_t color_ = 0;
    std::uint32_t lastColor_ = 0;
    bool hasLooked_ = false;
    bool isWaiting_ = false;
};

} // namespace tilewright::testing
