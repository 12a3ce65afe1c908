#pragma once

#include <Platform/Platform.h>

#include <memory>
#include <string>
#include <vector>

namespace tilewright {

/// The backend that this program was built for: the one place that names one. The build adds the
/// source that fits the desktop.
class DesktopBackend {
public:
    DesktopBackend() = delete;

    /// The command line that Qt is given, after the program's name, in place of this
    /// process's own: neither the user's arguments nor the environment choose what only this
    /// desktop can be. Nothing of it reaches the programs that this one starts.
    [[nodiscard]] static std::vector<std::string> qtArguments();
    /// What has to be in place before Qt's application object is made, and goes once that has been.
    [[nodiscard]] static std::shared_ptr<void> precaution();
    /// Opens the desktop; null, after saying why on standard error, when there is none. Needs Qt's
    /// application object, and has to end before it.
    [[nodiscard]] static std::unique_ptr<Platform> open();
};

} // namespace tilewright
