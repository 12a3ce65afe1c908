#include "ContextMenuKey.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

namespace tilewright {

bool openContextMenuByKey(QWidget& widget, const QKeyEvent& event) {
    if (event.key() != Qt::Key_F10 || event.modifiers() != Qt::ShiftModifier)
        return false;
    const QPoint center = widget.rect().center();
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, center, widget.mapToGlobal(center));
    QCoreApplication::sendEvent(&widget, &menu);
    return true;
}

} // namespace tilewright
