#pragma once

#include <Platform/Platform.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tilewright {

/// The desktop that this process runs on: the one place that names backends. The build adds the
/// source that fits the operating system; on Linux the choice is made at run time, by what answers.
class DesktopBackend {
public:
    /// Looks around, before Qt is told which platform to use. Null, after saying on standard error
    /// what was looked for, when there is no desktop. The process's arguments tell of a former life
    /// in which it lost its desktop: then it is waited for until it has come back; null, in
    /// silence, when it does not.
    [[nodiscard]] static std::unique_ptr<DesktopBackend> find(std::span<char*> arguments = {});

    DesktopBackend() = default;
    DesktopBackend(const DesktopBackend&) = delete;
    DesktopBackend& operator=(const DesktopBackend&) = delete;
    virtual ~DesktopBackend() = default;

    /// The command line that Qt is given, after the program's name, in place of this process's own:
    /// neither the user's arguments nor the environment choose what only this desktop can be.
    /// Nothing of it reaches the programs that this one starts.
    [[nodiscard]] virtual std::vector<std::string> qtArguments() const = 0;
    /// To be held while Qt's application object is made: keeps Qt from what this program has no use
    /// for, and from waiting for somebody who does not answer.
    [[nodiscard]] virtual std::shared_ptr<void> precaution() const = 0;
    /// Opens the desktop; null, after saying why on standard error, when it is gone by now. Needs
    /// Qt's application object, and the platform has to end before that.
    [[nodiscard]] virtual std::unique_ptr<Platform> open() const = 0;
    /// To be held while the application runs: takes up what ran when its former life lost its
    /// desktop, and lets it outlive such a loss where this desktop may come back. Null where that
    /// is nothing. Needs the platform that was opened to be installed, and has to end before that.
    [[nodiscard]] virtual std::shared_ptr<void> beginLife() const = 0;
};

} // namespace tilewright
