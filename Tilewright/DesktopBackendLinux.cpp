#include "DesktopBackend.h"

#include <FreeDesktop/BusNameQuestion.h>
#include <FreeDesktop/BusPrecaution.h>
#include <FreeDesktop/ScopedVariable.h>
#include <FreeDesktop/WaylandSocket.h>
#include <Gnome/GnomeExtension.h>
#include <Gnome/GnomePlatform.h>
#include <Plasma/KWinCompanion.h>
#include <Plasma/KWinReturn.h>
#include <Plasma/PlasmaPlatform.h>
#include <Platform/QtMainLoop.h>
#include <Tilewright/DesktopChoice.h>
#include <Tilewright/Legacy.h>
#include <Tilewright/Succession.h>
#include <TilewrightUI/Symbols.h>
#include <Wayland/WaylandPlatform.h>
#include <X11/X11Platform.h>
#include <X11/X11ServerProbe.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QProcessEnvironment>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace tilewright {

namespace {

/// Windows are painted in memory. A desktop's theme may ask Qt whether there is OpenGL all the
/// same, as Plasma's does: for a no the graphics driver would be loaded, eight megabytes and five
/// threads.
class DrawingPrecaution {
    const ScopedVariable x11_{"QT_XCB_GL_INTEGRATION", "none"};
    const ScopedVariable wayland_{"QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "none"};
};

class LinuxBackend : public DesktopBackend {
public:
    [[nodiscard]] std::shared_ptr<void> precaution() const override {
        struct Precaution {
            DrawingPrecaution drawing;
            BusPrecaution bus;
        };
        return std::make_shared<Precaution>();
    }
    [[nodiscard]] std::unique_ptr<Platform> open() const final {
        // Window managers and bars take it from the windows, not from the program as macOS does.
        QGuiApplication::setWindowIcon(symbols::applicationIcon());
        return openPlatform();
    }
    [[nodiscard]] std::shared_ptr<void> beginLife() const override { return nullptr; }

protected:
    /// What is opened by open().
    [[nodiscard]] virtual std::unique_ptr<Platform> openPlatform() const = 0;
};

class X11Backend final : public LinuxBackend {
public:
    explicit X11Backend(X11Session session)
        : session_(session) {}

    [[nodiscard]] std::vector<std::string> qtArguments() const override {
        return {"-platform", "xcb"};
    }

protected:
    [[nodiscard]] std::unique_ptr<Platform> openPlatform() const override {
        auto platform = X11Platform::open(session_);
        if (!platform)
            std::fputs("tilewright: the X server is gone\n", stderr);
        return platform;
    }

private:
    X11Session session_;
};

template<class Desktop>
class WaylandBackend : public LinuxBackend {
public:
    [[nodiscard]] std::vector<std::string> qtArguments() const override {
        return {"-platform", "wayland"};
    }

protected:
    [[nodiscard]] std::unique_ptr<Platform> openPlatform() const override {
        return std::make_unique<Desktop>();
    }
};

/// KWin may end and come back within a session.
class PlasmaBackend final : public WaylandBackend<PlasmaPlatform> {
public:
    PlasmaBackend(std::string name, const Legacy& former)
        : succession_(std::make_unique<Succession>(std::move(name), former)) {}

