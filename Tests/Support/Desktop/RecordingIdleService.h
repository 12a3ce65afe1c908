#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <map>

namespace tilewright::testing {

/// An idle service on a desktop's bus that records who inhibits it; as a real one does, it forgets
/// a peer that leaves the bus.
class RecordingIdleService final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    explicit RecordingIdleService(const QString& busAddress);
    ~RecordingIdleService() override;

    [[nodiscard]] bool isInhibited() const { return !holders_.empty(); }
    /// How often a holder has asked for the end of what it holds, rather than left the bus with it.
    [[nodiscard]] int releases() const { return releases_; }

public Q_SLOTS:
    uint Inhibit(const QString& application, const QString& reason);
    void UnInhibit(uint cookie);

private:
    const QString name_;
    QDBusConnection bus_;
    QDBusServiceWatcher* watch_ = nullptr;
    uint lastCookie_ = 0;
    std::map<uint, QString> holders_;
    int releases_ = 0;
};

} // namespace tilewright::testing
