#pragma once

#include "AppDelegate.h"
#include "MenuBarExtra.h"
#include "SettingsWindow.h"
#include "TerminationSignals.h"

namespace tilewright {

/// The application: its delegate and its two scenes, the menu-bar item with its panel and the
/// settings window. Needs Qt's application object and an installed platform, and has to
/// end before either. Main thread only.
class TilewrightApp final : public QObject {
    Q_OBJECT

public:
    TilewrightApp();
    ~TilewrightApp() override;

    /// Runs the application until it is asked to terminate. Answers the process's exit code.
    [[nodiscard]] int run();

    [[nodiscard]] MenuBarExtra& menuBarExtra() { return menuBarExtra_; }
    [[nodiscard]] SettingsScene& settings() { return settings_; }

private:
    void openSettings();

    AppDelegate delegate_;
    MenuBarExtra menuBarExtra_;
    SettingsScene settings_;
    TerminationSignals signals_;
};

} // namespace tilewright
