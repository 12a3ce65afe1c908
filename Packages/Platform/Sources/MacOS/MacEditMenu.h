#pragma once

#include <QMenuBar>

namespace tilewright {

/// The Edit menu, through which the platform's shortcuts for editing reach the text field with the
/// focus. An application without a Dock icon never shows its menu bar, but its shortcuts work while
/// one of its windows is the key window. Needs Qt's application object. Main thread only.
class MacEditMenu final {
public:
    MacEditMenu();

    /// The actions in the order of the menu: undo, redo, cut, copy, paste, select all.
    [[nodiscard]] QList<QAction*> actions() const;

private:
    void add(const QString& title, QKeySequence::StandardKey shortcut, const char* slot);

    // Without a parent: the one menu bar of all windows.
    QMenuBar bar_;
    QMenu* menu_;
};

} // namespace tilewright
