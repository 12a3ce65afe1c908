#include "CFText.h"

namespace tilewright {

CFOwner<CFStringRef> makeCFString(const QString& text) {
    static_assert(sizeof(UniChar) == sizeof(QChar));
    return CFOwner<CFStringRef>::adopt(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar*>(text.utf16()), text.size()));
}

std::optional<QString> textOf(CFTypeRef object) {
    if (!object || CFGetTypeID(object) != CFStringGetTypeID())
        return std::nullopt;
    const auto string = static_cast<CFStringRef>(object);
    const CFIndex length = CFStringGetLength(string);
    QString text(length, Qt::Uninitialized);
    CFStringGetCharacters(string, CFRangeMake(0, length), reinterpret_cast<UniChar*>(text.data()));
    return text;
}

} // namespace tilewright
