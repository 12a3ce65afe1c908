#pragma once

#include "MockCompanion.h"
#include "PrivateBus.h"

#include <Gnome/GnomePlatform.h>
#include <Tilewright/SnapController.h>

#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>
#include <optional>

namespace tilewright::testing {

/// The core on GNOME's backend, and a shell on its bus whose companion has greeted.
class GnomeSnapTest : public ::testing::Test {
protected:
    GnomeSnapTest() {
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        qputenv("HOME", home.path().toLocal8Bit());
        for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            qunsetenv(variable);
        platform.emplace();
        installation.emplace(*platform);
        EXPECT_TRUE(waitUntil([this] { return shell.seesProgram(); }));
        shell.greet(helloText(displayText(), windowText(3)));
        EXPECT_TRUE(waitUntil([this] { return shell.isAnswered(); }));
        SnapController::shared().start();
    }
    /// What the call's own answer had the companion do, and nothing else.
    void tell(const char* method, const QByteArray& text) {
        shell.call(method, text);
        ASSERT_TRUE(waitUntil([this] { return shell.isAnswered(); }));
    }
    [[nodiscard]] QJsonArray tiles() const {
        return shell.overlay ? (*shell.overlay)[QStringLiteral("tiles")].toArray() : QJsonArray();
    }
    /// How wide a tile's border is: the one under the pointer has the widest.
    [[nodiscard]] double widestBorder() const {
        double widest = 0;
        for (const auto& tile : tiles())
            widest = std::max(widest, tile.toArray()[7].toDouble());
        return widest;
    }

    PrivateBus bus;
    QTemporaryDir home;
    MockCompanion shell{bus.connect()};
    std::optional<GnomePlatform> platform;
    std::optional<Platform::Installation> installation;
};

} // namespace tilewright::testing
