#pragma once

#include "CFOwner.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tilewright {

/// Holds an application's enhanced accessibility mode off for as long as it lives, where it is on:
/// in that mode some applications animate or distort the moves they are asked for. Where the mode
/// is off, unknown or cannot be switched, it does nothing.
class EnhancedInterfacePause {
public:
    /// For the application that the element belongs to; borrows the element.
    explicit EnhancedInterfacePause(AXUIElementRef element);
    EnhancedInterfacePause(const EnhancedInterfacePause&) = delete;
    EnhancedInterfacePause& operator=(const EnhancedInterfacePause&) = delete;
    ~EnhancedInterfacePause();

private:
    CFOwner<CFStringRef> attribute_;
    /// Set exactly while the mode is to be switched on again.
    CFOwner<AXUIElementRef> application_;
};

} // namespace tilewright
