#include "Displays.h"

#include <FakePlatform.h>
#include <FakeUserNotifications.h>
#include <Waiting.h>

#include <Platform/QtMainLoop.h>
#include <WindowManager/LayoutStore.h>
#include <X11/X11Desktop.h>

#include <QDir>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

QString monitorGeometry(const QRect& area) {
    return QStringLiteral("%1/%2x%3/%4+%5+%6")
        .arg(area.width())
        .arg(area.width() / 4)
        .arg(area.height())
        .arg(area.height() / 4)
        .arg(area.x())
        .arg(area.y());
}

} // namespace

ZoneLayout customLayout(const QString& name, const std::vector<std::array<double, 4>>& zones) {
    ZoneLayout layout{QUuid::createUuid(), name, QStringLiteral("square"), false, {}};
    for (const auto& [x, y, width, height] : zones)
        layout.zones.push_back({QUuid::createUuid(), name, x, y, width, height});
    return layout;
}

void splitIntoMonitors(DesktopSession& desktop, const QRect& left, const QRect& right) {
    const auto setMonitor = [&](const char* name, const QRect& area, const char* output) {
        static_cast<void>(outputOf(QStringLiteral("xrandr"),
                                   {QStringLiteral("--setmonitor"), QString::fromLatin1(name),
                                    monitorGeometry(area), QString::fromLatin1(output)},
                                   desktop.environment()));
    };
    setMonitor("LEFT", left, "screen");
    setMonitor("RIGHT", right, "none");
}

void moveRightOutput(DesktopSession& desktop, QPoint place) {
    static_cast<void>(
        outputOf(QStringLiteral("xrandr"),
                 {QStringLiteral("--output"), QStringLiteral("DUMMY1"), QStringLiteral("--pos"),
                  QStringLiteral("%1x%2").arg(place.x()).arg(place.y())},
                 desktop.environment()));
    EXPECT_TRUE(waitUntil([&] {
        const auto all = monitors(desktop);
        return all.size() == 2 && all[1].topLeft() == place;
    }));
}

std::vector<QRect> monitors(const DesktopSession& desktop) {
    const QString list = outputOf(QStringLiteral("xrandr"), {QStringLiteral("--listmonitors")},
                                  desktop.environment());
    static const QRegularExpression geometry(
        QStringLiteral(R"( (\d+)/\d+x(\d+)/\d+\+(\d+)\+(\d+) )"));
    std::vector<QRect> found;
    for (auto all = geometry.globalMatch(list); all.hasNext();) {
        const auto match = all.next();
        found.emplace_back(match.captured(3).toInt(), match.captured(4).toInt(),
                           match.captured(1).toInt(), match.captured(2).toInt());
    }
    return found;
}

void assignLayouts(DesktopSession& desktop, const std::vector<ZoneLayout>& layouts) {
    const auto connection = X11Connection::open(desktop.display());
    ASSERT_TRUE(connection);
    QtMainLoop loop;
    FakeUserNotifications notifications;
    MessageBus bus(loop, MessageBus::Kind::session);
    X11Desktop x11(*connection, loop, bus, notifications, false);
    const auto& screens = x11.screens().all();
    ASSERT_EQ(screens.size(), layouts.size());
    const QString folder = desktop.home() + QStringLiteral("/.local/share/Tilewright");
    QDir().mkpath(folder);
    LayoutStore store(folder + QStringLiteral("/layouts.json"));
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        if (!layouts[i].isBuiltIn)
            store.addCustomLayout(layouts[i]);
        store.assign(layouts[i], *screens[i]);
    }
}

} // namespace tilewright::testing
