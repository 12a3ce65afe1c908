#pragma once

#include <DesktopSession.h>
#include <SizeRules.h>
#include <TestClients.h>
#include <Waiting.h>
#include <WindowManager/WindowManager.h>
#include <WindowManager/ZoneLayout.h>
#include <X11TestPlatform.h>

#include <QRect>
#include <cmath>
#include <gtest/gtest.h>

/// What the tests of window frames share: finding, snapping, reading back.
namespace tilewright::testing {

/// Prints a rectangle in a failed test's message.
inline std::string text(const QRect& rect) {
    return std::to_string(rect.width()) + "x" + std::to_string(rect.height()) + "+" +
           std::to_string(rect.x()) + "+" + std::to_string(rect.y());
}

/// The pixels that a zone is to fill, computed here from the screen's visible frame alone. The
/// primary monitor's top-left corner is the X screen's in these tests unless `origin` says else.
inline QRect pixelsOf(const Zone& zone, const Screen& screen, QPoint origin = {}) {
    const AppKitRect visible = screen.visibleFrame();
    const ScreenPtr primary = Platform::current().screens.all().front();
    const double top = primary->frame().height - (visible.y + visible.height);
    const auto edge = [](double value) { return static_cast<int>(std::round(value)); };
    const int left = edge(visible.x + zone.x * visible.width);
    const int right = edge(visible.x + zone.x * visible.width + zone.width * visible.width);
    const int upper = edge(top + zone.y * visible.height);
    const int lower = edge(top + zone.y * visible.height + zone.height * visible.height);
    return QRect(left, upper, right - left, lower - upper).translated(origin);
}

/// Makes a window the active one, as a task bar does, and waits until everybody knows.
inline bool activate(DesktopSession& desktop, XInspector::Window window) {
    static_cast<void>(
        outputOf(QStringLiteral("wmctrl"),
                 {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(window)},
                 desktop.environment()));
    return waitUntil([&] { return desktop.inspector().activeWindow() == window; });
}

/// The X window behind an element.
inline XInspector::Window windowOf(const AccessibilityElement& element) {
    const auto* window = dynamic_cast<const X11WindowElement*>(&element.implementation());
    return window ? window->window() : 0;
}

/// Waits until no frame is being set any more.
inline bool settle(X11TestPlatform& platform) {
    return waitUntil([&] { return !platform.desktop().frameSetter().isBusy(); });
}

/// The middle of a rectangle as a point of AppKit screen space.
inline AppKitPoint appKitCentre(const X11TestPlatform& /*platform*/, const QRect& rect) {
    const double height = Platform::current().screens.all().front()->frame().height;
    return {rect.center().x() + 0.5, height - rect.center().y() - 0.5};
}

} // namespace tilewright::testing
