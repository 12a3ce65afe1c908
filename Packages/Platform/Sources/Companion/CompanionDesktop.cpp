#include "CompanionDesktop.h"

#include "CompanionPanelSurface.h"

#include <utility>

namespace tilewright {

CompanionDesktop::CompanionDesktop(std::function<void()> notify, std::function<void()> showGuidance)
    : accessibility(state, screens, outbox, mainLoop, std::move(notify))
    , workspace(state, outbox, std::move(showGuidance))
    , instanceActivation(qEnvironmentVariable("WAYLAND_DISPLAY"), sessionBus, state, outbox,
                         mainLoop) {}

CompanionDesktop::~CompanionDesktop() = default;

PlatformServices CompanionDesktop::services() {
    return {.screens = screens,
            .pointer = pointer,
            .eventMonitors = eventMonitors,
            .accessibility = accessibility,
            .workspace = workspace,
            .appearance = appearance,
            .powerAssertions = powerAssertions,
            .userDefaults = userDefaults,
            .mainLoop = mainLoop,
            .applicationSupport = applicationSupport,
            .instanceActivation = instanceActivation,
            .keyNames = keyNames};
}

std::unique_ptr<PanelSurface>
CompanionDesktop::makePanelSurface(PanelSurface::ViewFactory makeView,
                                   std::unique_ptr<PanelChrome> chrome) {
    return std::make_unique<CompanionPanelSurface>(state, screens, pointer, outbox, mainLoop,
                                                   std::move(makeView), std::move(chrome));
}

void CompanionDesktop::listenTo(CompanionBus& bus) {
    QObject::connect(&bus, &CompanionBus::told, &state, &CompanionState::take);
    QObject::connect(&bus, &CompanionBus::overrun, &state, &CompanionState::cancelDrag);
    QObject::connect(&bus, &CompanionBus::lost, &state, [this] { lose(); });
}

void CompanionDesktop::lose() {
    outbox.clear();
    state.lose();
}

} // namespace tilewright
