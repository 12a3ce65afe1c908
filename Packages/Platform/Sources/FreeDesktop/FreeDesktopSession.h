#pragma once

#include "CalmMemory.h"
#include "FreeDesktopApplicationSupport.h"
#include "FreeDesktopKeyNames.h"
#include "FreeDesktopUserDefaults.h"
#include "FreeDesktopUserNotifications.h"
#include "MessageBus.h"

#include <Platform/QtMainLoop.h>

namespace tilewright {

/// What every Linux desktop's platform is built on, whatever its display server. Needs Qt's
/// application object, and has to end before it. Main thread only.
struct FreeDesktopSession {
    QtMainLoop mainLoop;
    FreeDesktopUserDefaults userDefaults;
    FreeDesktopApplicationSupport applicationSupport;
    FreeDesktopKeyNames keyNames;
    MessageBus sessionBus{mainLoop, MessageBus::Kind::session};
    MessageBus systemBus{mainLoop, MessageBus::Kind::system};
    FreeDesktopUserNotifications userNotifications{sessionBus};
    CalmMemory calmMemory{mainLoop};
};

} // namespace tilewright
