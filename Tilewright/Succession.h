#pragma once

#include "KeepAwakeHeir.h"
#include "Legacy.h"

#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>

namespace tilewright {

/// Lets the program outlive its compositor.
///
/// Qt ends the process, by `_exit`, in the moment in which it notices that its connection to the
/// compositor is broken, and asks nobody. While this exists, the process executes its program anew
/// instead, with what is to be handed on as an argument: the same process, in which nothing else is
/// left of before. What cannot be missed there is `_exit` alone; so the program has one of its own.
/// Where another life is not worth while, or the process has been asked to end, it ends.
///
/// Only one may exist at a time. Main thread only, unless it says otherwise.
class Succession final {
public:
    /// From now on. `name` is what the program was started as, `former` what has been handed on to
    /// this life.
    Succession(std::string name, const Legacy& former);
    Succession(const Succession&) = delete;
    Succession& operator=(const Succession&) = delete;
    ~Succession();

    /// To be held while Qt's application object is made. Where the compositor is gone before Qt has
    /// connected to it, Qt ends the process by a fatal message, which counts as well.
    [[nodiscard]] static std::shared_ptr<void> throughStart();

    /// Takes up what has been handed on, and from then on hands on what runs. Needs an installed
    /// platform, which has to outlive what is answered. With that ends this object's work, too: the
    /// program ends by itself.
    [[nodiscard]] std::shared_ptr<void> begin();

    /// Called in place of the process's end, on any thread. Returns where that is to be.
    static void handOver();

private:
    void executeAnew();

    const std::string name_;
    const std::string program_;
    /// A child of this process that could not become another program ends by `_exit`, too.
    const pid_t process_;
    const Legacy::Interval birth_;
    std::mutex mutex_;
    Legacy legacy_;
};

} // namespace tilewright
