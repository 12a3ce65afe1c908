#include "X11Accessibility.h"

#include "X11Log.h"
#include "X11WindowLookup.h"

#include <cmath>

namespace tilewright {

X11Accessibility::X11Accessibility(X11Connection& connection,
                                   const X11WindowManagerWatch& windowManager,
                                   const X11MovedWindows& movedWindows, const X11Screens& screens,
                                   X11Trust& trust, X11ActiveWindow& activeWindow,
                                   X11FrameSetter& frameSetter)
    : connection_(connection)
    , windowManager_(windowManager)
    , movedWindows_(movedWindows)
    , screens_(screens)
    , trust_(trust)
    , context_(std::make_shared<X11ElementContext>(
          X11ElementContext{connection, activeWindow, frameSetter})) {
    connect(&trust_, &X11Trust::changed, this, &X11Accessibility::trustChanged);
}

AccessibilityElement X11Accessibility::systemWideElement() const {
    return AccessibilityElement(std::make_shared<X11ApplicationElement>(context_, std::nullopt));
}

AccessibilityElement X11Accessibility::applicationElement(ProcessID process) const {
    return AccessibilityElement(std::make_shared<X11ApplicationElement>(context_, process));
}

AXResult<AccessibilityElement> X11Accessibility::elementAtPosition(AXPoint point) const {
    if (!std::isfinite(point.x) || !std::isfinite(point.y))
        return {AXError::illegalArgument, {}};
    if (!connection_.isAlive())
        return {AXError::cannotComplete, {}};
    const QPoint place = screens_.coordinates().toPixel(point);
    const auto moved = onlyApplicationWindowIn(connection_, movedWindows_.tops());
    const auto window = moved ? moved : applicationWindowAt(connection_, windowManager_, place);
    qCDebug(x11FramesLog, "At %+d%+d there is %ls%s", place.x(), place.y(),
            qUtf16Printable(window ? QStringLiteral("window ") + words(*window)
                                   : QStringLiteral("no window of an application")),
            moved ? ", the one that has moved since the button was pressed" : "");
    if (!window)
        return {AXError::noValue, {}};
    context_->frameSetter.expect(*window);
    return {AXError::success, AccessibilityElement(std::make_shared<X11WindowElement>(
                                  context_, *window, connection_.moment()))};
}

std::unique_ptr<AccessibilityValue> X11Accessibility::makeValue(AXPoint position) const {
    if (!std::isfinite(position.x) || !std::isfinite(position.y))
        return nullptr;
    return std::make_unique<X11Value>(position);
}

std::unique_ptr<AccessibilityValue> X11Accessibility::makeValue(AXSize size) const {
    if (!std::isfinite(size.width) || !std::isfinite(size.height))
        return nullptr;
    return std::make_unique<X11Value>(size);
}

} // namespace tilewright
