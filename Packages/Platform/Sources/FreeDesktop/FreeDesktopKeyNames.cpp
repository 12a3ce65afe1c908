#include "FreeDesktopKeyNames.h"

#include <QCoreApplication>

namespace tilewright {

std::optional<QString> FreeDesktopKeyNames::localName(ModifierFlag key) const {
    switch (key) {
    case ModifierFlag::option:
        return QCoreApplication::translate("KeyNames", "Alt");
    case ModifierFlag::command:
        return QCoreApplication::translate("KeyNames", "Super");
    case ModifierFlag::shift:
    case ModifierFlag::control:
        break;
    }
    return std::nullopt;
}

} // namespace tilewright
