#pragma once

#include <QtGlobal>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>

namespace tilewright {

/// The input events that can be monitored, with their numeric values.
enum class EventType : int {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    leftMouseDragged = 6,
    flagsChanged = 12,
    otherMouseDown = 25,
};

/// A set of event types: bit n stands for the type with the value n.
class EventMask {
public:
    constexpr EventMask() = default;
    constexpr EventMask(std::initializer_list<EventType> types) {
        for (const EventType type : types)
            bits_ |= std::uint64_t{1} << static_cast<int>(type);
    }

    [[nodiscard]] constexpr bool contains(EventType type) const {
        return (bits_ & (std::uint64_t{1} << static_cast<int>(type))) != 0;
    }
    [[nodiscard]] constexpr std::uint64_t value() const { return bits_; }

    friend constexpr bool operator==(EventMask, EventMask) = default;

private:
    std::uint64_t bits_ = 0;
};

/// The bits of the four modifier keys in an event's modifier flags.
enum class ModifierFlag : quint32 {
    shift = 0x20000,
    control = 0x40000,
    option = 0x80000,
    command = 0x100000,
};

/// The modifier keys held at an event; bits other than the four named ones may be set as well.
class ModifierFlags {
public:
    constexpr ModifierFlags() = default;
    constexpr explicit ModifierFlags(quint32 bits)
        : bits_(bits) {}
    constexpr ModifierFlags(std::initializer_list<ModifierFlag> flags) {
        for (const ModifierFlag flag : flags)
            bits_ |= static_cast<quint32>(flag);
    }

    [[nodiscard]] constexpr bool contains(ModifierFlag flag) const {
        return (bits_ & static_cast<quint32>(flag)) != 0;
    }
    [[nodiscard]] constexpr quint32 bits() const { return bits_; }

    friend constexpr bool operator==(ModifierFlags, ModifierFlags) = default;

private:
    quint32 bits_ = 0;
};

/// One input event, as a monitor sees it.
struct Event {
    EventType type = EventType::flagsChanged;
    ModifierFlags modifierFlags;
};

/// Names an installed monitor. Only the `EventMonitors` that gave it knows what it stands for.
enum class MonitorToken : quint64 {};

/// Watches input without taking it away from anybody. Main thread only; handlers run there too.
///
/// Each event reaches exactly one of the two kinds: global monitors see the events of other
/// applications, local ones those sent to this application, which receives them all the same.
/// Without the user's permission a global monitor sees nothing. A handler may add and remove
/// monitors, its own included.
class EventMonitors {
public:
    using Handler = std::function<void(const Event&)>;

    virtual ~EventMonitors() = default;

    /// Installs a monitor for the events of other applications; none when the desktop refuses.
    [[nodiscard]] virtual std::optional<MonitorToken> addGlobalMonitor(EventMask mask,
                                                                       Handler handler) = 0;
    /// Installs a monitor for the events of this application; none when the desktop refuses.
    [[nodiscard]] virtual std::optional<MonitorToken> addLocalMonitor(EventMask mask,
                                                                      Handler handler) = 0;
    /// Removes a monitor: its handler is not called again. An unknown token is ignored.
    virtual void removeMonitor(MonitorToken token) = 0;
};

} // namespace tilewright
