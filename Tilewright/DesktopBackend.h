#pragma once

#include <Platform/Platform.h>

#include <memory>

namespace tilewright {

/// The backend that this program was built for: the one place that names one. The build adds the
/// source that fits the desktop.
class DesktopBackend {
public:
    DesktopBackend() = delete;

    /// Tells the toolkit what it has to know before its application object is made.
    static void prepareToolkit();
    /// Opens the desktop; null, after saying why on standard error, when there is none. Needs the
    /// toolkit's application object, and has to end before it.
    [[nodiscard]] static std::unique_ptr<Platform> open();
};

} // namespace tilewright
