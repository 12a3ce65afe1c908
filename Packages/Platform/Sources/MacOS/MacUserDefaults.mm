#include "MacUserDefaults.h"

#include "MacText.h"

namespace tilewright {

std::optional<QString> MacUserDefaults::string(const QString& key) const {
    NSString* value = [[NSUserDefaults standardUserDefaults] stringForKey:toNSString(key)];
    if (!value)
        return std::nullopt;
    return toQString(value);
}

void MacUserDefaults::setString(const QString& value, const QString& key) {
    [[NSUserDefaults standardUserDefaults] setObject:toNSString(value) forKey:toNSString(key)];
}

} // namespace tilewright
