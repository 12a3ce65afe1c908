#include "TestClients.h"

#include "Repetition.h"
#include "Waiting.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {

const char* name(ClientKind kind) {
    switch (kind) {
    case ClientKind::xterm:
        return "xterm";
    case ClientKind::qt:
        return "Qt";
    case ClientKind::gtkClientDecorated:
        return "GTK";
    case ClientKind::fixedDialog:
        return "dialog";
    }
    return "";
}

namespace {

/// Waits until a window's frame has been the same for a while: a window manager decorates and
/// places a window in steps, some of them after it is mapped.
bool waitUntilStill(const XInspector& inspector, XInspector::Window window) {
    constexpr qint64 longEnough = 120;
    QRect last;
    QElapsedTimer since;
    since.start();
    return waitUntil([&] {
        const QRect now = inspector.outerFrame(window);
        if (now != last)
            since.restart();
        last = now;
        return since.elapsed() >= longEnough;
    });
}

} // namespace

TestClient startClient(DesktopSession& desktop, ClientKind kind, QRect area) {
    static int count = 0;
    TestClient client;
    client.title = QStringLiteral("client-%1-%2").arg(QString::fromLatin1(name(kind))).arg(++count);
    const QStringList numbers =
        area.isEmpty() ? QStringList{}
                       : QStringList{QString::number(area.x()), QString::number(area.y()),
                                     QString::number(area.width()), QString::number(area.height())};
    switch (kind) {
    case ClientKind::xterm: {
        QStringList arguments{QStringLiteral("-T"), client.title, QStringLiteral("-fn"),
                              QStringLiteral("fixed")};
        if (!area.isEmpty())
            arguments << QStringLiteral("-geometry")
                      << QStringLiteral("80x24+%1+%2").arg(area.x()).arg(area.y());
        arguments << QStringLiteral("-e") << QStringLiteral("sleep") << QStringLiteral("100000");
        client.process = &desktop.start(QStringLiteral("xterm"), arguments);
        break;
    }
    case ClientKind::qt:
        client.process =
            &desktop.start(QStringLiteral(TILEWRIGHT_TEST_WINDOW),
                           QStringList{client.title, QStringLiteral("window")} + numbers);
        break;
    case ClientKind::fixedDialog:
        client.process =
            &desktop.start(QStringLiteral(TILEWRIGHT_TEST_WINDOW),
                           QStringList{client.title, QStringLiteral("dialog")} + numbers);
        break;
    case ClientKind::gtkClientDecorated:
        client.process = &desktop.start(
            QStringLiteral("/usr/bin/python3"),
            QStringList{QStringLiteral(TILEWRIGHT_CSD_WINDOW), client.title} + numbers);
        break;
    }
    XInspector& inspector = desktop.inspector();
    const auto isShown = [&] {
        const auto found = inspector.clientTitled(client.title);
        if (!found || !inspector.isMapped(*found))
            return false;
        client.window = *found;
        return true;
    };
    bool shows = waitUntil(isShown, std::chrono::seconds(5));
    if (!shows) {
        const auto windows = inspector.allWindows();
        const bool isThere = std::any_of(windows.begin(), windows.end(), [&](auto window) {
            return inspector.title(window) == client.title;
        });
        if (isThere && desktop.wakeWindowManager())
            tellRepetition("a window manager slept with a new window unread");
        shows = waitUntil(isShown);
    }
    EXPECT_TRUE(shows) << "no window of " << name(kind) << " appeared";
    if (shows) {
        EXPECT_TRUE(waitUntilStill(inspector, client.window))
            << name(kind) << " does not come to rest";
    }
    return client;
}

} // namespace tilewright::testing
