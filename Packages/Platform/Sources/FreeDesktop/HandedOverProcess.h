#pragma once

#include <QProcess>
#include <functional>

namespace tilewright {

/// A program that is started for the user and then belongs to the desktop: it lives on when this
/// object, or this process, ends before it. It shares nothing with this process, neither a terminal
/// nor an output. Main thread only.
class HandedOverProcess final : public QProcess {
    Q_OBJECT

public:
    explicit HandedOverProcess(QObject* parent = nullptr);
    ~HandedOverProcess() override;

    /// Starts a program with its arguments; returns at once. `whenFailed` is called from the event
    /// loop, once, if it cannot be started, crashes or ends with another code than 0 while this
    /// object lives; `whenDone` if it ends well.
    void handOver(const QString& program, const QStringList& arguments,
                  const QProcessEnvironment& environment, std::function<void()> whenFailed,
                  std::function<void()> whenDone);
};

} // namespace tilewright
