#pragma once

#include <Platform/Geometry.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QIcon>
#include <QObject>
#include <QString>
#include <memory>

namespace tilewright {

/// An item of the desktop's status area by the StatusNotifierItem protocol
/// (org.kde.StatusNotifierItem) on the session bus. Registers with the watcher whenever one
/// appears, so the order in which this program and the desktop's panel start does not matter.
/// Everything is asynchronous; without a bus it is an item that nobody sees. Main thread only.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    /// Two items of one process need different numbers.
    explicit StatusNotifierItem(QDBusConnection bus = QDBusConnection::sessionBus(),
                                int number = 1);
    ~StatusNotifierItem() override;

    /// Shows an icon and tells the hosts at once. Hosts that know a theme icon of the name, in
    /// their own colours, take that; the others get the icon's pixels.
    void setIcon(const QString& themeName, const QIcon& icon);
    /// The item's title and tool tip.
    void setTitle(const QString& title);

    /// Whether some host shows items now. Unknown, while the bus has not answered, is false, and
    /// `isSettled()` false with it.
    [[nodiscard]] bool isHosted() const { return isHosted_; }
    /// Whether the bus has told if there is a host.
    [[nodiscard]] bool isSettled() const { return isSettled_; }

Q_SIGNALS:
    /// The user clicked the item, with whichever button; (0, 0) where the host does not know.
    void activated(NativePixel place);
    /// `isHosted()` or `isSettled()` changed.
    void hostedChanged();

private Q_SLOTS:
    void hostRegistered(const QDBusMessage& notice);
    void hostUnregistered(const QDBusMessage& notice);
    void busLost();

private:
    class Adaptor;

    void watcherAppeared(const QString& owner);
    void watcherVanished();
    void askForHost();
    void settle(bool isHosted);

    QDBusConnection bus_;
    QString serviceName_;
    Adaptor* adaptor_;
    /// The watcher's own name on the bus; empty while none is known.
    QString watcher_;
    /// Counts the watchers seen, so that a late answer of a former one is told apart.
    int watcherGeneration_ = 0;
    bool isHosted_ = false;
    bool isSettled_ = false;
};

} // namespace tilewright
