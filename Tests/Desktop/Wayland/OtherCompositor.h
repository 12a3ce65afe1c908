#pragma once

#include "LayerSession.h"
#include "VirtualInput.h"
#include "WaylandSession.h"

#include <AccessibilityReader.h>
#include <XInspector.h>

#include <functional>

namespace tilewright::testing {

/// A session of a compositor that the program has no companion in.
struct OtherSession {
    const char* name;
    std::function<std::unique_ptr<LayerSession>(LayerSession::Beside)> start;
    LayerSession::Beside beside;
    /// In the compositor's units.
    QSize display;

    friend std::ostream& operator<<(std::ostream& out, const OtherSession& session) {
        return out << session.name;
    }
    [[nodiscard]] static std::string nameOf(const ::testing::TestParamInfo<OtherSession>& session) {
        return session.param.name;
    }
};

/// The sessions of one compositor, whose display has this size: alone and beside an X server.
[[nodiscard]] inline auto
sessionsOf(const std::function<std::unique_ptr<LayerSession>(LayerSession::Beside)>& start,
           QSize display) {
    using enum LayerSession::Beside;
    return ::testing::Values(OtherSession{"Alone", start, nothing, display},
                             OtherSession{"WithAnXServer", start, xServer, display});
}

/// The real program in such a session: used by mouse and keyboard, seen by a program for the blind
/// and, on the X server beside it, by another client of that.
class OtherCompositor : public WaylandSession, public ::testing::WithParamInterface<OtherSession> {
protected:
    void SetUp() override;

    [[nodiscard]] bool isOnX() const { return GetParam().beside == LayerSession::Beside::xServer; }
    /// Starts the program and waits until it is the one instance.
    void runProgram();
    /// Opens the panel by a second start.
    void openPanel();
    [[nodiscard]] bool isPanelOpen();
    /// Presses the keep-awake switch in the open panel.
    void pressSwitch();
    /// Opens the settings from the panel, at the tab with this title.
    void openSettings(const QString& tab);
    /// Presses what has that role and name in a window with the focus, by the keyboard.
    void press(const QString& role, const QString& name);
    /// Whether a window of the program shows that.
    [[nodiscard]] bool shows(const QString& role, const QString& name);

    std::unique_ptr<LayerSession> session;
    std::unique_ptr<VirtualInput> input;

private:
    /// The open panel on the X server.
    [[nodiscard]] std::optional<QRect> panelOnX() const;
    [[nodiscard]] std::optional<AccessibleNode> focused();
    /// Moves the focus by a key until it is where that holds.
    void moveFocus(KernelKey key, const std::function<bool(const AccessibleNode&)>& isThere);
    [[nodiscard]] std::string whatIsShown();

    std::unique_ptr<AccessibilityReader> reader_;
    std::unique_ptr<XInspector> look_;
};

} // namespace tilewright::testing
