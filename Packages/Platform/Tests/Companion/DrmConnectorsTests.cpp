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

TEST(DrmConnectors, KnowTheNamesThatTheDriverForAmdsCardsHas) {
    const DrmFolder folder;
    folder.add("card0-HDMI-A-1", withBothSerials, "amdgpu");
    folder.add("card0-DP-3", withBothSerials, "amdgpu");
    folder.add("card0-eDP-1", withBothSerials, "amdgpu");
    const DrmConnectors connectors(folder.path());
    EXPECT_EQ(connectors.connector(QStringLiteral("HDMI-1")).x11Name, QStringLiteral("HDMI-A-0"));
    EXPECT_EQ(connectors.connector(QStringLiteral("DP-3")).x11Name,
              QStringLiteral("DisplayPort-2"));
    EXPECT_EQ(connectors.connector(QStringLiteral("eDP-1")).x11Name, QStringLiteral("eDP"));
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
