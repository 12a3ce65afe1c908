#pragma once

#include <QProcess>
#include <chrono>
#include <functional>

namespace tilewright {

/// A program that is started for the user and then belongs to the desktop: it lives on when this
/// object, or this process, ends before it. It shares nothing with this process, neither a terminal
/// nor an output. Main thread only.
class DetachedProcess final : public QProcess {
    Q_OBJECT

public:
    /// Tells times that never go back, from a beginning of its own choice.
    using Clock = std::function<std::chrono::milliseconds()>;
    /// Within this time a program has found out that it cannot do what it is asked for. One that
    /// ends badly later has shown its user something, and was ended with or without his will.
    static constexpr std::chrono::seconds trialTime{5};

    /// The machine's own such clock.
    [[nodiscard]] static std::chrono::milliseconds steadyTime();

    explicit DetachedProcess(Clock clock = steadyTime, QObject* parent = nullptr);
    ~DetachedProcess() override;

    /// Starts a program with its arguments; returns at once. `whenFailed` is called from the event
    /// loop, once, if it cannot be started, or crashes or ends with another code than 0 within
    /// `trialTime`, while this object lives; `whenDone` if it ends otherwise.
    void handOver(const QString& program, const QStringList& arguments,
                  const QProcessEnvironment& environment, std::function<void()> whenFailed,
                  std::function<void()> whenDone);

private:
    const Clock clock_;
};

} // namespace tilewright
