#pragma once

#include <QObject>

namespace tilewright {

/// Whether somebody takes in the items of a display's system tray, as X11 knows it. Main thread
/// only.
class SystemTray : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] virtual bool isThere() const = 0;

Q_SIGNALS:
    /// It came, went, or is another one; `isThere()` has the new state.
    void changed();
};

} // namespace tilewright
