#pragma once

#include "CompanionMessage.h"

#include <QObject>
#include <optional>
#include <vector>

namespace tilewright {

/// What a companion told last, and what follows from it: the interfaces of the platform answer from
/// this and never wait for anybody. Whatever is told, in whatever order, a drag that has begun
/// ends: by its end, by the beginning of another, by a new companion's greeting or by the
/// companion's end. Main thread only.
class CompanionState final : public QObject {
    Q_OBJECT

public:
    CompanionState();
    ~CompanionState() override;

    /// Takes in what the companion tells. Before its greeting nothing else counts.
    void take(const CompanionMessage& message);
    /// The companion is there no longer. The displays and the pointer stay as they were told last.
    void lose();
    /// Ends the drag that runs, if one does, as if the user had: without a snap.
    void cancelDrag();
    /// The keys by the word of somebody who knows them at once, instead of the companion's; none
    /// where nobody does, or no longer. During a drag the last motion counts again with a key that
    /// goes down.
    void setKeys(std::optional<ModifierFlags> keys);
    /// Where the pointer is by the word of somebody else than the companion.
    void notePointer(CompanionPoint place) { pointer_ = place; }

    /// Whether a companion is there that speaks our protocol.
    [[nodiscard]] bool isConnected() const { return isConnected_; }
    /// Whether anybody tells the keys.
    [[nodiscard]] bool hasKeys() const { return doesCompanionTellKeys_ || keysOfOthers_; }
    /// What the companion that introduced itself last said of its compositor.
    [[nodiscard]] const QString& shell() const { return shell_; }
    /// Whether the user wishes for less motion, as the companion that introduced itself last has
    /// it; none where it does not say.
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const { return reducedMotion_; }
    /// The displays in the companion's order; empty as long as none has been told of.
    [[nodiscard]] const std::vector<CompanionDisplay>& displays() const { return displays_; }
    /// None as long as none has been told of.
    [[nodiscard]] std::optional<CompanionPoint> pointer() const { return pointer_; }

    /// The window that the user worked in last and that is not this program's own.
    [[nodiscard]] std::optional<CompanionWindow> lastActive() const;
    /// The same among the windows of one process.
    [[nodiscard]] std::optional<CompanionWindow> lastActiveOf(ProcessID process) const;
    /// Whether the window that has the focus, as far as any has it, is this program's own.
    [[nodiscard]] bool isFocusOurs() const;
    /// The window that is being dragged.
    [[nodiscard]] std::optional<CompanionWindow> dragged() const;
    /// A window as it was told of last; none for one that is gone, or not known at all.
    [[nodiscard]] std::optional<CompanionWindow> window(CompanionWindowID id) const;

Q_SIGNALS:
    /// A companion has introduced itself, and knows nothing of what the former one was told.
    void greeted();
    /// `isConnected()` has another answer than before.
    void connectedChanged();
    /// `hasKeys()` may have another answer than before.
    void keySourceChanged();
    /// `prefersReducedMotion()` may have another answer than before.
    void reducedMotionTold();
    /// `displays()` may have another answer than before.
    void displaysChanged();
    /// Another window has the focus by now, be it this program's own.
    void focusChanged();
    /// Something of a drag, as the user's input would have it; whether it is in a window of this
    /// program's own.
    void input(const tilewright::Event& event, bool isOurs);
    void itemClicked(const tilewright::CompanionRect& item);
    void panelAwaited();
    void pressedOutside(bool isOverview);
    /// The pointer's place was asked for, and is known now.
    void pointerTold();

private:
    struct Drag {
        quint64 serial = 0;
        CompanionWindowID window{};
        bool isOurs = false;
        bool hasMoved = false;
    };

    void hear(const CompanionHello& hello);
    void hear(const CompanionDisplays& message);
    void hear(const CompanionFocus& message);
    void hear(const CompanionMotionWish& message);
    void hear(const CompanionDrag& message);
    void hear(const CompanionFrameSettled& message);
    void hear(const CompanionItemClick& message);
    void hear(const CompanionPanelAwaited& message);
    void hear(const CompanionPressOutside& message);
    void hear(const CompanionPointerPlace& message);
    void hear(const CompanionGone& message);
    void hear(const CompanionPoll& message);

    void begin(const CompanionDrag& message);
    /// What a message says of the keys, unless somebody knows better.
    void hearKeys(ModifierFlags keys, bool isOurs) {
        tellKeys(keysOfOthers_.value_or(keys), isOurs);
    }
    void tellKeys(ModifierFlags keys, bool isOurs);
    void note(const CompanionWindow& window);
    void noteActive(const CompanionWindow& window);

    bool isConnected_ = false;
    QString shell_;
    std::optional<bool> reducedMotion_;
    std::vector<CompanionDisplay> displays_;
    std::optional<CompanionPoint> pointer_;
    /// As they were told to the monitors last.
    ModifierFlags keys_;
    std::optional<ModifierFlags> keysOfOthers_;
    bool doesCompanionTellKeys_ = true;
    std::optional<Drag> drag_;
    quint64 lastSerial_ = 0;
    /// Those that were told of last, the latest first.
    std::vector<CompanionWindow> windows_;
    /// Those of them that had the focus, the latest first.
    std::vector<CompanionWindowID> active_;
};

} // namespace tilewright
