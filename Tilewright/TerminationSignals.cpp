#include "TerminationSignals.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tilewright {

namespace {

/// The end that the signal handler writes to; nothing but async-signal-safe calls may be made
/// there.
volatile sig_atomic_t writingEnd = -1;
volatile sig_atomic_t hasSignalCome = 0;

extern "C" void passOnTerminationSignal(int /*signal*/) {
    const int formerError = errno;
    hasSignalCome = 1;
    const char byte = 1;
    // A full socket already holds the news.
    [[maybe_unused]] const ssize_t written = write(writingEnd, &byte, sizeof byte);
    errno = formerError;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent) {
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets_.data()) != 0)
        return;
    hasSignalCome = 0;
    for (const int socket : sockets_) {
        fcntl(socket, F_SETFD, FD_CLOEXEC);
        fcntl(socket, F_SETFL, O_NONBLOCK);
    }
    writingEnd = sockets_[0];
    notifier_ = std::make_unique<QSocketNotifier>(sockets_[1], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes{};
        [[maybe_unused]] const ssize_t count = read(sockets_[1], bytes.data(), bytes.size());
        Q_EMIT terminationRequested();
    });
    struct sigaction action = {};
    action.sa_handler = passOnTerminationSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < signals_.size(); ++i) {
        sigaction(signals_[i], nullptr, &formerActions_[i]);
        // Whoever started this program so that a signal is nothing to it, as nohup does, means it.
        if (formerActions_[i].sa_handler != SIG_IGN)
            sigaction(signals_[i], &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals() {
    if (!notifier_)
        return;
    for (std::size_t i = 0; i < signals_.size(); ++i)
        sigaction(signals_[i], &formerActions_[i], nullptr);
    notifier_.reset();
    writingEnd = -1;
    for (const int socket : sockets_)
        close(socket);
}

bool TerminationSignals::hasCome() {
    return hasSignalCome != 0;
}

} // namespace tilewright
