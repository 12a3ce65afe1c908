#pragma once

#include <Platform/Accessibility.h>

#include <QString>
#include <optional>

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
/// Whether the user asked the system for reduced motion.
[[nodiscard]] bool prefersReducedMotion();
/// How many instances of this program run, this one included. One for a program outside a bundle,
/// which has no identifier to look for.
[[nodiscard]] int runningInstances();

} // namespace tilewright::appkit
