#pragma once

#include "PlatformWorld.h"

#include <QDBusConnection>
#include <QPoint>

namespace tilewright {
class FreeDesktopInstanceActivation;
}

namespace tilewright::testing {

class FakeIdleService;
class FakeNotifierWatcher;
class FakePortal;

/// What a session's message bus has besides the program, for any backend of Linux: the tray's host,
/// the portal, who blanks the display, other instances. Each is there from when it is first asked
/// for, with a connection of its own.
class SessionHands {
public:
    /// `display` names the display as $DISPLAY does.
    SessionHands(QString busAddress, QString display);
    SessionHands(const SessionHands&) = delete;
    SessionHands& operator=(const SessionHands&) = delete;
    ~SessionHands();

    /// What the tray shows. Turns the loop.
    [[nodiscard]] std::optional<ShownItem> shownItem();
    /// A click on the item that is shown, at a place in pixels of the X screen.
    void clickItem(QPoint at);

    void startEarlierInstance();
    [[nodiscard]] bool isEarlierInstanceAsked() const;
    /// Starts one more instance and turns the loop until it has found the first.
    void startLaterInstance();

    void wishReducedMotion(bool isReduced);
    void wishDark(bool isDark);

    /// How many inhibitions have been granted and not given back.
    [[nodiscard]] int heldInhibitions();

private:
    class EarlierInstance;

    [[nodiscard]] QDBusConnection connect();
    [[nodiscard]] std::optional<QVariant> itemsProperty(const char* name);
    void setWish(const char* group, const char* key, const QVariant& value);

    const QString busAddress_;
    const QString display_;
    QStringList connections_;
    std::unique_ptr<FakeNotifierWatcher> watcher_;
    std::unique_ptr<FakePortal> portal_;
    std::unique_ptr<FakeIdleService> idleService_;
    std::unique_ptr<EarlierInstance> earlierInstance_;
};

} // namespace tilewright::testing
