#include "EnhancedInterfacePause.h"

#include "CFText.h"

namespace tilewright {

namespace {
/// In seconds.
constexpr float longestAnswer = 1;
} // namespace

EnhancedInterfacePause::EnhancedInterfacePause(AXUIElementRef element)
    : attribute_(makeCFString(QStringLiteral("AXEnhancedUserInterface"))) {
    pid_t process = 0;
    if (!attribute_ || AXUIElementGetPid(element, &process) != kAXErrorSuccess)
        return;
    auto application = CFOwner<AXUIElementRef>::adopt(AXUIElementCreateApplication(process));
    if (!application)
        return;
    // Holds for this one reference: what moves the window waits for as long as it did.
    AXUIElementSetMessagingTimeout(application.get(), longestAnswer);
    CFTypeRef copied = nullptr;
    const ::AXError error =
        AXUIElementCopyAttributeValue(application.get(), attribute_.get(), &copied);
    const auto mode = CFOwner<CFTypeRef>::adopt(copied);
    if (error != kAXErrorSuccess || !mode || CFGetTypeID(mode.get()) != CFBooleanGetTypeID() ||
        !CFBooleanGetValue(static_cast<CFBooleanRef>(mode.get())))
        return;
    // An application that answers too late, or with an error, may have heard all the same.
    AXUIElementSetAttributeValue(application.get(), attribute_.get(), kCFBooleanFalse);
    application_ = std::move(application);
}

EnhancedInterfacePause::~EnhancedInterfacePause() {
    if (application_)
        AXUIElementSetAttributeValue(application_.get(), attribute_.get(), kCFBooleanTrue);
}

} // namespace tilewright
