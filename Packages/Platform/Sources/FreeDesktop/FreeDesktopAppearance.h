#pragma once

#include "BusNameOwner.h"
#include "BusSignals.h"
#include "MessageBus.h"

#include <QDBusMessage>
#include <QObject>
#include <array>
#include <bitset>
#include <memory>
#include <optional>

namespace tilewright {

/// One wish out of what several sources tell: reduced motion where any of them asks for it, none
/// where none says anything.
[[nodiscard]] std::optional<bool> combinedMotionWish(std::optional<bool> first,
                                                     std::optional<bool> second);

/// How the user wishes programs to look and to move, as the desktop portal's settings tell it,
/// followed by their signal. The portal is not started for this; one that starts later is asked
/// then. Nobody but the portal is heard, and nothing of what it tells is kept but these wishes.
/// Without a session bus nothing is known; when it goes, what it told stands. Main thread only.
class FreeDesktopAppearance final : public QObject {
    Q_OBJECT

public:
    /// The bus has to outlive this.
    explicit FreeDesktopAppearance(MessageBus& bus);
    ~FreeDesktopAppearance() override;

    /// None while the portal says nothing about it.
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const;
    /// Whether dark colours are wished for; false while the portal says nothing about it.
    [[nodiscard]] bool prefersDark() const;

Q_SIGNALS:
    /// `prefersReducedMotion()` has another answer than before.
    void reducedMotionChanged();
    /// `prefersDark()` has another answer than before.
    void darkChanged();

private:
    enum SettingID : std::size_t {
        standardMotion,
        animationsEnabled,
        animationDuration,
        colorScheme,
        settingCount
    };
    /// What each setting says of what the user wishes; none where it says nothing.
    using Wishes = std::array<std::optional<bool>, settingCount>;

    void joinBus();
    void followPortal();
    void settingChanged(const QDBusMessage& notice);
    void readAll();
    void takeAll(const QDBusMessage& answer);
    void take(const Wishes& wishes);

    MessageBus& bus_;
    std::unique_ptr<BusNameOwner> portal_;
    /// Of the portal.
    BusSignals signals_;
    int generation_ = 0;
    Wishes wishes_;
    /// What changed after all settings were asked for last.
    std::bitset<settingCount> changedSince_;
};

} // namespace tilewright
