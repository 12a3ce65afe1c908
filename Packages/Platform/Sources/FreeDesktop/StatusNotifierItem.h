#pragma once

#include "BusNameOwner.h"
#include "BusSignals.h"
#include "MessageBus.h"
#include "NativePixel.h"

#include <Platform/Geometry.h>
#include <Platform/MainLoop.h>

#include <QDBusMessage>
#include <QIcon>
#include <QObject>
#include <QString>
#include <chrono>
#include <memory>
#include <optional>

namespace tilewright {

/// An item of the desktop's status area by the StatusNotifierItem protocol
/// (org.kde.StatusNotifierItem) on the session bus. Registers with the watcher whenever one
/// appears, on whatever bus is there, so the order in which this program, the bus and the desktop's
/// panel start does not matter. Everything is asynchronous; without a bus it is an item that nobody
/// sees. Main thread only.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    /// How long the bus, and then a watcher, has to tell whether there is a host. Until it does
    /// there is none.
    static constexpr std::chrono::seconds answerBound{2};

    /// What is to be thought of the watcher, whose place anybody on the bus may take.
    enum class Trust { full, none };

    /// What becomes of the leave to come to the front that a host passes on before a click.
    enum class ActivationToken {
        /// Nobody here takes it, as with an X server.
        ignored,
        /// It is left in the environment, where Qt takes it with the next window that is to be made
        /// active by a Wayland compositor.
        left,
    };

    /// Two items of one process need different numbers. The loop and the bus have to outlive this.
    StatusNotifierItem(MainLoop& loop, MessageBus& bus,
                       ActivationToken activationToken = ActivationToken::ignored, int number = 1);
    ~StatusNotifierItem() override;

    /// Shows an icon and tells the hosts at once. Hosts that know a theme icon of the name, in
    /// their own colours, take that; the others get the icon's pixels.
    void setIcon(const QString& themeName, const QIcon& icon);
    /// The item's title and tool tip.
    void setTitle(const QString& title);

    /// Whether some host shows items now. Unknown, while the bus has not answered, is false, and
    /// `isSettled()` false with it.
    [[nodiscard]] bool isHosted() const { return isHosted_; }
    /// Whether the bus has told if there is a host, or has had its time.
    [[nodiscard]] bool isSettled() const { return isSettled_; }
    /// Whether somebody keeps the list of items, be there a host or not.
    [[nodiscard]] bool hasWatcher() const { return !signals_.sender().isEmpty(); }
    /// None after a watcher, or the bus, has not answered in time or said what makes no sense.
    [[nodiscard]] Trust trust() const { return trust_; }

Q_SIGNALS:
    /// The user clicked the item, with whichever button; (0, 0) where the host does not know. Sent
    /// from the event loop; clicks that come faster than it turns are one, at the last place.
    void activated(NativePixel place);
    /// `isHosted()` or `isSettled()` changed.
    void hostedChanged();

private:
    class Adaptor;

    void joinBus();
    void leaveBus();
    void leaveWatcher();
    void clicked(NativePixel place);
    void keepActivationToken(const QString& token) const;
    void followWatcher();
    void registerItem();
    void hostsChanged();
    void askForHost();
    void takeWord(const QDBusMessage& reply);
    void limitWaiting();
    void settle(bool isHosted, Trust trust);

    MainLoop& loop_;
    MessageBus& bus_;
    const ActivationToken activationToken_;
    QString serviceName_;
    Adaptor* adaptor_;
    std::unique_ptr<BusNameOwner> watcher_;
    /// Of the watcher.
    BusSignals signals_;
    /// Counts the watchers seen, so that a late answer of a former one is told apart.
    int watcherGeneration_ = 0;
    bool isHostAskedFor_ = false;
    /// Whether hosts came or went after they were asked for.
    bool isAnswerStale_ = false;
    /// Whether the watcher's name is owned by somebody who keeps no list of items, at least not
    /// yet.
    bool isWatcherHollow_ = false;
    /// Of those that wait to be handed out.
    std::optional<NativePixel> lastClick_;
    bool isHosted_ = false;
    bool isSettled_ = false;
    Trust trust_ = Trust::full;
    ScopedTimer patience_;
};

} // namespace tilewright
