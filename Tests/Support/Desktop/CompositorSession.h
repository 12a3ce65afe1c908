#pragma once

#include "CompositorInput.h"
#include "PrivateHome.h"

#include <QColor>
#include <QDBusConnection>
#include <QImage>
#include <QJsonValue>
#include <QRect>

#include <memory>

namespace tilewright::testing {

/// The kinds of windows that are dragged about in a session of a compositor. A terminal's sizes are
/// those of its cells.
enum class CompositorClient { qt, gtk4, xwayland, terminal };

/// Its name, as in a test's name.
[[nodiscard]] const char* name(CompositorClient client);

/// Whether neither the place nor the size of two frames differs by more than that along a side.
[[nodiscard]] bool isNear(const QRect& frame, const QRect& other, int tolerance);

/// A frame for the message of a failed test.
[[nodiscard]] std::string text(const QRect& frame);

/// A session of a compositor on Wayland of a test's own: without a screen, with a home, a session
/// bus and a system bus of its own. It and whatever was started in it are gone when the object
/// ends. All places are the compositor's units.
class CompositorSession {
public:
    CompositorSession(const CompositorSession&) = delete;
    CompositorSession& operator=(const CompositorSession&) = delete;
    virtual ~CompositorSession();

    /// What JavaScript comes to inside the compositor, as far as JSON has it. A script that throws
    /// fails the test.
    [[nodiscard]] virtual QJsonValue ask(const QString& script) = 0;
    /// Runs a script there for what it does.
    void tell(const QString& script) { static_cast<void>(ask(script)); }

    /// Starts a program in the session; it ends with the session. The reference stays valid.
    Subprocess& start(const QString& program, const QStringList& arguments = {},
                      const std::map<QString, QString>& moreEnvironment = {}) {
        return home_.start(program, arguments, moreEnvironment);
    }
    /// Starts a client and waits for its window, which is put there; a terminal keeps the size that
    /// it begins with. Answers the window's title.
    [[nodiscard]] QString startClient(CompositorClient client, QRect area);
    /// The same, with that title.
    [[nodiscard]] QString startClient(CompositorClient client, QRect area, const QString& title);
    /// Starts a green bar that takes no room away from other windows, on the X server beside the
    /// compositor, and waits for it. Answers its title.
    [[nodiscard]] QString startBar(QRect area);
    /// Has that bar keep so much of the upper edge free of other windows; from when its frame
    /// changes next on at the latest.
    void keepFree(const QString& bar, int height);

    /// A window's frame, as the compositor itself has it; empty where there is no such window.
    [[nodiscard]] virtual QRect frame(const QString& title) = 0;
    /// Gives a window a frame, as if the compositor did so of its own, and waits for it.
    virtual void place(const QString& title, QRect area) = 0;
    /// Waits until all windows are shown where the compositor has them by now, where it tells a
    /// client of a press by where its window was shown last.
    virtual void waitUntilShown() {}
    /// Whether the compositor is moving a window for the user.
    [[nodiscard]] virtual bool isDragging() = 0;
    /// Takes hold of a window by its title bar and drags it some way; fails the test where the
    /// compositor does not begin to move it.
    void grab(const QString& title);

    /// What the displays look like, the pointer left out: in their own pixels, of which the picture
    /// knows how many there are along a unit.
    [[nodiscard]] virtual QImage picture() = 0;
    /// The pixel there in the compositor's units.
    [[nodiscard]] virtual QColor pixel(QPoint at);

    [[nodiscard]] CompositorInput& input() { return *input_; }
    [[nodiscard]] QString busAddress() const;
    [[nodiscard]] QDBusConnection bus() const { return QDBusConnection(witness_); }
    [[nodiscard]] QString home() const { return home_.path(); }
    /// What the compositor and the programs have printed last, for the message of a failed test.
    [[nodiscard]] std::string describe() const { return home_.lastPrinted(); }

protected:
    /// `desktop` is what programs take it for.
    explicit CompositorSession(const QString& desktop);

    /// The script's text of a string.
    [[nodiscard]] static QString quoted(const QString& text);
    /// The rectangle of x, y, width and height, as a script answers it; empty where there are none.
    [[nodiscard]] static QRect toRect(const QJsonValue& numbers);

    /// Gives the environment of what is started from now on a variable.
    void set(const char* variable, const QString& value) { home_.set(variable, value); }
    [[nodiscard]] const QProcessEnvironment& environment() const { return home_.environment(); }
    [[nodiscard]] QString logFile() const { return home_.logFile(); }
    /// Starts both buses and joins the session's. False when one does not come up.
    [[nodiscard]] bool startBuses();
    /// Starts the compositor, which is to listen at the socket of that name in the run folder.
    /// False when it cannot be started.
    [[nodiscard]] bool startCompositor(const QString& program, const QStringList& arguments);
    [[nodiscard]] static QString socketName() { return QStringLiteral("wayland-test"); }
    [[nodiscard]] Subprocess& compositor() { return compositor_; }
    void setInput(std::unique_ptr<CompositorInput> input) { input_ = std::move(input); }
    /// Uses the mouse and the keyboard once, where nothing is: a seat gets each of them with its
    /// first use, and clients lose that.
    void useInput(QPoint nowhere);

private:
    [[nodiscard]] bool startBus(Subprocess& bus, const QString& name, const char* variable);
    void startProgramOf(CompositorClient client, const QString& title);
    /// What a program needs in its environment to find the X server beside the compositor.
    [[nodiscard]] virtual std::map<QString, QString> xServer() = 0;

    PrivateHome home_;
    const QString witness_;
    Subprocess systemBus_;
    Subprocess sessionBus_;
    Subprocess compositor_;
    std::unique_ptr<CompositorInput> input_;
    int clients_ = 0;
};

} // namespace tilewright::testing
