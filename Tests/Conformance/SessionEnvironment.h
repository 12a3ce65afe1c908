#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {

inline const QString compositorsSocket = QStringLiteral("wayland-7");

/// The environment of a program that is started in the session.
struct SessionEnvironment {
    explicit SessionEnvironment(const QByteArray& bus) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        qputenv("WAYLAND_DISPLAY", compositorsSocket.toLatin1());
        qputenv("HOME", home.path().toLocal8Bit());
        for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qunsetenv(variable);
        EXPECT_TRUE(QDir().mkpath(runtimeFolder()));
        QFile::setPermissions(runtimeFolder(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", runtimeFolder().toLocal8Bit());
    }

    [[nodiscard]] QString runtimeFolder() const { return home.filePath(QStringLiteral("run")); }

    QTemporaryDir home;
};

} // namespace tilewright::testing
