#include "WaylandSocket.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tilewright {

QString waylandSocketPath(const QProcessEnvironment& environment) {
    QString name =
        environment.value(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-0"));
    if (name.startsWith(u'/'))
        return name;
    const QString folder = environment.value(QStringLiteral("XDG_RUNTIME_DIR"));
    return folder.isEmpty() || name.isEmpty() ? QString() : folder + u'/' + name;
}

bool isWaylandCompositorThere(const QProcessEnvironment& environment) {
    if (!environment.value(QStringLiteral("WAYLAND_SOCKET")).isEmpty())
        return true;
    const QByteArray path = QFile::encodeName(waylandSocketPath(environment));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0)
        return false;
    const bool isThere =
        ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
        // Full of others who wait for their turn.
        errno == EAGAIN;
    ::close(descriptor);
    return isThere;
}

} // namespace tilewright
