#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>
#include <QStringList>

namespace tilewright::testing {

/// The status area's watcher as a desktop's panel runs it.
class FakeNotifierWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ answerAboutHost)

public:
    explicit FakeNotifierWatcher(QDBusConnection bus, bool startsWithHost = true)
        : hasHost(startsWithHost)
        , bus_(std::move(bus)) {
        bus_.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                            QDBusConnection::ExportAllContents);
        bus_.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }
    ~FakeNotifierWatcher() override {
        bus_.unregisterService(QStringLiteral("org.kde.StatusNotifierWatcher"));
        bus_.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
    }

    /// A host comes or goes.
    void setHost(bool isThere) {
        hasHost = isThere;
        if (isThere)
            Q_EMIT StatusNotifierHostRegistered();
        else
            Q_EMIT StatusNotifierHostUnregistered();
    }

    bool answerAboutHost() {
        ++timesAsked;
        if (timesAsked == hostComesAfterQuestion)
            QMetaObject::invokeMethod(
                this, [this] { setHost(true); }, Qt::QueuedConnection);
        return hasHost;
    }

    /// A host comes as soon as this many have asked for one, and have got their answer.
    int hostComesAfterQuestion = 0;

    bool hasHost;
    /// How often it was asked for its host.
    int timesAsked = 0;
    QStringList items;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { items.append(service); }

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();

private:
    QDBusConnection bus_;
};

} // namespace tilewright::testing
