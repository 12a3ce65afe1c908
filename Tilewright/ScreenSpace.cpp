#include "ScreenSpace.h"

#include <Platform/Platform.h>
#include <WindowManager/CoordinateConverter.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <limits>

namespace tilewright {

namespace {

/// Accessibility screen space as whole pixels, edges rounded.
QRect pixels(const AppKitRect& rect, const Screen& screen) {
    const ZoneRect ax = CoordinateConverter::appKitToAX(rect, screen);
    const int left = static_cast<int>(std::lround(ax.x));
    const int top = static_cast<int>(std::lround(ax.y));
    const int right = static_cast<int>(std::lround(ax.x + ax.width));
    const int bottom = static_cast<int>(std::lround(ax.y + ax.height));
    return {left, top, right - left, bottom - top};
}

QScreen* toolkitScreenAt(QPoint topLeft) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    const auto found = std::find_if(screens.begin(), screens.end(), [&](const QScreen* screen) {
        return screen->geometry().topLeft() == topLeft;
    });
    return found == screens.end() ? nullptr : *found;
}

/// Where Accessibility space's origin, the primary display's corner, lies on the desktop: the
/// toolkit's own idea of the primary display may be another.
QPoint origin(const std::vector<ScreenPtr>& screens) {
    QList<QScreen*> candidates = QGuiApplication::screens();
    candidates.prepend(QGuiApplication::primaryScreen());
    for (const QScreen* candidate : candidates) {
        if (!candidate)
            continue;
        const QPoint corner = candidate->geometry().topLeft();
        if (std::all_of(screens.begin(), screens.end(), [&](const ScreenPtr& screen) {
                return toolkitScreenAt(pixels(screen->frame(), *screen).topLeft() + corner);
            }))
            return corner;
    }
    return candidates.front() ? candidates.front()->geometry().topLeft() : QPoint();
}

int distance(const QRect& rect, QPoint point) {
    const int dx = std::max({rect.x() - point.x(), 0, point.x() - rect.right()});
    const int dy = std::max({rect.y() - point.y(), 0, point.y() - rect.bottom()});
    return dx + dy;
}

} // namespace

QPoint ScreenSpace::toToolkit(QPoint native) const {
    const QPointF offset = QPointF(native - nativeFrame.topLeft()) / scale;
    return screen->geometry().topLeft() + offset.toPoint();
}

QRect ScreenSpace::toToolkit(const QRect& native) const {
    const QPoint topLeft = toToolkit(native.topLeft());
    const QPoint bottomRight =
        toToolkit(native.topLeft() + QPoint(native.width(), native.height()));
    return {topLeft, QSize(bottomRight.x() - topLeft.x(), bottomRight.y() - topLeft.y())};
}

QRect ScreenSpace::insideToolkit(const QRect& native) const {
    const QPoint offset = native.topLeft() - nativeFrame.topLeft();
    const int left = static_cast<int>(std::ceil(offset.x() / scale));
    const int top = static_cast<int>(std::ceil(offset.y() / scale));
    const int right = static_cast<int>(std::floor((offset.x() + native.width()) / scale));
    const int bottom = static_cast<int>(std::floor((offset.y() + native.height()) / scale));
    return {screen->geometry().topLeft() + QPoint(left, top), QSize(right - left, bottom - top)};
}

std::vector<ScreenSpace> ScreenSpace::all() {
    const std::vector<ScreenPtr>& screens = Platform::current().screens().all();
    if (screens.empty() || QGuiApplication::screens().isEmpty())
        return {};
    const QPoint corner = origin(screens);
    std::vector<ScreenSpace> spaces;
    for (const ScreenPtr& screen : screens) {
        ScreenSpace space;
        space.nativeFrame = pixels(screen->frame(), *screen).translated(corner);
        space.nativeVisibleFrame = pixels(screen->visibleFrame(), *screen).translated(corner);
        space.screen = toolkitScreenAt(space.nativeFrame.topLeft());
        if (!space.screen)
            space.screen = QGuiApplication::primaryScreen();
        // Where the desktop itself counts in points, there is nothing to scale.
        const bool countsAlike =
            std::abs(space.nativeFrame.width() - space.screen->geometry().width()) <= 1;
        space.scale = countsAlike ? 1 : space.screen->devicePixelRatio();
        spaces.push_back(space);
    }
    return spaces;
}

const ScreenSpace* ScreenSpace::at(const std::vector<ScreenSpace>& spaces, QPoint native) {
    const ScreenSpace* nearest = nullptr;
    int least = std::numeric_limits<int>::max();
    for (const ScreenSpace& space : spaces) {
        const int away = distance(space.nativeFrame, native);
        if (away < least) {
            least = away;
            nearest = &space;
        }
    }
    return nearest;
}

QPoint ScreenSpace::nativePointer(const std::vector<ScreenSpace>& spaces) {
    const std::vector<ScreenPtr>& screens = Platform::current().screens().all();
    if (spaces.empty() || screens.empty())
        return {};
    const AppKitPoint location = Platform::current().pointer().location();
    const AppKitRect point{location.x, location.y, 0, 0};
    const ZoneRect ax = CoordinateConverter::appKitToAX(point, *screens.front());
    const QPoint inPrimary(static_cast<int>(std::floor(ax.x)), static_cast<int>(std::floor(ax.y)));
    return spaces.front().nativeFrame.topLeft() + inPrimary;
}

} // namespace tilewright
