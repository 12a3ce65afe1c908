#include "AppDelegate.h"

#include "SnapController.h"

#include <KeepAwake/KeepAwakeManager.h>
#include <Platform/MainThread.h>
#include <WindowManager/WindowManager.h>

namespace tilewright {

void AppDelegate::applicationDidFinishLaunching() {
    assertMainThread(__FILE__, __LINE__);
    WindowManager& windowManager = WindowManager::shared();
    if (!windowManager.isAccessibilityGranted())
        windowManager.requestAccessibilityPermission();
    SnapController::shared().start();
}

void AppDelegate::applicationWillTerminate() {
    assertMainThread(__FILE__, __LINE__);
    KeepAwakeManager::shared().deactivate();
    SnapController::shared().stop();
}

} // namespace tilewright
