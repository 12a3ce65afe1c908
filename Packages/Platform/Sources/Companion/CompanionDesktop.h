#pragma once

#include "CompanionAccessibility.h"
#include "CompanionAppearance.h"
#include "CompanionBus.h"
#include "CompanionEventMonitors.h"
#include "CompanionInstanceActivation.h"
#include "CompanionOutbox.h"
#include "CompanionPointer.h"
#include "CompanionScreens.h"
#include "CompanionState.h"
#include "CompanionWorkspace.h"

#include <FreeDesktop/FreeDesktopSession.h>
#include <FreeDesktop/InhibitingPowerAssertions.h>
#include <Platform/PanelSurface.h>
#include <Platform/Platform.h>

#include <functional>
#include <memory>

namespace tilewright {

/// What all desktops share whose compositor has a companion of ours inside, in the order in which
/// the parts need each other. A desktop adds its companion, the way to it and what it shows in its
/// own manner. Needs Qt's application object, and has to end before it. Main thread only.
struct CompanionDesktop : FreeDesktopSession {
    /// `notify` tells the user that the companion is missing, `showGuidance` shows what to do about
    /// it. Neither is called before the start has ended.
    CompanionDesktop(std::function<void()> notify, std::function<void()> showGuidance);
    ~CompanionDesktop();

    /// The services that are parts of this.
    [[nodiscard]] PlatformServices services();
    /// A panel that the companion places.
    [[nodiscard]] std::unique_ptr<PanelSurface>
    makePanelSurface(PanelSurface::ViewFactory makeView, std::unique_ptr<PanelChrome> chrome);
    /// Takes what comes there for the companion's word.
    void listenTo(CompanionBus& bus);
    /// Forgets what the companion has told, and what it was to do: it is gone, or another one.
    void lose();

    InhibitingPowerAssertions powerAssertions{mainLoop, nullptr, sessionBus, systemBus};

    CompanionState state;
    CompanionAppearance appearance{sessionBus, state};
    CompanionOutbox outbox;
    CompanionScreens screens{state};
    CompanionPointer pointer{state, screens};
    CompanionEventMonitors eventMonitors{state};
    CompanionAccessibility accessibility;
    CompanionWorkspace workspace;
    CompanionInstanceActivation instanceActivation;
};

} // namespace tilewright
