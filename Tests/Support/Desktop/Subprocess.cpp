#include "Subprocess.h"

#include "Waiting.h"

#include <QProcess>
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace tilewright::testing {

namespace {

void becomeOwnSession() {
    ::setsid();
    // The tests may themselves have been started so that a signal is nothing to them.
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        ::signal(number, SIG_DFL);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

} // namespace

Subprocess::Subprocess() = default;
Subprocess::Subprocess(Subprocess&&) noexcept = default;

Subprocess& Subprocess::operator=(Subprocess&& other) noexcept {
    if (this != &other) {
        stop();
        process_ = std::move(other.process_);
        group_ = std::exchange(other.group_, 0);
    }
    return *this;
}

Subprocess::~Subprocess() {
    stop();
}

bool Subprocess::start(const QString& program, const QStringList& arguments,
                       const QProcessEnvironment& environment, const QString& logFile) {
    stop();
    process_ = std::make_unique<QProcess>();
    process_->setProcessEnvironment(environment);
    process_->setChildProcessModifier(becomeOwnSession);
    const QString sink = logFile.isEmpty() ? QProcess::nullDevice() : logFile;
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardOutputFile(sink, QIODevice::Append);
    process_->setStandardErrorFile(sink, QIODevice::Append);
    process_->start(program, arguments);
    if (!process_->waitForStarted(20'000))
        return false;
    group_ = static_cast<pid_t>(process_->processId());
    return true;
}

bool Subprocess::isRunning() const {
    return process_ && process_->state() != QProcess::NotRunning;
}

pid_t Subprocess::pid() const {
    return isRunning() ? group_ : 0;
}

void Subprocess::signal(int number) const {
    if (isRunning())
        ::kill(group_, number);
}

bool Subprocess::waitForEnd(int milliseconds) {
    return waitUntil([this] { return !isRunning(); }, std::chrono::milliseconds(milliseconds));
}

int Subprocess::exitCode() const {
    return process_ && process_->exitStatus() == QProcess::NormalExit ? process_->exitCode() : -1;
}

void Subprocess::stop() {
    if (group_ > 0) {
        // A stopped process has to run again to die of anything but SIGKILL; SIGKILL needs no help.
        ::kill(-group_, SIGKILL);
        group_ = 0;
    }
    if (process_ && process_->state() != QProcess::NotRunning) {
        process_->kill();
        process_->waitForFinished(20'000);
    }
}

QString outputOf(const QString& program, const QStringList& arguments,
                 const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments, QIODevice::ReadOnly);
    process.waitForFinished(20'000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace tilewright::testing
