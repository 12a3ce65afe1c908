#include "EnhancedInterfacePause.h"

#include "CFText.h"

namespace tilewright {

EnhancedInterfacePause::EnhancedInterfacePause(AXUIElementRef element)
    : attribute_(makeCFString(QStringLiteral("AXEnhancedUserInterface"))) {
    pid_t process = 0;
    if (!attribute_ || AXUIElementGetPid(element, &process) != kAXErrorSuccess)
        return;
    auto application = CFOwner<AXUIElementRef>::adopt(AXUIElementCreateApplication(process));
    if (!application)
        return;
    CFTypeRef copied = nullptr;
    const ::AXError error =
        AXUIElementCopyAttributeValue(application.get(), attribute_.get(), &copied);
    const auto mode = CFOwner<CFTypeRef>::adopt(copied);
    if (error != kAXErrorSuccess || !mode || CFGetTypeID(mode.get()) != CFBooleanGetTypeID() ||
        !CFBooleanGetValue(static_cast<CFBooleanRef>(mode.get())))
        return;
    if (AXUIElementSetAttributeValue(application.get(), attribute_.get(), kCFBooleanFalse) ==
        kAXErrorSuccess)
        application_ = std::move(application);
}

EnhancedInterfacePause::~EnhancedInterfacePause() {
    if (application_)
        AXUIElementSetAttributeValue(application_.get(), attribute_.get(), kCFBooleanTrue);
}

} // namespace tilewright