    [[nodiscard]] std::shared_ptr<void> precaution() const override {
        struct Precaution {
            std::shared_ptr<void> asEverywhere;
            /// Plasma 6 has Qt connect to the next KWin by itself, with whatever was there in the
            /// midst of what it did. To begin anew, as with every other version, is the surer way.
            ScopedVariable reconnecting{"QT_WAYLAND_RECONNECT", std::nullopt};
            std::shared_ptr<void> start = Succession::throughStart();

            explicit Precaution(std::shared_ptr<void> everywhere)
                : asEverywhere(std::move(everywhere)) {}
        };
        return std::make_shared<Precaution>(WaylandBackend::precaution());
    }
    [[nodiscard]] std::shared_ptr<void> beginLife() const override { return succession_->begin(); }

private:
    std::unique_ptr<Succession> succession_;
};

/// Waits for it, for as long as there is hope.
bool isKWinBack(std::span<char*> arguments) {
    int count = static_cast<int>(arguments.size());
    const QCoreApplication application(count, arguments.data());
    QtMainLoop loop;
    MessageBus bus(loop, MessageBus::Kind::session);
    const KWinReturn kwin(loop, bus, waylandSocketPath(QProcessEnvironment::systemEnvironment()));
    QObject::connect(&kwin, &KWinReturn::returned, [] { QCoreApplication::exit(EXIT_SUCCESS); });
    QObject::connect(&kwin, &KWinReturn::missing, [] { QCoreApplication::exit(EXIT_FAILURE); });
    return QCoreApplication::exec() == EXIT_SUCCESS;
}

SessionFacts::XServer factOf(X11Server server) {
    switch (server) {
    case X11Server::independent:
        return SessionFacts::XServer::independent;
    case X11Server::besideWayland:
        return SessionFacts::XServer::besideWayland;
    case X11Server::none:
        break;
    }
    return SessionFacts::XServer::none;
}

/// Whether Qt finds its plug-in for Wayland compositors, without which it would end the process.
bool hasQtWaylandPlugin(const QProcessEnvironment& environment) {
    QStringList folders = environment.value(QStringLiteral("QT_PLUGIN_PATH"))
                              .split(QDir::listSeparator(), Qt::SkipEmptyParts);
    folders.append(QLibraryInfo::path(QLibraryInfo::PluginsPath));
    return std::any_of(folders.begin(), folders.end(), [](const QString& folder) {
        return !QDir(folder + QStringLiteral("/platforms"))
                    .entryList({QStringLiteral("libqwayland*.so")}, QDir::Files)
                    .isEmpty();
    });
}

} // namespace

std::unique_ptr<DesktopBackend> DesktopBackend::find(std::span<char*> arguments) {
    std::string name = arguments.empty() ? "tilewright" : arguments[0];
    // Whoever looked around again might miss a KWin that goes on ending and coming back.
    if (const std::optional<Legacy> former = Legacy::in(arguments))
        return isKWinBack(arguments) ? std::make_unique<PlasmaBackend>(std::move(name), *former)
                                     : nullptr;
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    SessionFacts facts;
    facts.xServer = factOf(probeX11Server());
    facts.hasWaylandCompositor = isWaylandCompositorThere(environment);
    facts.isCalledWayland =
        environment.value(QStringLiteral("XDG_SESSION_TYPE")) == QStringLiteral("wayland");
    // Asked only where the answer matters.
    if (facts.hasWaylandCompositor) {
        const QString gnomeShell = GnomeExtension::shellName();
        const QString kwin = KWinCompanion::compositorName();
        const QString found = firstOnSessionBus({gnomeShell, kwin});
        facts.hasGnomeShell = found == gnomeShell;
        facts.hasKWin = found == kwin;
    }
    facts.hasQtWayland = hasQtWaylandPlugin(environment);
    switch (chooseDesktop(facts)) {
    case DesktopChoice::x11:
        return std::make_unique<X11Backend>(X11Session::ofItsOwn);
    case DesktopChoice::x11BesideWayland:
        return std::make_unique<X11Backend>(X11Session::besideWayland);
    case DesktopChoice::wayland:
        return std::make_unique<WaylandBackend<WaylandPlatform>>();
    case DesktopChoice::gnome:
        return std::make_unique<WaylandBackend<GnomePlatform>>();
    case DesktopChoice::plasma:
        return std::make_unique<PlasmaBackend>(std::move(name), Legacy());
    case DesktopChoice::none:
        break;
    }
    const QByteArray message = QFile::encodeName(noDesktopMessage(
        environment.value(QStringLiteral("DISPLAY")), waylandSocketPath(environment)));
    std::fprintf(stderr, "tilewright: %s\n", message.constData());
    return nullptr;
}

} // namespace tilewright
