// Saves of which the system fails one call: store_fault_soak [saves]. Every system call that a save
// makes, whatever it is for, fails in its turn with each of ten errors; the file has to hold the
// document before or the one after, and the next start has to leave nothing else. Prints what it
// found.

#include "SampleLayout.h"

#include <WindowManager/LayoutCoding.h>
#include <WindowManager/LayoutStore.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tilewright;

namespace {

constexpr std::array errors{EIO,   ENOSPC, EDQUOT, EACCES, EPERM,
                            EROFS, EMFILE, ENOMEM, EINTR,  EBUSY};

/// What became of one save.
struct Save {
    /// How many system calls it made.
    int calls = 0;
    /// Whether the process ended instead of going on.
    bool isDead = false;
};

/// In the process that saves: stops before the save and after it.
[[noreturn]] void saveBetweenStops(const QString& path, int number) {
    LayoutStore store(path);
    const ZoneLayout layout = sampleLayout(number);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    kill(getpid(), SIGSTOP);
    if (store.customLayouts().empty())
        store.addCustomLayout(layout);
    else
        store.updateCustomLayout(layout);
    kill(getpid(), SIGSTOP);
    _exit(0);
}

/// Has the system call that is about to begin do nothing.
void skipCall(pid_t process) {
    user_regs_struct registers{};
    ptrace(PTRACE_GETREGS, process, nullptr, &registers);
    registers.orig_rax = static_cast<unsigned long long>(-1);
    ptrace(PTRACE_SETREGS, process, nullptr, &registers);
}

/// Has the system call that is about to return answer an error.
void answer(pid_t process, int error) {
    user_regs_struct registers{};
    ptrace(PTRACE_GETREGS, process, nullptr, &registers);
    registers.rax = static_cast<unsigned long long>(-static_cast<long long>(error));
    ptrace(PTRACE_SETREGS, process, nullptr, &registers);
}

/// Saves a document while one call, counted from 1, fails with an error. None fails at 0.
Save save(const QString& path, int number, int failingCall, int error) {
    const pid_t process = fork();
    if (process == 0)
        saveBetweenStops(path, number);
    Save result;
    int status = 0;
    waitpid(process, &status, 0);
    ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    bool isInCall = false;
    long signalToPass = 0;
    for (;;) {
        ptrace(PTRACE_SYSCALL, process, nullptr, signalToPass);
        signalToPass = 0;
        waitpid(process, &status, 0);
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            result.isDead = true;
            return result;
        }
        const int stop = WSTOPSIG(status);
        constexpr int stopAtCall = SIGTRAP | 0x80;
        if (stop == SIGSTOP) {
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
            // Without those that the stop itself takes.
            result.calls -= 2;
            return result;
        }
        if (stop != stopAtCall) {
            signalToPass = stop;
            continue;
        }
        isInCall = !isInCall;
        if (isInCall && ++result.calls == failingCall)
            skipCall(process);
        else if (!isInCall && result.calls == failingCall)
            answer(process, error);
    }
}

/// The number of the document in the file; -1 where it is not a whole one.
int documentIn(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const auto found = LayoutCoding::decodePersisted(file.readAll());
    if (!found || found->customLayouts.size() != 1)
        return -1;
    const int number = found->customLayouts.front().name.toInt();
    return found->customLayouts.front() == sampleLayout(number) ? number : -1;
}

int filesBeside(const QString& path) {
    const QDir folder = QFileInfo(path).dir();
    return static_cast<int>(folder.entryList(QDir::Files | QDir::Hidden).size()) - 1;
}

/// Begins as some minutes later.
void startLater(const QString& path) {
    const QDir folder = QFileInfo(path).dir();
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadWrite))
            file.setFileTime(QDateTime::currentDateTime().addSecs(-120),
                             QFileDevice::FileModificationTime);
    }
    (void)LayoutStore(path);
}

} // namespace

int main(int argc, char** argv) {
    const int saves = argc > 1 ? QByteArray(argv[1]).toInt() : 10'000;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("layouts.json"));
    if (save(path, 1, 0, 0).isDead || documentIn(path) != 1)
        return 2;
    int before = 1;
    const int calls = save(path, before, 0, 0).calls;
    int old = 0;
    int ended = 0;
    int leftBehind = 0;
    for (int i = 0; i < saves; ++i) {
        const int call = i % calls + 1;
        const int error = errors[static_cast<std::size_t>(i / calls) % errors.size()];
        const Save done = save(path, before + 1, call, error);
        const int found = documentIn(path);
        ended += done.isDead ? 1 : 0;
        old += found == before ? 1 : 0;
        if (filesBeside(path) > 0) {
            ++leftBehind;
            startLater(path);
        }
        if ((found != before && found != before + 1) || filesBeside(path) > 0) {
            std::printf("FAILED: call %d of %d with error %d: %s\n", call, calls, error,
                        found < 0 ? "the file is not one whole document" : "a file is left");
            return 1;
        }
        before = found;
    }
    std::printf(
        "%d saves, in each one of %d calls failed, in turn, with one of %zu errors: %d times "
        "the old document, %d times the new one; %d processes ended; %d times a file was left "
        "behind, and none of them after the next start\n",
        saves, calls, errors.size(), old, saves - old, ended, leftBehind);
    return 0;
}
