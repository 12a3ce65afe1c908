#include "FreeDesktopLog.h"

namespace tilewright {

// Qt lets everything of a category through that names no least severity.
Q_LOGGING_CATEGORY(idleLog, "tilewright.idle", QtWarningMsg)

} // namespace tilewright
