#pragma once

#include <QSize>

class QWidget;

namespace tilewright {

/// How large a panel's content wants to be, in Qt's points, where its display has room for that
/// height; with less of it the content copes.
[[nodiscard]] QSize panelContentSize(QWidget& content, int availableHeight);

/// How much higher the content may yet become while its panel is open, in Qt's points.
[[nodiscard]] int panelRoomToGrow(const QWidget& content);

} // namespace tilewright
