#include "DrmFolder.h"

#include <Companion/DrmConnectors.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

TEST(DrmConnectors, FindTheEdidOfADisplayByItsConnector) {
    const DrmFolder folder;
    folder.add("card0-DP-1", withBothSerials);
    folder.add("card0-eDP-1", withoutSerial);
    const DrmConnectors connectors(folder.path());
    const auto found = connectors.connector(QStringLiteral("DP-1"));
    EXPECT_EQ(found.x11Name, QStringLiteral("DP-1"));
    ASSERT_TRUE(found.edid);
    EXPECT_EQ(found.edid->name, QStringLiteral("Tall 27"));
    EXPECT_EQ(connectors.connector(QStringLiteral("eDP-1")).edid->name, QStringLiteral("Wide 34"));
}

TEST(DrmConnectors, KnowTheNamesThatTheXServersOwnDriverHas) {
    const DrmFolder folder;
    folder.add("card1-HDMI-A-2", withBothSerials);
    const DrmConnectors connectors(folder.path());
    for (const char* name : {"HDMI-2", "HDMI-A-2"}) {
        const auto found = connectors.connector(QString::fromLatin1(name));
        EXPECT_EQ(found.x11Name, QStringLiteral("HDMI-2")) << name;
        EXPECT_TRUE(found.edid) << name;
    }
}

TEST(DrmConnectors, KnowTheNamesThatTheDriversOfTheXServerHave) {
    struct Name {
        const char* driver;
        const char* kernel;
        const char* compositor;
        const char* x11;
    };
    for (const auto& [driver, kernel, compositor, x11] :
         std::initializer_list<Name>{{"amdgpu", "HDMI-A-1", "HDMI-1", "HDMI-A-0"},
                                     {"amdgpu", "DP-3", "DP-3", "DisplayPort-2"},
                                     {"amdgpu", "DVI-D-1", "DVI-D-1", "DVI-D-0"},
                                     {"amdgpu", "eDP-1", "eDP-1", "eDP"},
                                     {"radeon", "HDMI-A-1", "HDMI-1", "HDMI-0"},
                                     {"radeon", "DP-1", "DP-1", "DisplayPort-0"},
                                     {"radeon", "DVI-I-1", "DVI-I-1", "DVI-0"},
                                     {"radeon", "VGA-1", "VGA-1", "VGA-0"},
                                     {"radeon", "LVDS-1", "LVDS-1", "LVDS"},
                                     {"i915", "HDMI-A-2", "HDMI-A-2", "HDMI-2"},
                                     {"i915", "eDP-1", "eDP-1", "eDP-1"},
                                     {"nouveau", "DVI-I-1", "DVI-I-1", "DVI-I-1"},
                                     {"nouveau", "HDMI-A-1", "HDMI-1", "HDMI-1"},
                                     {"virtio-pci", "Virtual-1", "Virtual-1", "Virtual-1"}}) {
        const DrmFolder folder;
        folder.add((QByteArray("card0-") + kernel).constData(), withoutSerial, driver);
        const auto found = DrmConnectors(folder.path()).connector(QString::fromLatin1(compositor));
        EXPECT_EQ(found.x11Name, QString::fromLatin1(x11)) << driver << ' ' << kernel;
        EXPECT_TRUE(found.edid) << driver << ' ' << kernel;
    }
}

TEST(DrmConnectors, KeepTheNameOfADisplayThatTheKernelDoesNotKnow) {
    const DrmFolder folder;
    folder.add("card0-DP-1", withBothSerials);
    folder.add("card0-DP-2", withBothSerials, nullptr, "disconnected\n");
    const DrmConnectors connectors(folder.path());
    for (const char* name : {"Meta-0", "DP-2", "", "../DP-1", "DP-1/edid"}) {
        const auto found = connectors.connector(QString::fromLatin1(name));
        EXPECT_EQ(found.x11Name, QString::fromLatin1(name));
        EXPECT_FALSE(found.edid) << name;
    }
    EXPECT_FALSE(
        DrmConnectors(QStringLiteral("/nonexistent")).connector(QStringLiteral("DP-1")).edid);
}

TEST(DrmConnectors, ReadNothingFromADisplayThatTellsNonsense) {
    const DrmFolder folder;
    folder.add("card0-VGA-1", QByteArray("nonsense"));
    folder.add("card0-VGA-2", QByteArray());
    const DrmConnectors connectors(folder.path());
    EXPECT_FALSE(connectors.connector(QStringLiteral("VGA-1")).edid);
    EXPECT_FALSE(connectors.connector(QStringLiteral("VGA-2")).edid);
    EXPECT_EQ(connectors.connector(QStringLiteral("VGA-2")).x11Name, QStringLiteral("VGA-2"));
}

} // namespace tilewright::testing
