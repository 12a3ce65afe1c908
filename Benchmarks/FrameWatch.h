#pragma once

#include <PlasmaSession.h>

#include <QElapsedTimer>
#include <QObject>
#include <optional>

namespace tilewright::testing {

/// What KWin tells of a window's frame, whenever it changes, in the moment in which it says so.
class FrameWatch final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tilewright.FrameWatch")

public:
    /// Begins with the window's frame as it is. The session has to outlive the watch.
    FrameWatch(PlasmaSession& session, const QString& title);
    ~FrameWatch() override;

    /// Counts the time from now on, and forgets what was told before.
    void start();
    /// Waits until nothing has been told for a while. Milliseconds until the last change, if that
    /// was the one to this frame; the first time that it was this frame does not count.
    [[nodiscard]] std::optional<double> untilFinal(const QRect& frame);

public Q_SLOTS:
    /// Its numbers, with blanks between them.
    void tell(const QString& frame);

private:
    PlasmaSession& session_;
    QElapsedTimer clock_;
    QRect last_;
    qint64 nanoseconds_ = 0;
};

} // namespace tilewright::testing
