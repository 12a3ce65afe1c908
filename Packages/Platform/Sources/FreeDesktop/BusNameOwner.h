#pragma once

#include <Platform/PostedCall.h>
#include <Platform/QtMainLoop.h>

#include <QDBusConnection>
#include <QObject>
#include <QString>

namespace tilewright {

/// Who owns a name on a bus: asked for once, without waiting, and followed from then on. Only the
/// bus itself is heard about it. Owners that follow each other faster than the event loop turns
/// count as one change. Main thread only.
class BusNameOwner final : public QObject {
    Q_OBJECT

public:
    /// Learns nothing on a bus that is not connected.
    BusNameOwner(const QDBusConnection& bus, const QString& name, QObject* parent = nullptr);
    ~BusNameOwner() override;

    /// The owner's own address on the bus, which nobody else ever gets; empty while there is no
    /// owner, or none is known.
    [[nodiscard]] const QString& owner() const { return owner_; }

Q_SIGNALS:
    /// The owner is known for the first time, or the name has been taken or given up since. Sent
    /// from the event loop; also when one connection has given up the name and taken it again.
    void changed();

private:
    void heard(const QString& owner);
    void tell();

    QString owner_;
    QString newest_;
    bool hasHeard_ = false;
    QtMainLoop loop_;
    /// Somebody may take and give up a name as fast as he can.
    PostedCall news_{loop_, [this] { tell(); }};
};

} // namespace tilewright
