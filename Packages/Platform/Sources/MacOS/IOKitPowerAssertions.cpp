#include "IOKitPowerAssertions.h"

#include "CFText.h"

#include <IOKit/pwr_mgt/IOPMLib.h>

namespace tilewright {

namespace {
/// The platform's general error, for a text that could not be made.
constexpr int generalError = static_cast<int>(0xe00002bc);
} // namespace

PowerAssertionResult IOKitPowerAssertions::create(const QString& type, quint32 level,
                                                  const QString& name) {
    const auto typeText = makeCFString(type);
    const auto nameText = makeCFString(name);
    if (!typeText || !nameText)
        return {generalError, 0};
    IOPMAssertionID id = kIOPMNullAssertionID;
    const IOReturn status = IOPMAssertionCreateWithName(typeText.get(), level, nameText.get(), &id);
    return {status, status == kIOReturnSuccess ? id : 0};
}

void IOKitPowerAssertions::release(PowerAssertionID id) {
    IOPMAssertionRelease(id);
}

} // namespace tilewright
