#pragma once

#include <DesktopSession.h>

#include <QRect>
#include <map>
#include <vector>

namespace tilewright::testing {

/// The real program, running in a test's desktop.
class RunningProgram {
public:
    /// Starts it with this key as the user's choice ("control", "shift", "option", "command"), and
    /// waits until it answers to a drag. Fails the running test when it does not. The program ends
    /// with this object.
    explicit RunningProgram(DesktopSession& desktop, const QString& modifier = defaultModifier(),
                            const std::map<QString, QString>& environment = {});
    /// The same for a program that somebody else has started, and ends.
    RunningProgram(DesktopSession& desktop, Subprocess& process, const QString& modifier);
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;
    ~RunningProgram();

    [[nodiscard]] static QString defaultModifier() { return QStringLiteral("control"); }

    [[nodiscard]] bool isRunning() const { return process_->isRunning(); }
    [[nodiscard]] pid_t pid() const { return process_->pid(); }
    [[nodiscard]] Subprocess& process() { return *process_; }

    /// The overlay's window; 0 before the program has made it.
    [[nodiscard]] XInspector::Window overlay() const;
    /// Whether the overlay is on the screen.
    [[nodiscard]] bool overlayShows() const;

    /// The key that the program was told to answer to.
    [[nodiscard]] quint32 key() const;
    /// Presses or lets go of this key, and waits until the server counts it so: a window manager
    /// that has grabbed the key freezes the keyboard until it has looked at it, and one that is
    /// slow would see what the mouse does next before the key. Fails the running test when it never
    /// does.
    void pressKey();
    void releaseKey();

private:
    enum class End { withThisObject, elsewhere };

    void waitUntilReady();
    void expectModifierHeld(bool isHeld);

    DesktopSession& desktop_;
    const End end_;
    Subprocess* process_;
    QString modifier_;
    mutable XInspector::Window overlay_ = 0;
};

/// The keysym of a modifier by the name under which the program stores it.
[[nodiscard]] quint32 keyFor(const QString& modifier);

} // namespace tilewright::testing
