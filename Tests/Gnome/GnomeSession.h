#pragma once

#include "GnomeInput.h"

#include <PrivateHome.h>
#include <QColor>
#include <QDBusConnection>
#include <QImage>
#include <QJsonValue>
#include <QRect>

#include <memory>

namespace tilewright::testing {

/// The kinds of windows that are dragged about in a session of GNOME Shell.
enum class GnomeClient { qt, gtk4, xwayland };

/// Its name, as in a test's name.
[[nodiscard]] const char* name(GnomeClient client);

/// A whole session of GNOME Shell on Wayland of a test's own: without a screen, with a home, a
/// session bus and a system bus of its own, and with our companion installed for this home. It and
/// whatever was started in it are gone when the object ends. All places are units of the shell's
/// stage.
class GnomeSession {
public:
    /// Starts it, with a companion that believes the program at this path, and waits until the
    /// shell rests. Fails the running test where it does not come up.
    explicit GnomeSession(const QString& believedProgram);
    GnomeSession(const GnomeSession&) = delete;
    GnomeSession& operator=(const GnomeSession&) = delete;
    ~GnomeSession();

    /// What a script answers that is run inside the shell: the value of its last expression, as far
    /// as JSON has it. A script that throws fails the test.
    [[nodiscard]] QJsonValue ask(const QString& script);
    /// Runs a script inside the shell for what it does.
    void tell(const QString& script) { static_cast<void>(ask(script)); }

    /// Starts a program in the session; it ends with the session. The reference stays valid.
    Subprocess& start(const QString& program, const QStringList& arguments = {},
                      const std::map<QString, QString>& moreEnvironment = {}) {
        return home_.start(program, arguments, moreEnvironment);
    }
    /// Starts a client and waits for its window, which is put there. Answers the window's title.
    [[nodiscard]] QString startClient(GnomeClient client, QRect area);

    /// A window's frame, as the shell itself has it; empty where there is no such window.
    [[nodiscard]] QRect frame(const QString& title);
    /// Gives a window a frame, as if the shell did so of its own, and waits for it.
    void place(const QString& title, QRect area);
    /// Whether the shell is moving a window for the user.
    [[nodiscard]] bool isDragging();
    /// Takes hold of a window by its title bar and drags it some way; fails the test where the
    /// shell does not begin to move it.
    void grab(const QString& title);

    /// What the stage looks like, the pointer left out.
    [[nodiscard]] QImage picture();
    /// One pixel of it.
    [[nodiscard]] QColor pixel(QPoint at) { return picture().pixelColor(at); }

    /// Switches the companion on or off, as the user would.
    void setCompanionEnabled(bool enabled);
    /// Whether the shell has it running.
    [[nodiscard]] bool isCompanionActive();

    /// Where our button is in the bar; empty while it is not there.
    [[nodiscard]] QRect item();
    /// Waits until it is there, and has come to rest in the bar's right half.
    [[nodiscard]] QRect waitForItem();

    [[nodiscard]] GnomeInput& input() { return *input_; }
    [[nodiscard]] QString busAddress() const;
    [[nodiscard]] QDBusConnection bus() const { return QDBusConnection(witness_); }
    [[nodiscard]] QString home() const { return home_.path(); }
    [[nodiscard]] QProcessEnvironment environment() const { return home_.environment(); }
    /// What the shell and the programs have printed last, for the message of a failed test.
    [[nodiscard]] std::string describe() const { return home_.lastPrinted(); }

private:
    void setUpEnvironment();
    void writeSettings() const;
    void installCompanion(const QString& believedProgram);
    [[nodiscard]] bool startBus(Subprocess& bus, const QString& name, const char* variable);
    [[nodiscard]] bool startShell();
    void waitUntilItRests();

    PrivateHome home_;
    const QString witness_;
    Subprocess systemBus_;
    Subprocess sessionBus_;
    Subprocess shell_;
    std::unique_ptr<GnomeInput> input_;
    int clients_ = 0;
    int pictures_ = 0;
};

/// The extension that a build brings along.
inline constexpr char companionUuid[] = "tilewright-run@tilewright.org";

} // namespace tilewright::testing
