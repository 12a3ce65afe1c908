#include "CompanionPointer.h"

#include <QCursor>

namespace tilewright {

AppKitPoint CompanionPointer::location() const {
    const QPoint ofQt = QCursor::pos();
    return screens_.coordinates().toAppKit(state_.pointer().value_or(
        CompanionPoint{static_cast<double>(ofQt.x()), static_cast<double>(ofQt.y())}));
}

} // namespace tilewright
