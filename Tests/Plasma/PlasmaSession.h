#pragma once

#include "PlasmaInput.h"

#include <QColor>
#include <QDBusConnection>
#include <QImage>
#include <QJsonValue>
#include <QRect>
#include <QTemporaryDir>
#include <Subprocess.h>
#include <map>
#include <memory>
#include <vector>

namespace tilewright::testing {

/// The kinds of windows that are dragged about in a session of Plasma.
enum class PlasmaClient { qt, gtk4, xwayland };

/// Its name, as in a test's name.
[[nodiscard]] const char* name(PlasmaClient client);

/// A session of KWin on Wayland of a test's own: without a screen, with a home, a session bus and a
/// system bus of its own, and with the effects that show the keys installed for this home. It and
/// whatever was started in it are gone when the object ends. All places are KWin's units.
class PlasmaSession {
public:
    /// Starts it and waits until it can be used. Fails the running test where it does not come up.
    PlasmaSession();
    PlasmaSession(const PlasmaSession&) = delete;
    PlasmaSession& operator=(const PlasmaSession&) = delete;
    ~PlasmaSession();

    /// What a JavaScript expression comes to inside KWin, as far as JSON has it. There,
    /// `find(title)` is a window, and `all()` are all of them.
    [[nodiscard]] QJsonValue ask(const QString& expression);
    void tell(const QString& expression) { static_cast<void>(ask(expression)); }

    /// Starts a program in the session; it ends with the session. The reference stays valid.
    Subprocess& start(const QString& program, const QStringList& arguments = {},
                      const std::map<QString, QString>& moreEnvironment = {});
    /// Starts a client and waits for its window, which is put there. Answers the window's title.
    [[nodiscard]] QString startClient(PlasmaClient client, QRect area);

    /// A window's frame, as KWin itself has it; empty where there is no such window.
    [[nodiscard]] QRect frame(const QString& title);
    /// Whether KWin says that of a window, such as "keepAbove".
    [[nodiscard]] bool isWindow(const QString& title, const QString& property);
    /// Whether KWin is moving a window for the user.
    [[nodiscard]] bool isDragging();
    /// Takes hold of a window by its title bar and drags it some way; fails the test where KWin
    /// does not begin to move it.
    void grab(const QString& title);
    /// Whether KWin has the script.
    [[nodiscard]] bool hasScript(const QString& name);
    /// Whether it runs, and sees the keys.
    [[nodiscard]] bool hasCompanion();

    /// What the display looks like.
    [[nodiscard]] QImage picture();

    /// Ends KWin at once, as when it crashes, and starts it again at the same socket.
    void killCompositor();
    void startCompositor();

    [[nodiscard]] PlasmaInput& input() { return *input_; }
    [[nodiscard]] QString home() const { return folder_.path(); }
    [[nodiscard]] QDBusConnection bus() const { return QDBusConnection(witness_); }
    [[nodiscard]] QString busAddress() const;
    /// What KWin and the programs have printed last, for the message of a failed test.
    [[nodiscard]] std::string describe() const;

private:
    class Ear;

    void setUpEnvironment();
    void installFiles() const;
    [[nodiscard]] bool startBus(Subprocess& bus, const QString& name, const QString& variable);
    [[nodiscard]] QDBusMessage callScripting(const QString& method,
                                             const QVariantList& arguments = {});
    /// The arguments of the X server that KWin has started.
    [[nodiscard]] QStringList xServer() const;
    [[nodiscard]] QString logFile() const {
        return folder_.filePath(QStringLiteral("session.log"));
    }

    // The folder outlives every process that writes into it.
    QTemporaryDir folder_;
    const QString witness_;
    QProcessEnvironment environment_;
    Subprocess systemBus_;
    Subprocess sessionBus_;
    Subprocess kwin_;
    std::unique_ptr<Ear> ear_;
    std::vector<std::unique_ptr<Subprocess>> programs_;
    std::unique_ptr<PlasmaInput> input_;
    int clients_ = 0;
    int questions_ = 0;
};

} // namespace tilewright::testing
