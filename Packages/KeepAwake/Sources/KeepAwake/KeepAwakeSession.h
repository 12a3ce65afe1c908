#pragma once

#include <variant>

namespace tilewright {

/// How long to keep the computer awake: for a time, or until told otherwise. Compares by value.
class KeepAwakeSession {
public:
    struct Timed {
        /// In seconds.
        double duration;
        friend bool operator==(const Timed&, const Timed&) = default;
    };
    struct Indefinite {
        friend bool operator==(const Indefinite&, const Indefinite&) = default;
    };

    /// For this many seconds, then end by itself. Zero or less ends at the first tick.
    [[nodiscard]] static KeepAwakeSession timed(double duration) {
        return KeepAwakeSession(Timed{duration});
    }
    /// Until stopped.
    [[nodiscard]] static KeepAwakeSession indefinite() { return KeepAwakeSession(Indefinite{}); }

    /// Null unless the session is timed.
    [[nodiscard]] const Timed* asTimed() const { return std::get_if<Timed>(&kind_); }

    friend bool operator==(const KeepAwakeSession&, const KeepAwakeSession&) = default;

private:
    explicit KeepAwakeSession(std::variant<Timed, Indefinite> kind)
        : kind_(kind) {}

    std::variant<Timed, Indefinite> kind_;
};

} // namespace tilewright
