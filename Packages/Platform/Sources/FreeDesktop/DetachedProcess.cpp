#include "DetachedProcess.h"

#include <unistd.h>

namespace tilewright {

std::chrono::milliseconds DetachedProcess::steadyTime() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

DetachedProcess::DetachedProcess(Clock clock, QObject* parent)
    : QProcess(parent)
    , clock_(std::move(clock)) {
    setStandardInputFile(nullDevice());
    setStandardOutputFile(nullDevice());
    setStandardErrorFile(nullDevice());
    // A hang-up of the terminal that this program may run in is none of its business.
    setChildProcessModifier([] { ::setsid(); });
}

DetachedProcess::~DetachedProcess() {
    // Qt would end a program that still runs.
    setProcessState(NotRunning);
}

void DetachedProcess::handOver(const QString& program, const QStringList& arguments,
                               const QProcessEnvironment& environment,
                               std::function<void()> whenFailed, std::function<void()> whenDone) {
    const auto fail = std::make_shared<std::function<void()>>(std::move(whenFailed));
    connect(
        this, &QProcess::errorOccurred, this,
        [fail](ProcessError error) {
            if (error == FailedToStart)
                (*fail)();
        },
        // It may be told from within the start.
        Qt::QueuedConnection);
    connect(
        this, &QProcess::finished, this,
        [this, fail, done = std::move(whenDone), start = clock_()](int code, ExitStatus status) {
            const bool isPastTrial = clock_() - start >= trialTime;
            if ((status == NormalExit && code == 0) || isPastTrial)
                done();
            else
                (*fail)();
        });
    setProcessEnvironment(environment);
    start(program, arguments);
}

} // namespace tilewright
