#include "MacApplicationSupport.h"

#include "MacText.h"

namespace tilewright {

std::optional<QString> MacApplicationSupport::folder() const {
    NSArray<NSURL*>* folders =
        [[NSFileManager defaultManager] URLsForDirectory:NSApplicationSupportDirectory
                                               inDomains:NSUserDomainMask];
    NSString* path = [[folders firstObject] path];
    if (!path)
        return std::nullopt;
    return toQString(path);
}

} // namespace tilewright
