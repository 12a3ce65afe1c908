#include "AppKitScreenList.h"

#include "DisplayNumbers.h"
#include "MacText.h"

#include <AppKit/AppKit.h>

namespace tilewright::appkit {

namespace {

AppKitRect toRect(NSRect rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

ScreenFacts factsOf(NSScreen* screen) {
    return {toRect([screen frame]), toRect([screen visibleFrame]),
            displayNumberIn((__bridge CFDictionaryRef)[screen deviceDescription]),
            toQString([screen localizedName])};
}

} // namespace

std::vector<ScreenFacts> screens() {
    NSArray<NSScreen*>* listed = [NSScreen screens];
    std::vector<ScreenFacts> facts;
    facts.reserve([listed count]);
    for (NSUInteger index = 0; index < [listed count]; ++index)
        facts.push_back(factsOf([listed objectAtIndex:index]));
    return facts;
}

std::optional<ScreenFacts> mainScreen() {
    NSScreen* screen = [NSScreen mainScreen];
    if (!screen)
        return std::nullopt;
    return factsOf(screen);
}

} // namespace tilewright::appkit
