#pragma once

#include <QLoggingCategory>
#include <QRect>
#include <QString>
#include <cstdint>

namespace tilewright {

// Facts for reports of users: what was asked of the desktop, and what came of it. All are silent
// unless QT_LOGGING_RULES turns them on, "tilewright.*=true" for one; nothing is put into words
// before. No titles, no contents, no keys but the modifiers.

/// Windows' frames and the window manager.
Q_DECLARE_LOGGING_CATEGORY(x11FramesLog)
/// Buttons, modifier keys, and what watches them.
Q_DECLARE_LOGGING_CATEGORY(x11InputLog)
/// Monitors and the parts of them that are free of panels.
Q_DECLARE_LOGGING_CATEGORY(x11DisplaysLog)

/// A rectangle's size and corner in pixels of the X screen: 640x480+10+20.
[[nodiscard]] QString words(const QRect& rect);
/// A window's number, as other tools write it: 0x1c00007.
[[nodiscard]] QString words(std::uint32_t window);

} // namespace tilewright
