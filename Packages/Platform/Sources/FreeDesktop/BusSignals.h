#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>

namespace tilewright {

class MessageBus;

/// Signals of one object, of one sender at a time. He is known by his own address, not by a name
/// that another may take. Nothing here waits for the bus. Main thread only.
class BusSignals final : public QObject {
    Q_OBJECT

public:
    /// The signals of these names that the object at `path` sends by `interface`. Nobody is
    /// listened to yet. The bus has to outlive this.
    BusSignals(const MessageBus& bus, QString path, QString interface, QStringList names);
    ~BusSignals() override;

    /// Listens to the one at this address, and no longer to the one before; to nobody where it is
    /// empty.
    void listenTo(const QString& address);
    /// Whom it listens to; empty while there is nobody, as when the bus has gone.
    [[nodiscard]] const QString& sender() const { return sender_; }

Q_SIGNALS:
    /// One of them, by `member()`. What it carries may be of any type.
    void heard(const QDBusMessage& notice);

private Q_SLOTS:
    void take(const QDBusMessage& notice);

private:
    const MessageBus& bus_;
    const QString path_;
    const QString interface_;
    const QStringList names_;
    QString sender_;
};

} // namespace tilewright
