#pragma once

#include <QMenu>

namespace tilewright {

/// A menu in which an action that destroys something is red as a whole.
class ActionMenu final : public QMenu {
    Q_OBJECT

public:
    explicit ActionMenu(QWidget* parent = nullptr);

    /// Adds an action of that kind, with a symbol.
    QAction* addDestructiveAction(const QString& symbol, const QString& title);

protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;

private:
    QList<const QAction*> destructive_;
};

} // namespace tilewright
