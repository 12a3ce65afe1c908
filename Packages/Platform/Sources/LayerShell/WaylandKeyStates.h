#pragma once

#include "WaylandConnection.h"

#include <Platform/EventMonitors.h>

#include <QObject>

namespace tilewright {

/// The modifier keys that are down, whoever has the keyboard, as KWin tells of them where it lets
/// this program know. Main thread only.
class WaylandKeyStates final : public QObject {
    Q_OBJECT

public:
    /// The connection has to outlive this.
    explicit WaylandKeyStates(WaylandConnection& connection);
    ~WaylandKeyStates() override;

    /// Whether the compositor tells.
    [[nodiscard]] bool isOffered() const { return states_ != nullptr; }
    /// The keys held down or latched now; none while nobody tells.
    [[nodiscard]] ModifierFlags flags() const { return flags_; }

Q_SIGNALS:
    /// `isOffered()` has another answer.
    void offerChanged();
    /// `flags()` has another answer. Sent for each key by itself.
    void flagsChanged();

private:
    void begin();
    void end();
    void note(std::uint32_t key, std::uint32_t state);
    void setFlags(ModifierFlags flags);

    WaylandConnection& connection_;
    WaylandObject<org_kde_kwin_keystate> states_;
    ModifierFlags flags_;
};

} // namespace tilewright
