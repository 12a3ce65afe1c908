#pragma once

#include <QImage>
#include <XInspector.h>
#include <XServer.h>

namespace tilewright::testing {

/// An X server that KWin's displays are windows of, for pictures of what they show: KWin 6 gives
/// none itself where there is no graphics card.
class HostDisplay {
public:
    /// How many pixels a display of KWin's has.
    static constexpr QSize displaySize{1920, 1080};

    /// Starts it, with room for so many displays side by side. Fails the running test where it does
    /// not come up.
    explicit HostDisplay(int displays);

    /// Such as ":5".
    [[nodiscard]] QString name() const;
    /// Puts KWin's windows, which all begin at the same place, side by side in the order they were
    /// made. False while one of them is missing.
    [[nodiscard]] bool spread();
    /// What one of them looks like now, the pointer left out.
    [[nodiscard]] QImage picture(int display) const {
        return inspector_->screenshot({QPoint(display * displaySize.width(), 0), displaySize});
    }

private:
    const int displays_;
    const std::unique_ptr<XServer> server_;
    std::unique_ptr<XInspector> inspector_;
};

} // namespace tilewright::testing
