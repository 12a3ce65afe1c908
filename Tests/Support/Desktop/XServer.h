#pragma once

#include "Subprocess.h"

#include <QSize>
#include <QTemporaryDir>

namespace tilewright::testing {

/// An X server of a test's own, on a display number that the server chose.
class XServer {
public:
    /// Xvfb with one screen. Further arguments go to the server.
    [[nodiscard]] static std::unique_ptr<XServer> virtualScreen(QSize size = {1920, 1080},
                                                                const QStringList& more = {});
    /// Xorg with the dummy driver and two outputs, DUMMY0 (primary) and DUMMY1 at its right, each
    /// 1920×1080, hot-pluggable through RandR.
    [[nodiscard]] static std::unique_ptr<XServer> twoOutputs();
    /// Xephyr, whose one display turns when RandR asks it to (the others' displays cannot). Shows
    /// itself in a window on the host, which has to outlive it.
    [[nodiscard]] static std::unique_ptr<XServer> rotatableWithin(const XServer& host, QSize size);

    /// Such as ":5".
    [[nodiscard]] QString display() const { return display_; }
    [[nodiscard]] bool isRunning() const { return process_.isRunning(); }
    /// Ends the server at once, as when it crashes.
    void kill() { process_.stop(); }

private:
    XServer() = default;
    [[nodiscard]] bool
    start(const QString& program, const QStringList& arguments,
          const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

    QTemporaryDir folder_;
    Subprocess process_;
    QString display_;
};

} // namespace tilewright::testing
