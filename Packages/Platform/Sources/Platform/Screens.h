#pragma once

#include "Geometry.h"
#include "QtSpace.h"

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

namespace tilewright {

/// One connected display.
///
/// The same object stands for a display for as long as nothing about it changes; a new object
/// replaces it when something does. So identity comparison is meaningful: the same pointer is the
/// same display in the same place. An object whose display is gone keeps its last values.
class Screen {
public:
    Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    virtual ~Screen();

    /// The whole display, in AppKit screen space.
    [[nodiscard]] virtual AppKitRect frame() const = 0;
    /// The frame less menu bars, panels and docks, in AppKit screen space.
    [[nodiscard]] virtual AppKitRect visibleFrame() const = 0;
    /// The desktop's number for the display; none where it has no number.
    [[nodiscard]] virtual std::optional<quint32> displayID() const = 0;
    /// The text of the display's persistent UUID (upper-case canonical form); none where the
    /// desktop knows none. The same physical display has the same UUID in every run.
    [[nodiscard]] virtual std::optional<QString> persistentUUID() const = 0;
    /// The name the desktop shows the user, such as the monitor's model.
    [[nodiscard]] virtual QString localizedName() const = 0;
};

using ScreenPtr = std::shared_ptr<const Screen>;

/// The connected displays. Main thread only.
class Screens : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Screens() override;

    /// The displays, the primary one first, in a stable order; empty while none is connected. The
    /// reference is valid until control returns to the event loop.
    [[nodiscard]] virtual const std::vector<ScreenPtr>& all() const = 0;
    /// The display that holds the user's attention (the active window's); null without displays.
    [[nodiscard]] virtual ScreenPtr main() const = 0;
    /// The first display of the list whose frame holds the point; null where none does.
    [[nodiscard]] ScreenPtr at(AppKitPoint point) const;
    /// The display at the point, else the one whose frame is nearest; null without displays.
    [[nodiscard]] ScreenPtr nearest(AppKitPoint point) const;
    /// How Qt counts on a display of the list, now.
    [[nodiscard]] virtual QtSpace qtSpace(const Screen& screen) const = 0;

Q_SIGNALS:
    /// Something about the displays changed: one came, went, moved, was resized, or its panels
    /// did. Sent once for each burst of changes, after `all()` has the new state.
    void screensChanged();
};

} // namespace tilewright
