#pragma once

#include <QLoggingCategory>

namespace tilewright {

/// Facts for reports of users about keeping the computer awake: which services were asked, and what
/// they answered. Silent unless QT_LOGGING_RULES turns it on, "tilewright.*=true" for one.
Q_DECLARE_LOGGING_CATEGORY(idleLog)

} // namespace tilewright
