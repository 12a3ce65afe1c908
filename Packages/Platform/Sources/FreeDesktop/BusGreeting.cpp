#include "BusGreeting.h"

#include <QList>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tilewright {

namespace {

/// The path in one address; one that begins with a zero byte is no file's. None where the address
/// is of another kind.
QByteArray pathIn(const QByteArray& address) {
    const QByteArray transport = QByteArrayLiteral("unix:");
    if (!address.startsWith(transport))
        return {};
    const QList<QByteArray> entries = address.mid(transport.size()).split(',');
    for (const QByteArray& entry : entries) {
        const qsizetype equals = entry.indexOf('=');
        QByteArray value = QByteArray::fromPercentEncoding(entry.mid(equals + 1));
        if (entry.left(equals) == "path")
            return value;
        if (entry.left(equals) == "abstract")
            return '\0' + value;
    }
    return {};
}

} // namespace

QList<QByteArray> BusGreeting::socketPaths(const QByteArray& addresses) {
    QList<QByteArray> paths;
    const QList<QByteArray> parts = addresses.split(';');
    for (const QByteArray& part : parts) {
        const QByteArray path = pathIn(part.trimmed());
        if (!path.isEmpty())
            paths.append(path);
    }
    return paths;
}

BusGreeting::BusGreeting(const QByteArray& addresses) {
    const QList<QByteArray> paths = socketPaths(addresses);
    if (paths.isEmpty())
        state_ = State::answered;
    for (const QByteArray& path : paths) {
        greet(path);
        if (state_ != State::absent)
            return;
    }
}

BusGreeting::~BusGreeting() {
    close();
}

void BusGreeting::greet(const QByteArray& path) {
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof place.sun_path))
        return;
    std::memcpy(place.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    // The name of a file ends with a zero byte; a name that is none has exactly its length.
    const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(path.size()) +
                        (path.startsWith('\0') ? 0 : 1);
    socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const auto* address = static_cast<const sockaddr*>(static_cast<const void*>(&place));
    const QByteArray user = QByteArray::number(geteuid()).toHex();
    const QByteArray word = '\0' + QByteArrayLiteral("AUTH EXTERNAL ") + user + "\r\n";
    if (socket_ < 0 || connect(socket_, address, static_cast<socklen_t>(length)) != 0 ||
        send(socket_, word.constData(), static_cast<std::size_t>(word.size()), MSG_NOSIGNAL) !=
            word.size()) {
        close();
        return;
    }
    state_ = State::unanswered;
}

BusGreeting::State BusGreeting::wait(std::chrono::milliseconds bound) {
    if (state_ != State::unanswered)
        return state_;
    pollfd readable{socket_, POLLIN, 0};
    if (poll(&readable, 1, static_cast<int>(bound.count())) <= 0)
        return state_;
    std::array<char, 64> reply{};
    const ssize_t count = recv(socket_, reply.data(), reply.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return state_;
    close();
    state_ = count > 0 ? State::answered : State::absent;
    return state_;
}

void BusGreeting::close() {
    if (socket_ >= 0)
        ::close(socket_);
    socket_ = -1;
}

} // namespace tilewright
