#pragma once

namespace tilewright {

/// The display server's own screen saver, which blanks the display (and puts it into power saving)
/// for lack of input. Main thread only.
///
/// A suspension ends when it is resumed, and by itself when the process dies.
class ScreenSaver {
public:
    /// What has come of asking for a suspension.
    enum class Suspension {
        /// There is none, and nothing to resume.
        none,
        /// The server has not answered in time: it may come to suspend the saver yet.
        unanswered,
        held,
    };

    virtual ~ScreenSaver() = default;

    /// Keeps the saver from starting until each suspension that is held, or was not answered, has
    /// been resumed.
    [[nodiscard]] virtual Suspension suspend() = 0;
    /// Ends one suspension, also one that the server has yet to come to.
    virtual void resume() = 0;
};

} // namespace tilewright
