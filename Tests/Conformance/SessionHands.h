#pragma once

#include "PlatformWorld.h"

#include <QDBusConnection>
#include <QPoint>

namespace tilewright::testing {

class FakeIdleService;
class FakeNotifierWatcher;
class FakePortal;

/// What a session's message bus has besides the program, for any backend of Linux: the tray's host,
/// the portal, who blanks the display; each with a connection of its own. The tray is there before
/// the program: without one Qt makes an icon of its own, and waits for a tray that comes that very
/// moment and has to answer on the same thread. The others are there once they are asked for.
class SessionHands {
public:
    explicit SessionHands(QString busAddress);
    SessionHands(const SessionHands&) = delete;
    SessionHands& operator=(const SessionHands&) = delete;
    ~SessionHands();

    /// What the tray shows. Turns the loop.
    [[nodiscard]] std::optional<ShownItem> shownItem();
    /// A click on the item that is shown, at a place in pixels of the X screen.
    void clickItem(QPoint at);

    void wishReducedMotion(bool isReduced);
    void wishDark(bool isDark);

    /// How many inhibitions have been granted and not given back.
    [[nodiscard]] int heldInhibitions();

private:
    [[nodiscard]] QDBusConnection connect();
    [[nodiscard]] std::optional<QVariant> itemsProperty(const char* name);
    void setWish(const char* group, const char* key, const QVariant& value);

    const QString busAddress_;
    QStringList connections_;
    std::unique_ptr<FakeNotifierWatcher> watcher_;
    std::unique_ptr<FakePortal> portal_;
    std::unique_ptr<FakeIdleService> idleService_;
};

} // namespace tilewright::testing
