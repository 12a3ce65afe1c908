#include "WaylandKeyStates.h"

#include "WaylandListener.h"
#include "WaylandProtocols.h"

#include <algorithm>
#include <optional>

namespace tilewright {

namespace {

/// Earlier ones know only locks.
constexpr std::uint32_t versionWithModifiers = 5;

std::optional<ModifierFlag> flagOf(std::uint32_t key) {
    switch (key) {
    case ORG_KDE_KWIN_KEYSTATE_KEY_ALT:
        return ModifierFlag::option;
    case ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL:
        return ModifierFlag::control;
    case ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT:
        return ModifierFlag::shift;
    case ORG_KDE_KWIN_KEYSTATE_KEY_META:
        return ModifierFlag::command;
    default:
        return std::nullopt;
    }
}

} // namespace

WaylandKeyStates::WaylandKeyStates(WaylandConnection& connection)
    : connection_(connection) {
    connect(&connection_, &WaylandConnection::ready, this, &WaylandKeyStates::begin);
    connect(&connection_, &WaylandConnection::lost, this, &WaylandKeyStates::end);
    begin();
}

WaylandKeyStates::~WaylandKeyStates() = default;

void WaylandKeyStates::begin() {
    const auto& offers = connection_.offers();
    const auto offer = std::find_if(offers.begin(), offers.end(), [](const WaylandOffer& one) {
        return one.interface == org_kde_kwin_keystate_interface.name &&
               one.version >= versionWithModifiers;
    });
    if (offer == offers.end())
        return;
    states_ = connection_.bind<org_kde_kwin_keystate>(*offer, org_kde_kwin_keystate_interface,
                                                      versionWithModifiers);
    static constexpr org_kde_kwin_keystate_listener events{
        .stateChanged = wayland::Call<&WaylandKeyStates::note>::on,
    };
    org_kde_kwin_keystate_add_listener(states_.get(), &events, this);
    // Changes alone are told unasked.
    org_kde_kwin_keystate_fetchStates(states_.get());
    Q_EMIT offerChanged();
}

void WaylandKeyStates::end() {
    if (!states_)
        return;
    states_.reset();
    setFlags({});
    Q_EMIT offerChanged();
}

void WaylandKeyStates::note(std::uint32_t key, std::uint32_t state) {
    const std::optional<ModifierFlag> flag = flagOf(key);
    if (!flag)
        return;
    const auto bit = static_cast<quint32>(*flag);
    // Latched and locked, as by sticky keys, count as on an X11 desktop: held.
    const bool isHeld = state != ORG_KDE_KWIN_KEYSTATE_STATE_UNLOCKED;
    setFlags(ModifierFlags(isHeld ? flags_.bits() | bit : flags_.bits() & ~bit));
}

void WaylandKeyStates::setFlags(ModifierFlags flags) {
    if (flags == flags_)
        return;
    flags_ = flags;
    Q_EMIT flagsChanged();
}

} // namespace tilewright
