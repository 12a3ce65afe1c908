#pragma once

#include "Geometry.h"

#include <QObject>
#include <QString>
#include <optional>

class QIcon;

namespace tilewright {

/// The program's item in the menu bar or system tray. Shown from its making to its end wherever the
/// desktop has such a place, now or later. Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~StatusItem() override;

    /// Shows a symbol at once. `icon` draws it crisply at every size, in one colour on transparent
    /// ground; the item follows the bar's light or dark look where the desktop tells it.
    virtual void setSymbol(const QString& symbolName, const QIcon& icon) = 0;
    /// The text that names the item for accessibility and tool tips.
    virtual void setAccessibleName(const QString& name) = 0;

Q_SIGNALS:
    /// The user clicked the item. `place` is where it is, in AppKit screen space: an empty
    /// rectangle where only a point is known, none where the host tells nothing.
    void activated(const std::optional<AppKitRect>& place);
};

} // namespace tilewright
