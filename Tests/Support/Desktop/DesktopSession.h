#pragma once

#include "PrivateHome.h"
#include "XInputInjector.h"
#include "XInspector.h"
#include "XServer.h"

#include <map>
#include <optional>

namespace tilewright::testing {

/// The window managers that tests know how to start.
enum class WindowManagerKind {
    openbox,
    xfwm4,
    kwin,
    marco,
    metacity,
    mutter,
    muffin,
    icewm,
    fluxbox,
    jwm,
    i3,
    awesome,
    pekwm,
    wmaker
};

/// Its name, as in a test's name.
[[nodiscard]] const char* name(WindowManagerKind kind);

/// Whether the desktop blends windows.
enum class Compositing { off, on };

class BareClient;

/// A whole desktop of a test's own: X server, private home, private session bus, window manager,
/// clients; gone, with everything that was started in it, when the object ends.
class DesktopSession {
public:
    /// On a single Xvfb screen unless a server is given. Fails the running test when the server
    /// or the bus does not come up.
    explicit DesktopSession(std::unique_ptr<XServer> server = XServer::virtualScreen());
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;
    ~DesktopSession();

    /// Starts a window manager and waits until it manages; an earlier one is ended first. Where
    /// the window manager does not composite itself, compositing brings picom. False, and a failed
    /// test, when it does not come up.
    bool startWindowManager(WindowManagerKind kind, Compositing compositing = Compositing::off);
    /// Ends the window manager at once, as when it crashes.
    void killWindowManager();
    /// pekwm 0.1 may go to sleep with an event that it has taken in and not looked at, until the
    /// next one comes; a press leaves the mouse frozen for as long. Where pekwm runs, this sends it
    /// an event without meaning, and is true.
    bool wakeWindowManager();
    /// Starts or ends a compositing manager of its own (picom).
    bool startCompositor();
    void stopCompositor();

    /// Starts any program in the desktop; it ends with the desktop. The reference stays valid.
    Subprocess& start(const QString& program, const QStringList& arguments = {},
                      const std::map<QString, QString>& moreEnvironment = {}) {
        return home_.start(program, arguments, moreEnvironment);
    }

    /// What programs of the desktop run with: display, bus, home; no trace of the outer desktop.
    [[nodiscard]] QProcessEnvironment environment() const { return home_.environment(); }
    [[nodiscard]] QString display() const { return server_->display(); }
    [[nodiscard]] QString home() const { return home_.path(); }
    [[nodiscard]] XServer& server() { return *server_; }
    [[nodiscard]] XInspector& inspector() { return *inspector_; }
    [[nodiscard]] XInputInjector& input() { return *input_; }
    [[nodiscard]] QString busAddress() const { return busAddress_; }
    [[nodiscard]] Subprocess& bus() { return bus_; }
    [[nodiscard]] Subprocess& windowManager() { return windowManager_; }
    /// Where programs started here print to, for the message of a failed test.
    [[nodiscard]] QString logFile() const { return home_.logFile(); }
    /// What the desktop looks like now and what its programs have printed, for the same purpose.
    [[nodiscard]] std::string describe();

private:
    void setUpEnvironment();
    bool startBus();
    void writeWindowManagerConfiguration() const;

    PrivateHome home_;
    std::unique_ptr<XServer> server_;
    QString busAddress_;
    Subprocess bus_;
    Subprocess windowManager_;
    /// Which one was started last.
    std::optional<WindowManagerKind> windowManagerKind_;
    /// The window that the window manager met first.
    std::unique_ptr<BareClient> firstWindow_;
    Subprocess compositor_;
    std::unique_ptr<XInspector> inspector_;
    std::unique_ptr<XInputInjector> input_;
};

} // namespace tilewright::testing
