#pragma once

#include "Legacy.h"

#include <Platform/MainLoop.h>
#include <Platform/ObservableObject.h>

#include <functional>
#include <optional>

namespace tilewright {

/// Brings a keep-awake session from one life of the program to the next: takes up the one that ran
/// in the former, silently, and tells what is to be handed on to another. Needs an installed
/// platform, which has to outlive it. Main thread only.
class KeepAwakeHeir final {
public:
    using Record = std::function<void(const std::optional<Legacy::Session>&)>;

    /// What keeps the computer awake may come a little after the display server: so long it is
    /// asked for again.
    static constexpr std::chrono::seconds patience{30};

    /// `former` ran when the former life ended. `record` is called with the session that runs, or
    /// is to run yet, now and after each change, from the event loop.
    KeepAwakeHeir(const std::optional<Legacy::Session>& former, Record record);

private:
    void takeUp();
    void tell();

    /// Until it has been taken up, or need not be any more.
    std::optional<Legacy::Session> former_;
    const Record record_;
    MainLoop::Interval interval_;
    ScopedTimer again_;
    Refresh changes_;
};

} // namespace tilewright
