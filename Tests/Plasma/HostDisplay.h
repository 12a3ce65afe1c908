#pragma once

#include <QImage>
#include <XInspector.h>
#include <XServer.h>

namespace tilewright::testing {

/// An X server that KWin's displays are windows of, for pictures of what they show: KWin 6 gives
/// none itself where there is no graphics card, and KWin 5 takes its time.
class HostDisplay {
public:
    /// Starts it, with room for so many displays of that many pixels side by side. Fails the
    /// running test where it does not come up.
    HostDisplay(int displays, QSize displaySize);

    /// Such as ":5".
    [[nodiscard]] QString name() const;
    /// Puts KWin's windows, which all begin at the same place, side by side in the order they were
    /// made. False while one of them is missing.
    [[nodiscard]] bool spread();
    /// What one of them looks like now, the pointer left out.
    [[nodiscard]] QImage picture(int display) const {
        return inspector_->screenshot({originOf(display), displaySize_});
    }
    /// One of its pixels.
    [[nodiscard]] QColor pixel(int display, QPoint at) const {
        return inspector_->pixel(originOf(display) + at);
    }

private:
    [[nodiscard]] QPoint originOf(int display) const { return {display * displaySize_.width(), 0}; }

    const int displays_;
    const QSize displaySize_;
    const std::unique_ptr<XServer> server_;
    std::unique_ptr<XInspector> inspector_;
};

} // namespace tilewright::testing
