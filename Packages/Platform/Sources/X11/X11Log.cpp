#include "X11Log.h"

namespace tilewright {

// Qt lets everything of a category through that names no least severity.
Q_LOGGING_CATEGORY(x11FramesLog, "tilewright.x11.frames", QtWarningMsg)
Q_LOGGING_CATEGORY(x11InputLog, "tilewright.x11.input", QtWarningMsg)
Q_LOGGING_CATEGORY(x11DisplaysLog, "tilewright.x11.displays", QtWarningMsg)

QString words(const QRect& rect) {
    return QString::asprintf("%dx%d%+d%+d", rect.width(), rect.height(), rect.x(), rect.y());
}

QString words(std::uint32_t window) {
    return QStringLiteral("0x") + QString::number(window, 16);
}

} // namespace tilewright
