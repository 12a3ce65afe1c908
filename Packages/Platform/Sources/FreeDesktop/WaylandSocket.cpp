#include "WaylandSocket.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace tilewright {

QString waylandSocketPath(const QProcessEnvironment& environment) {
    QString name =
        environment.value(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-0"));
    if (name.startsWith(u'/'))
        return name;
    const QString folder = environment.value(QStringLiteral("XDG_RUNTIME_DIR"));
    return folder.isEmpty() || name.isEmpty() ? QString() : folder + u'/' + name;
}

WaylandSocketResult connectToWaylandSocket(const QString& socketPath) {
    using Outcome = WaylandSocketResult::Outcome;
    const QByteArray path = QFile::encodeName(socketPath);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        return {Outcome::nobody, {}};
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    FileDescriptor descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!descriptor.isOpen())
        return {Outcome::nobody, {}};
    if (::connect(descriptor.number(), reinterpret_cast<const sockaddr*>(&address),
                  sizeof address) == 0)
        return {Outcome::connected, std::move(descriptor)};
    return {errno == EAGAIN ? Outcome::crowded : Outcome::nobody, {}};
}

bool isWaylandCompositorThere(const QProcessEnvironment& environment) {
    return !environment.value(QStringLiteral("WAYLAND_SOCKET")).isEmpty() ||
           connectToWaylandSocket(waylandSocketPath(environment)).outcome !=
               WaylandSocketResult::Outcome::nobody;
}

} // namespace tilewright
