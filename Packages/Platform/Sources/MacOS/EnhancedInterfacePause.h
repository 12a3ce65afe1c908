#pragma once

#include "CFOwner.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tilewright {

/// Holds an application's enhanced accessibility mode off for as long as it lives, where it is on:
/// in that mode some applications animate or distort the moves they are asked for. Where the mode
/// is off or unknown, it does nothing; where it is on, it is asked to be on again at the end,
/// whatever became of switching it off. Waits for an application that does not answer for a second
/// at each of its questions, whatever the system allows for others.
class EnhancedInterfacePause {
public:
    /// For the application that the element belongs to; borrows the element.
    explicit EnhancedInterfacePause(AXUIElementRef element);
    EnhancedInterfacePause(const EnhancedInterfacePause&) = delete;
    EnhancedInterfacePause& operator=(const EnhancedInterfacePause&) = delete;
    ~EnhancedInterfacePause();

private:
    CFOwner<CFStringRef> attribute_;
    /// Set where the mode is to be switched on again.
    CFOwner<AXUIElementRef> application_;
};

} // namespace tilewright
