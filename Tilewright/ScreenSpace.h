#pragma once

#include <QPoint>
#include <QRect>
#include <vector>

class QScreen;

namespace tilewright {

/// One screen, as the desktop measures it (native pixels) and as the toolkit does (its own
/// device-independent pixels, scaled about the screen's top-left corner). The only place where the
/// two meet.
struct ScreenSpace {
    QScreen* screen = nullptr;
    /// In native pixels, origin at the top-left of the desktop.
    QRect nativeFrame;
    QRect nativeVisibleFrame;
    /// Native pixels for one of the toolkit's.
    double scale = 1;

    [[nodiscard]] QPoint toToolkit(QPoint native) const;
    /// The toolkit's rectangle nearest to the native one; an empty one stays empty.
    [[nodiscard]] QRect toToolkit(const QRect& native) const;
    /// The largest of the toolkit's rectangles inside the native one.
    [[nodiscard]] QRect insideToolkit(const QRect& native) const;

    /// The installed platform's screens, in its order.
    [[nodiscard]] static std::vector<ScreenSpace> all();
    /// The one that holds the point, else the nearest; none without screens.
    [[nodiscard]] static const ScreenSpace* at(const std::vector<ScreenSpace>& spaces,
                                               QPoint native);
    /// Where the pointer is, in native pixels.
    [[nodiscard]] static QPoint nativePointer(const std::vector<ScreenSpace>& spaces);
};

} // namespace tilewright
