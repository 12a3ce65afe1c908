#include "MacText.h"

namespace tilewright {

NSString* toNSString(const QString& text) {
    static_assert(sizeof(unichar) == sizeof(QChar));
    return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.utf16())
                                   length:static_cast<NSUInteger>(text.size())];
}

QString toQString(NSString* text) {
    if (!text)
        return {};
    QString result(static_cast<qsizetype>([text length]), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar*>(result.data())
                  range:NSMakeRange(0, [text length])];
    return result;
}

} // namespace tilewright
