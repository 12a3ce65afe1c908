#pragma once

#include <KeepAwake/KeepAwakeSession.h>

#include <chrono>
#include <optional>
#include <span>
#include <string>

namespace tilewright {

/// What the program hands on to itself when it begins anew in the same process, because its display
/// server has ended. Moments are `MainLoop::now()`, which counts on through that.
struct Legacy {
    using Interval = std::chrono::milliseconds;

    /// A life that is no longer than this is a short one.
    static constexpr std::chrono::seconds shortLife{10};
    /// After so many short lives in a row there is no other: something is wrong then that beginning
    /// anew does not mend.
    static constexpr int mostShortLives = 5;

    /// A keep-awake session that runs.
    struct Session {
        KeepAwakeSession session = KeepAwakeSession::indefinite();
        /// When it ends; means nothing where it is indefinite.
        Interval end{};

        friend bool operator==(const Session&, const Session&) = default;
    };

    /// How many short lives in a row have gone before.
    int shortLives = 0;
    std::optional<Session> session;

    /// What is handed on at the end of a life that has taken so long; nothing where another is not
    /// worth while.
    [[nodiscard]] std::optional<Legacy> after(Interval life) const;
    /// As an argument of a command line.
    [[nodiscard]] std::string asArgument() const;
    /// That argument's meaning, wherever it is among these; nothing where none of them is one.
    [[nodiscard]] static std::optional<Legacy> in(std::span<char* const> arguments);

    friend bool operator==(const Legacy&, const Legacy&) = default;
};

} // namespace tilewright
