#include "XServer.h"

#include "Waiting.h"

#include <QFile>
#include <cstdio>

namespace tilewright::testing {

namespace {

constexpr const char* twoOutputsConfiguration = R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
    Option "DontVTSwitch" "true"
EndSection
Section "Device"
    Identifier "Card"
    Driver "dummy"
    VideoRam 256000
    Option "Monitor-DUMMY0" "Left"
    Option "Monitor-DUMMY1" "Right"
EndSection
Section "Monitor"
    Identifier "Left"
    HorizSync 5.0 - 1000.0
    VertRefresh 5.0 - 200.0
    Modeline "1920x1080" 173.00 1920 2048 2248 2576 1080 1083 1088 1120
    Option "PreferredMode" "1920x1080"
    Option "Primary" "true"
EndSection
Section "Monitor"
    Identifier "Right"
    HorizSync 5.0 - 1000.0
    VertRefresh 5.0 - 200.0
    Modeline "1920x1080" 173.00 1920 2048 2248 2576 1080 1083 1088 1120
    Option "PreferredMode" "1920x1080"
    Option "RightOf" "DUMMY0"
    Option "Enable" "true"
EndSection
Section "Screen"
    Identifier "Screen"
    Device "Card"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Virtual 7680 4320
    EndSubSection
EndSection
)";

} // namespace

bool XServer::start(const QString& program, const QStringList& arguments,
                    const QProcessEnvironment& environment) {
    // The server writes the number it chose to a descriptor; a shell is what can hand it one.
    const QString numberFile = folder_.filePath(QStringLiteral("display"));
    const QStringList shell{QStringLiteral("-c"),
                            QStringLiteral("exec \"$@\" -displayfd 7 7>\"$0\""), numberFile,
                            program};
    if (!process_.start(QStringLiteral("/bin/sh"), shell + arguments, environment,
                        folder_.filePath(QStringLiteral("server.log"))))
        return false;
    const auto readNumber = [&] {
        QFile file(numberFile);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArray text = file.readAll();
        if (!text.endsWith('\n'))
            return false;
        display_ = u':' + QString::fromLatin1(text.trimmed());
        return true;
    };
    const bool isUp =
        waitUntil([&] { return readNumber() || !process_.isRunning(); }) && process_.isRunning();
    if (!isUp) {
        QFile log(folder_.filePath(QStringLiteral("server.log")));
        if (log.open(QIODevice::ReadOnly))
            std::fprintf(stderr, "%s\n", log.readAll().constData());
    }
    return isUp;
}

std::unique_ptr<XServer> XServer::virtualScreen(QSize size, const QStringList& more) {
    std::unique_ptr<XServer> server(new XServer);
    const QStringList arguments{QStringLiteral("-screen"),
                                QStringLiteral("0"),
                                QStringLiteral("%1x%2x24").arg(size.width()).arg(size.height()),
                                QStringLiteral("-nolisten"),
                                QStringLiteral("tcp"),
                                QStringLiteral("-ac"),
                                QStringLiteral("-noreset"),
                                QStringLiteral("+extension"),
                                QStringLiteral("RANDR")};
    return server->start(QStringLiteral("Xvfb"), arguments + more) ? std::move(server) : nullptr;
}

std::unique_ptr<XServer> XServer::twoOutputs() {
    std::unique_ptr<XServer> server(new XServer);
    const QString configuration = server->folder_.filePath(QStringLiteral("xorg.conf"));
    QFile file(configuration);
    if (!file.open(QIODevice::WriteOnly))
        return nullptr;
    file.write(twoOutputsConfiguration);
    file.close();
    const QStringList arguments{
        QStringLiteral("-config"),     configuration,
        QStringLiteral("-logfile"),    server->folder_.filePath(QStringLiteral("Xorg.log")),
        QStringLiteral("-noreset"),    QStringLiteral("-ac"),
        QStringLiteral("-nolisten"),   QStringLiteral("tcp"),
        QStringLiteral("-novtswitch"), QStringLiteral("-sharevts")};
    return server->start(QStringLiteral("Xorg"), arguments) ? std::move(server) : nullptr;
}

std::unique_ptr<XServer> XServer::rotatableWithin(const XServer& host, QSize size) {
    std::unique_ptr<XServer> server(new XServer);
    const QStringList arguments{
        QStringLiteral("-screen"),   QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
        QStringLiteral("-ac"),       QStringLiteral("-noreset"),
        QStringLiteral("-nolisten"), QStringLiteral("tcp")};
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), host.display());
    return server->start(QStringLiteral("Xephyr"), arguments, environment) ? std::move(server)
                                                                           : nullptr;
}

} // namespace tilewright::testing
