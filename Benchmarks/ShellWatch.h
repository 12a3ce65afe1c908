#pragma once

#include <GnomeSession.h>

#include <QRect>
#include <optional>
#include <vector>

namespace tilewright::testing {

/// Notes inside a shell what it does, and when: on the clock that all processes have, in
/// milliseconds. It hooks into the shell and the companion, so that nobody has to ask while time is
/// taken.
class ShellWatch {
public:
    /// Since the last look.
    struct Notes {
        /// Frames of the stage in which the overlay was there for the first time, was another one,
        /// or was gone, once they were painted.
        std::vector<double> shown;
        std::vector<double> changed;
        std::vector<double> gone;
        /// When a window was given a frame by the companion for the first time, and when it had
        /// that for good; none where it never had.
        std::optional<double> frameAsked;
        std::optional<double> frameFinal;
        /// How long each of the companion's calls in a drag took until its answer was there.
        std::vector<double> roundTrips;
        /// When each frame of the stage was painted, and how long the shell worked at it.
        std::vector<double> painted;
        std::vector<double> work;
    };

    explicit ShellWatch(GnomeSession& session)
        : session_(session) {}

    /// Hooks into the shell; the frames noted are this window's.
    void begin(const QString& title);
    /// Hooks into the companion that is switched on now.
    void followCalls();
    /// What has been noted since the last time.
    [[nodiscard]] Notes take();
    /// The moment, on that clock.
    [[nodiscard]] static double now();

private:
    GnomeSession& session_;
};

} // namespace tilewright::testing
