#pragma once

class QKeyEvent;
class QWidget;

namespace tilewright {

/// Opens a widget's context menu for Shift+F10, which desktops know beside the Menu key and Qt does
/// not. True where the key was that one.
bool openContextMenuByKey(QWidget& widget, const QKeyEvent& event);

} // namespace tilewright
