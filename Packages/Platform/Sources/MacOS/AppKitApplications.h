#pragma once

#include <Platform/Accessibility.h>

#include <QString>
#include <limits>
#include <optional>
#include <vector>

namespace tilewright::appkit {

/// The application that receives key events, this one included; none where there is none.
[[nodiscard]] std::optional<ProcessID> frontmostApplication();
/// The name that the system shows for a running application; none when there is no such application
/// or it has no name.
[[nodiscard]] std::optional<QString> localizedNameOf(ProcessID process);
/// Opens a link of any scheme; failures are silent.
void openURL(const QString& url);
/// Brings this application in front of whichever one is active.
void activateThisApplication();
/// Brings another application in front of this one, where this is the active one.
void activateApplication(ProcessID process);
/// Whether the user asked the system for reduced motion.
[[nodiscard]] bool prefersReducedMotion();

/// One run of this program that has not ended.
struct RunningInstance {
    ProcessID process = 0;
    /// In seconds from a moment that all instances share; infinite where the system does not tell.
    double launchedAt = std::numeric_limits<double>::infinity();
};

/// The instances of this program, this one included once the system knows of it. None for a program
/// outside a bundle, which has no identifier to look for.
[[nodiscard]] std::vector<RunningInstance> runningInstances();

} // namespace tilewright::appkit
