#include "TilewrightApp.h"

#include "MenuBarView.h"
#include "SettingsView.h"

#include <Platform/Platform.h>
#include <TilewrightUI/Look.h>

#include <QApplication>
#include <QSessionManager>
#include <cstdlib>

namespace tilewright {

namespace {

/// Set while the event loop runs. Qt ends the process from within it when the display
/// server is gone.
bool isRunning = false;

/// Destroying what is left would only speak to a server that is gone. The operating system releases
/// all that this process holds, and every file is whole at all times.
void endWithoutDisplay() {
    if (isRunning)
        std::_Exit(EXIT_FAILURE);
}

} // namespace

TilewrightApp::TilewrightApp()
    : menuBarExtra_([this] { return std::make_unique<MenuBarView>([this] { openSettings(); }); })
    , settings_([] { return std::make_unique<SettingsView>(); }) {
    QApplication::setQuitOnLastWindowClosed(false);
    connect(&signals_, &TerminationSignals::terminationRequested, this,
            [] { QCoreApplication::exit(EXIT_SUCCESS); });
    const Appearance& appearance = Platform::current().appearance;
    const auto honourMotionWish = [&appearance] {
        look::setPrefersReducedMotion(appearance.prefersReducedMotion());
    };
    connect(&appearance, &Appearance::prefersReducedMotionChanged, this, honourMotionWish);
    honourMotionWish();
    const auto honourDarkWish = [&appearance] { look::applyPalette(appearance.prefersDark()); };
    connect(&appearance, &Appearance::prefersDarkChanged, this, honourDarkWish);
    honourDarkWish();
    connect(qApp, &QGuiApplication::commitDataRequest, this, [](QSessionManager& manager) {
        // Starting at login is the user's choice, made by other means.
        manager.setRestartHint(QSessionManager::RestartNever);
    });
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        menuBarExtra_.panel().close();
        delegate_.applicationWillTerminate();
    });
}

TilewrightApp::~TilewrightApp() = default;

int TilewrightApp::run() {
    static const bool isRegistered = std::atexit(endWithoutDisplay) == 0;
    static_cast<void>(isRegistered);
    Platform::current().mainLoop.post([this] { delegate_.applicationDidFinishLaunching(); });
    // The first opening of the panel should not wait for them.
    Platform::current().mainLoop.post(look::loadFonts);
    isRunning = true;
    const int exitCode = QApplication::exec();
    isRunning = false;
    return exitCode;
}

void TilewrightApp::openSettings() {
    menuBarExtra_.panel().close();
    settings_.open();
}

} // namespace tilewright
