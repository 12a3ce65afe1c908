#pragma once

namespace tilewright {

/// The display server's own screen saver, which blanks the display (and puts it into power saving)
/// for lack of input. Main thread only.
///
/// A suspension ends when it is resumed, and by itself when the process dies.
class ScreenSaver {
public:
    virtual ~ScreenSaver() = default;

    /// Keeps the saver from starting until as many calls of `resume` have been made. Answers
    /// whether the server does so; when it does not, there is nothing to resume.
    [[nodiscard]] virtual bool suspend() = 0;
    virtual void resume() = 0;
};

} // namespace tilewright
