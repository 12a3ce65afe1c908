#pragma once

#include <PrivateHome.h>

#include <QImage>
#include <QSize>
#include <memory>
#include <ostream>

namespace tilewright::testing {

/// A session of a compositor that lets programs show layers, without a screen and with one display,
/// which it gives no companion: a folder that is home and runtime folder at once, gone with the
/// object.
class LayerSession {
public:
    enum class Beside { nothing, xServer };

    LayerSession(const LayerSession&) = delete;
    LayerSession& operator=(const LayerSession&) = delete;
    virtual ~LayerSession() = default;

    /// What programs of the session run with; it names no X server.
    [[nodiscard]] const QProcessEnvironment& environment() const { return environment_; }
    [[nodiscard]] const QTemporaryDir& folder() const { return folder_; }
    /// Where the compositor listens.
    [[nodiscard]] QString socketPath() const { return folder_.filePath(socketName()); }
    /// The name of the X server beside it.
    [[nodiscard]] QString xDisplay() const;
    /// What a display shows, in its own pixels.
    [[nodiscard]] QImage picture(const QString& display = QStringLiteral("HEADLESS-1")) const;

protected:
    LayerSession();

    /// Such as "wayland-1".
    [[nodiscard]] virtual QString socketName() const = 0;
    void set(const QString& variable, const QString& value) {
        environment_.insert(variable, value);
    }
    /// Starts the compositor as somebody who is not root, and waits for its socket.
    void startCompositor(const QString& program, const QStringList& arguments);
    [[nodiscard]] Subprocess& compositor() { return compositor_; }
    /// A command that says which X server there is, and has it let everybody in: the tests may not
    /// be who the compositor is.
    [[nodiscard]] QString toldXDisplay() const {
        return QStringLiteral("xhost +local: && echo $DISPLAY > ") + xDisplayFile();
    }
    /// What the compositor has printed.
    [[nodiscard]] std::string logged() const;

private:
    [[nodiscard]] QString xDisplayFile() const {
        return folder_.filePath(QStringLiteral("display"));
    }
    [[nodiscard]] QString log() const { return folder_.filePath(QStringLiteral("log")); }

    QTemporaryDir folder_;
    QProcessEnvironment environment_ = inheritedEnvironment();
    Subprocess compositor_;
};

} // namespace tilewright::testing
