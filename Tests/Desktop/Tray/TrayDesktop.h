#pragma once

#include <DesktopSession.h>

#include <map>
#include <optional>

namespace tilewright::testing {

/// A desktop for a bar of the tests' choice, on which the program shows its item.
/// Coordinates are the X screen's pixels.
class TrayDesktop {
public:
    /// Under openbox, without a compositor, so that the panel's window is the panel.
    explicit TrayDesktop(std::unique_ptr<XServer> server = XServer::virtualScreen());

    /// Starts the program as on a desktop whose points are this many pixels.
    Subprocess& startProgram(double scale = 1);
    /// Waits until another start would find the program, which then knows of trays that come.
    void waitUntilFound();
    /// Starts the program once more, which opens the panel of the first by the pointer.
    void startAgain();

    /// Where the item is on the bar; none while it is not.
    [[nodiscard]] std::optional<QRect> item();
    /// Waits for the item. Empty, and a failed test, without.
    [[nodiscard]] QRect waitForItem();
    /// The open panel; none while it is closed.
    [[nodiscard]] std::optional<QRect> panel();
    /// Waits for the panel. Empty, and a failed test, without.
    [[nodiscard]] QRect waitForPanel();

    [[nodiscard]] DesktopSession& session() { return session_; }
    [[nodiscard]] XInspector& inspector() { return session_.inspector(); }
    [[nodiscard]] XInputInjector& input() { return session_.input(); }

private:
    [[nodiscard]] std::map<QString, QString> environment() const;

    DesktopSession session_;
    Subprocess* program_ = nullptr;
    double scale_ = 1;
};

} // namespace tilewright::testing
