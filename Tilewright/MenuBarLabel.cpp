#include "MenuBarLabel.h"

#include <Platform/Platform.h>
#include <TilewrightUI/Symbols.h>

#include <QIcon>

namespace tilewright {

MenuBarLabel::MenuBarLabel(QObject* parent)
    : QObject(parent)
    , keepAwake_(KeepAwakeManager::shared())
    , item_(Platform::current().statusItem())
    , refresh_([this] { update(); }) {
    refresh_.observe(keepAwake_);
    update();
}

MenuBarLabel::~MenuBarLabel() = default;

void MenuBarLabel::update() {
    const QString name = keepAwake_.isActive() ? QStringLiteral("cup.and.saucer.fill")
                                               : QStringLiteral("cup.and.saucer");
    // A running countdown announces a change every second.
    if (name == symbolName_)
        return;
    symbolName_ = name;
    item_.setSymbol(name, symbols::icon(name, Qt::black));
    //: The item's name while a keep-awake session runs.
    item_.setAccessibleName(keepAwake_.isActive() ? tr("Tilewright — awake")
                                                  : QStringLiteral("Tilewright"));
}

} // namespace tilewright
