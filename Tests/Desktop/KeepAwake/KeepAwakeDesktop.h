#pragma once

#include <DesktopSession.h>
#include <Waiting.h>

#include <QProcess>
#include <optional>

namespace tilewright::testing {

/// A process that keeps the desktop awake when told to, as the program does.
class KeepAwakeHost {
public:
    /// Fails the running test when it does not come up. Talks to the buses of `environment`.
    explicit KeepAwakeHost(const QProcessEnvironment& environment,
                           const QStringList& arguments = {});
    ~KeepAwakeHost();

    /// Each answers whether a session runs afterwards.
    bool startIndefinite() { return tell("indefinite"); }
    bool startTimed(double seconds) { return tell("timed " + QByteArray::number(seconds)); }
    bool deactivate() { return tell("deactivate"); }
    bool isActive() { return tell("state"); }
    /// Whether its window has the focus, as far as it has heard.
    bool isFocused() { return tell("focused"); }
    [[nodiscard]] bool isRunning() const { return process_.state() == QProcess::Running; }
    /// How long the last call of the manager took.
    [[nodiscard]] std::chrono::microseconds lastDuration() const { return lastDuration_; }
    [[nodiscard]] qint64 pid() const { return process_.processId(); }
    /// As `kill -9` does.
    void kill();

private:
    bool tell(const QByteArray& line);
    [[nodiscard]] QString readLine();

    QProcess process_;
    std::chrono::microseconds lastDuration_{0};
};

/// A desktop whose idle services a test chooses and asks.
class KeepAwakeDesktop {
public:
    KeepAwakeDesktop();

    [[nodiscard]] DesktopSession& session() { return session_; }
    /// For hosts: the session's bus, which stands for the system's bus too.
    [[nodiscard]] QProcessEnvironment environment() const;

    /// What a client independent of the program is answered by a service; the service is not
    /// started for it. Nothing when it cannot be asked.
    [[nodiscard]] std::optional<QString> ask(const QString& service, const QString& path,
                                             const QString& method);
    /// Whether somebody on the session bus owns the name.
    [[nodiscard]] bool isOnBus(const QString& service);
    /// Starts a stand-in for a service (see idle-service.py) and waits until it is on the bus.
    Subprocess& startService(const QString& name, const QStringList& arguments);
    /// How many inhibitions a stand-in holds.
    [[nodiscard]] int held(const QString& service);
    /// How often a stand-in was asked to inhibit.
    [[nodiscard]] int asked(const QString& service);
    /// How often a stand-in has granted an inhibition.
    [[nodiscard]] int granted(const QString& service);

    /// Has the X server blank the screen after a second without input.
    void blankAfterOneSecond();
    /// Whether the X server's screen saver is on now.
    [[nodiscard]] bool isBlanked();

private:
    [[nodiscard]] int number(const QString& service, const QString& method);

    DesktopSession session_;
};

} // namespace tilewright::testing
