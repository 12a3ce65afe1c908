#pragma once

#include <Foundation/Foundation.h>
#include <QString>

namespace tilewright {

/// The same text for Objective-C and for Qt; null reads as empty.
[[nodiscard]] NSString* toNSString(const QString& text);
[[nodiscard]] QString toQString(NSString* text);

} // namespace tilewright
