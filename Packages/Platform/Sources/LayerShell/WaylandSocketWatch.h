#pragma once

#include <Platform/MainLoop.h>

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

namespace tilewright {

/// Tells when somebody may have come to listen at a socket, or have become able to take one more:
/// after each change in its folder, and a few times more, since listening begins a moment after the
/// socket is made. Nothing runs while nothing changes, nor while it is stopped, as it is at first.
/// Main thread only.
class WaylandSocketWatch final : public QObject {
    Q_OBJECT

public:
    /// The loop has to outlive the watch.
    WaylandSocketWatch(MainLoop& loop, const QString& socketPath);
    ~WaylandSocketWatch() override;

    /// Watches from now on, as if something had changed just now.
    void start();
    void stop();

Q_SIGNALS:
    /// The moment to try. Sent from the event loop.
    void worthATry();

private:
    void lookAgain();
    void look();

    MainLoop& loop_;
    const QString path_;
    QFileSystemWatcher folder_;
    ScopedTimer next_;
    int looksLeft_ = 0;
};

} // namespace tilewright
