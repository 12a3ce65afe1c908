#pragma once

#include "Accessibility.h"

#include <QObject>
#include <QString>
#include <optional>

namespace tilewright {

/// The running applications and the desktop around them. Main thread only.
class Workspace : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Workspace() override;

    /// The application that the user works in: the owner of the last active window that is not
    /// this program's own panel; none where no application has one.
    [[nodiscard]] virtual std::optional<ProcessID> frontmostApplication() const = 0;
    /// The name that the desktop shows for a running application; none when there is no such
    /// application or it has no name.
    [[nodiscard]] virtual std::optional<QString> localizedName(ProcessID process) const = 0;
    /// Opens the place where the user grants the accessibility permission, or a page that tells
    /// what this desktop lacks. Returns at once; failures are silent.
    virtual void openAccessibilitySettings() = 0;
    /// Brings this application in front of the one the user is in.
    virtual void activateThisApplication() = 0;

Q_SIGNALS:
    /// The user works elsewhere than before: in another window where the desktop tells of windows
    /// (X11), in another application where it tells of those only (macOS).
    void activeWindowChanged();
};

} // namespace tilewright
