#include "ActionMenu.h"

#include "Contrast.h"
#include "Look.h"
#include "Symbols.h"

#include <QStyleOptionMenuItem>

namespace tilewright {

namespace {

constexpr double highlightOpacity = 0.16;

/// The red on whatever a style takes as the background of menus.
QColor redInMenus(const QPalette& palette) {
    return look::legible(look::red(palette), {palette.color(QPalette::Active, QPalette::Window),
                                              palette.color(QPalette::Active, QPalette::Base)});
}

} // namespace

ActionMenu::ActionMenu(QWidget* parent)
    : QMenu(parent) {}

QAction* ActionMenu::addDestructiveAction(const QString& symbol, const QString& title) {
    QAction* action = addAction(symbols::icon(symbol, redInMenus(palette())), title);
    action->setIconVisibleInMenu(true);
    destructive_.append(action);
    return action;
}

void ActionMenu::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const {
    QMenu::initStyleOption(option, action);
    if (!option || !destructive_.contains(action) || !action->isEnabled())
        return;
    const QColor red = redInMenus(palette());
    const QColor ground = palette().color(QPalette::Active, QPalette::Window);
    const QColor highlight = look::over(look::withOpacity(red, highlightOpacity), ground);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        option->palette.setColor(role, red);
    // The accent behind red could not be read, and the symbol stays red.
    option->palette.setColor(QPalette::Highlight, highlight);
    option->palette.setColor(QPalette::HighlightedText, look::legible(red, {highlight}));
}

} // namespace tilewright
