#pragma once

#include <FreeDesktop/Edid.h>

#include <QString>
#include <optional>

namespace tilewright {

/// The plugs of this machine as the kernel tells of them, for displays whose compositor keeps their
/// EDID to itself.
class DrmConnectors {
public:
    /// A plug with a display.
    struct Connector {
        /// What the drivers of the X server call it: a display is known by it in X11 sessions.
        QString x11Name;
        /// None where the display tells nothing.
        std::optional<Edid> edid;
    };

    /// Where the kernel tells of them.
    [[nodiscard]] static QString systemFolder();

    explicit DrmConnectors(QString folder = systemFolder());

    /// The plug that a compositor has this name for. One that the kernel does not know, as those of
    /// displays that exist in name only, has no EDID and keeps its name.
    [[nodiscard]] Connector connector(const QString& compositorsName) const;

private:
    const QString folder_;
};

} // namespace tilewright
