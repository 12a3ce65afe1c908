#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <memory>
#include <sys/types.h>

class QProcess;

namespace tilewright::testing {

/// A child process with a session of its own. It and whatever it started are killed when the object
/// ends, or when the test dies, however it dies.
class Subprocess {
public:
    Subprocess();
    Subprocess(Subprocess&&) noexcept;
    Subprocess& operator=(Subprocess&&) noexcept;
    ~Subprocess();

    /// Starts a program (looked up in PATH) with exactly this environment. What it prints goes to
    /// `logFile`, or nowhere when that is empty. False when it cannot be started.
    bool start(const QString& program, const QStringList& arguments,
               const QProcessEnvironment& environment, const QString& logFile = {});

    [[nodiscard]] bool isRunning() const;
    /// 0 when nothing was started.
    [[nodiscard]] pid_t pid() const;
    /// Sends a signal to the process alone.
    void signal(int number) const;
    /// Waits for its end; false when it still runs at the deadline.
    bool waitForEnd(int milliseconds = 20'000);
    /// Its exit code once it has ended by itself; -1 when a signal ended it.
    [[nodiscard]] int exitCode() const;
    /// Kills it with everything it started, and waits.
    void stop();

private:
    std::unique_ptr<QProcess> process_;
    pid_t group_ = 0;
};

/// Runs a program to its end and answers what it printed on its standard output.
[[nodiscard]] QString outputOf(const QString& program, const QStringList& arguments,
                               const QProcessEnvironment& environment);

} // namespace tilewright::testing
