#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tilewright::testing {

/// A socket that listens, as a compositor's or a bus's does, and by itself answers nobody. It stays
/// in its folder when it listens no more, as that of a process that was killed.
class ListeningSocket {
public:
    explicit ListeningSocket(const QString& path)
        : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path);
        EXPECT_LT(static_cast<std::size_t>(name.size()), sizeof address.sun_path);
        std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        EXPECT_EQ(::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        EXPECT_EQ(::listen(descriptor_, 1), 0);
    }
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;
    ~ListeningSocket() { ::close(descriptor_); }

    /// The next one who has come, without waiting: a descriptor that the caller has to close, and
    /// that does not block; negative where nobody has.
    [[nodiscard]] int accept() const {
        return ::accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    }

private:
    int descriptor_;
};

/// Whether anybody listens at a path. The file is there a moment before that, and whoever comes in
/// between is turned away.
[[nodiscard]] inline bool isListenedAt(const QString& path) {
    QFile sockets(QStringLiteral("/proc/net/unix"));
    if (!sockets.open(QIODevice::ReadOnly))
        return false;
    const QByteArray name = ' ' + QFile::encodeName(path);
    const QList<QByteArray> lines = sockets.readAll().split('\n');
    return std::any_of(lines.begin(), lines.end(), [&](const QByteArray& line) {
        constexpr const char* takesConnections = " 00010000 ";
        return line.endsWith(name) && line.contains(takesConnections);
    });
}

/// What a program that is started with this in its environment takes for a Wayland session beside
/// an X server that does not say whose it is.
class PretendedWaylandSession {
public:
    [[nodiscard]] std::map<QString, QString> environment() const {
        return {{QStringLiteral("XDG_SESSION_TYPE"), QStringLiteral("wayland")},
                {QStringLiteral("WAYLAND_DISPLAY"), path()}};
    }

private:
    [[nodiscard]] QString path() const { return folder_.filePath(QStringLiteral("wayland")); }

    QTemporaryDir folder_;
    ListeningSocket compositor_{path()};
};

} // namespace tilewright::testing
