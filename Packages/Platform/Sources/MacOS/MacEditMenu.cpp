#include "MacEditMenu.h"

#include <QApplication>

namespace tilewright {

MacEditMenu::MacEditMenu()
    : menu_(bar_.addMenu(QMenuBar::tr("Edit"))) {
    add(QMenuBar::tr("Undo"), QKeySequence::Undo, "undo");
    add(QMenuBar::tr("Redo"), QKeySequence::Redo, "redo");
    menu_->addSeparator();
    add(QMenuBar::tr("Cut"), QKeySequence::Cut, "cut");
    add(QMenuBar::tr("Copy"), QKeySequence::Copy, "copy");
    add(QMenuBar::tr("Paste"), QKeySequence::Paste, "paste");
    add(QMenuBar::tr("Select All"), QKeySequence::SelectAll, "selectAll");
}

QList<QAction*> MacEditMenu::actions() const {
    QList<QAction*> actions = menu_->actions();
    actions.removeIf([](const QAction* action) { return action->isSeparator(); });
    return actions;
}

void MacEditMenu::add(const QString& title, QKeySequence::StandardKey shortcut, const char* slot) {
    QAction* action = menu_->addAction(title);
    action->setShortcut(shortcut);
    QObject::connect(action, &QAction::triggered, action, [slot] {
        QWidget* field = QApplication::focusWidget();
        // Text fields of every kind have these slots; other widgets have no use for them.
        if (field && field->metaObject()->indexOfSlot((QByteArray(slot) + "()").constData()) >= 0)
            QMetaObject::invokeMethod(field, slot);
    });
}

} // namespace tilewright
