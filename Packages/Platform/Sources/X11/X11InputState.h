#pragma once

#include <Platform/EventMonitors.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tilewright {

/// Whose input it is: that of another application, or of this one.
enum class X11InputOwner { other, own };

/// Keys and buttons as the X server has them at one moment.
struct X11InputServerState {
    /// The logical left button: the pointer's button mapping is already applied.
    bool isLeftButtonDown = false;
    ModifierFlags modifiers;

    friend bool operator==(const X11InputServerState&, const X11InputServerState&) = default;
};

/// Whose the pointer and the keyboard are at one moment.
struct X11InputOwners {
    /// Whose window the pointer is in, or who has grabbed the pointer.
    X11InputOwner pointer = X11InputOwner::other;
    /// Whose window has the keyboard.
    X11InputOwner keyboard = X11InputOwner::other;
};

/// Turns raw input into the events that monitors see. Knows no window system, asks nobody, and
/// reads no clock.
///
/// Feed it every raw event of one reading of the queue, then `settle` it with the server's own
/// state, so that an event that never arrived (another program's grab, a locked screen, a switched
/// terminal) leaves nothing stuck. A raw event may also come before the server counts it, while a
/// window manager holds the pointer frozen: what was just heard is believed until the server has
/// agreed with it once.
///
/// Whoever has fallen far behind the user, because this process or the server stood still, is not
/// told of each drag that he missed: of more than `mostReports` remain what brings him up to date,
/// an end of the drag that he knew of, a press for all presses, and how things stand.
class X11InputState {
public:
    struct Report {
        Event event;
        X11InputOwner owner = X11InputOwner::other;
    };

    /// More than anybody's hands bring about while one reading of the queue is handed out.
    static constexpr std::size_t mostReports = 100;

    /// Takes the server's state as it is; reports nothing. A drag that is under way belongs to
    /// `dragOwner`.
    void start(const X11InputServerState& server, X11InputOwner dragOwner = X11InputOwner::other);
    /// What the physical buttons act as, from button 1 on: 1 is the left one, 2 the middle one, 3
    /// the right one, 4 to 7 are wheels, 0 does nothing. A button beyond them acts as itself.
    void setButtonMapping(std::vector<std::uint8_t> mapping) { mapping_ = std::move(mapping); }

    /// A physical button was pressed.
    void pressed(quint32 button);
    void released(quint32 button);
    void moved();
    void modifiersChanged(ModifierFlags modifiers);
    /// Escape was pressed. A drag under way is called off: the window manager puts the window back,
    /// and no modifier key counts until the left button is let go.
    void escapePressed();
    /// The raw events at hand are all told: reports the moves as one, and compares with the state
    /// that the server had after all of them; none when it did not answer.
    void settle(const std::optional<X11InputServerState>& server);

    /// Whether `takeReports` needs the owners: a drag has its own since its press.
    [[nodiscard]] bool needsOwners() const;
    /// The reports since the last call, in order. `owners` are those at the reports' time.
    [[nodiscard]] std::vector<Report> takeReports(const X11InputOwners& owners);
    /// Whether the left button is held, as far as is known: moves matter only then.
    [[nodiscard]] bool isLeftButtonDown() const { return isLeftDown_; }
    /// The modifier keys that are told of.
    [[nodiscard]] ModifierFlags modifiers() const {
        return isCalledOff_ ? ModifierFlags() : modifiers_;
    }

private:
    [[nodiscard]] quint32 logicalButton(quint32 button) const;
    void pressedLeft(quint32 button);
    void setLeftDown(bool isDown);
    void report(EventType type);
    void flushMove();
    void skipAhead();

    /// How often in a row the server may contradict an unconfirmed press or release before it is
    /// believed. A freeze ends within a few milliseconds, during which few queues are read.
    static constexpr int patience = 200;

    std::vector<std::uint8_t> mapping_;
    std::vector<Event> events_;
    /// How things stood before those.
    bool wasLeftDown_ = false;
    ModifierFlags toldModifiers_;
    /// Those that are held, told or not.
    ModifierFlags modifiers_;
    bool isLeftDown_ = false;
    /// The physical button that holds the left one down; 0 when that is not known.
    quint32 leftButton_ = 0;
    /// The server has agreed with `isLeftDown_` since it last changed.
    bool isConfirmed_ = true;
    int contradictions_ = 0;
    bool hasMoved_ = false;
    bool isCalledOff_ = false;
    X11InputOwner dragOwner_ = X11InputOwner::other;
};

} // namespace tilewright
