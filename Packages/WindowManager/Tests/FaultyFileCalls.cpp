#include "FaultyFileCalls.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tilewright::FaultyFileCalls {

namespace {

bool isArmed = false;
Fault armedFault = Fault::none;
int armedNumber = 0;
int callCount = 0;
int readCount = 0;
std::vector<std::string> calls; // NOLINT: what an armed process has called

bool isDue() {
    const bool lasts = armedFault == Fault::failFromThereOn || armedFault == Fault::failHalfWay;
    return isArmed && (callCount == armedNumber || (lasts && callCount > armedNumber));
}

/// Makes a system call unless the armed fault is due instead.
template<class... Arguments>
long call(const char* name, long number, Arguments... arguments) {
    if (!isArmed)
        return syscall(number, arguments...);
    ++callCount;
    calls.emplace_back(name);
    const bool due = isDue();
    if (due && armedFault == Fault::killBefore)
        raise(SIGKILL);
    if (due && armedFault != Fault::killAfter) {
        errno = ENOSPC;
        return -1;
    }
    const long result = syscall(number, arguments...);
    const int error = errno;
    if (due)
        raise(SIGKILL);
    errno = error;
    return result;
}

} // namespace

void arm(Fault fault, int number) {
    armedFault = fault;
    armedNumber = number;
    callCount = 0;
    readCount = 0;
    calls.clear();
    isArmed = true;
}

std::vector<std::string> disarm() {
    isArmed = false;
    return calls;
}

} // namespace tilewright::FaultyFileCalls

using namespace tilewright::FaultyFileCalls;

// The system's own names: found before the C library's by every library of this process.
#pragma GCC visibility push(default)
extern "C" {

ssize_t write(int file, const void* bytes, size_t count) {
    if (isArmed && armedFault == Fault::failHalfWay && callCount + 1 == armedNumber && count > 1) {
        ++callCount;
        calls.emplace_back("write");
        return syscall(SYS_write, file, bytes, count / 2);
    }
    return call("write", SYS_write, file, bytes, count);
}

ssize_t read(int file, void* bytes, size_t count) {
    if (isArmed && armedFault == Fault::failReadHalfWay && ++readCount > 1) {
        errno = EIO;
        return -1;
    }
    const bool isHalf = isArmed && armedFault == Fault::failReadHalfWay;
    return syscall(SYS_read, file, bytes, isHalf ? count / 2 : count);
}

int open64(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if ((flags & O_ACCMODE) == O_RDONLY)
        return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (isArmed && armedFault == Fault::refuseNewFiles && mode != 0) {
        errno = EACCES;
        return -1;
    }
    return static_cast<int>(call("open", SYS_openat, AT_FDCWD, path, flags, mode));
}

int fchmod(int file, mode_t mode) noexcept {
    return static_cast<int>(call("chmod", SYS_fchmod, file, mode));
}

int fsync(int file) {
    struct stat status {};
    const bool isFolder = fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
    return static_cast<int>(call(isFolder ? "sync folder" : "sync", SYS_fsync, file));
}

int ftruncate64(int file, off64_t length) noexcept {
    return static_cast<int>(call("truncate", SYS_ftruncate, file, length));
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    return static_cast<int>(call("link", SYS_linkat, fromFolder, from, toFolder, to, flags));
}

int link(const char* from, const char* to) noexcept {
    return static_cast<int>(call("link", SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int rename(const char* from, const char* to) noexcept {
    return static_cast<int>(call("rename", SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
    return static_cast<int>(call("rename", SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

} // extern "C"
#pragma GCC visibility pop
