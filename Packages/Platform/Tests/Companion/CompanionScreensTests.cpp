#include "CompanionTexts.h"
#include "DrmFolder.h"

#include <Companion/CompanionDecoder.h>
#include <Companion/CompanionScreens.h>

#include <QGuiApplication>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class CompanionScreensTest : public ::testing::Test {
protected:
    void tell(const char* method, const QByteArray& text) {
        const auto message = CompanionDecoder::decode(QString::fromLatin1(method), text);
        ASSERT_TRUE(message) << text.toStdString();
        state.take(*message);
    }
    /// The key of the one display at a connector.
    [[nodiscard]] std::optional<QString> keyAt(const QByteArray& connector) {
        tell("Hello",
             helloText(displayText(true, "[0,0,1920,1080]", "[0,32,1920,1048]", connector)));
        return screens.all().front()->persistentUUID();
    }

    DrmFolder folder;
    CompanionState state;
    CompanionScreens screens{state, DrmConnectors(folder.path())};
};

} // namespace

TEST_F(CompanionScreensTest, AreThoseOfQtUntilACompanionTells) {
    ASSERT_FALSE(screens.all().empty());
    EXPECT_EQ(screens.all().front()->frame().width,
              QGuiApplication::primaryScreen()->geometry().width());
    tell("Hello", helloText());
    ASSERT_EQ(screens.all().size(), 1U);
    EXPECT_EQ(screens.all().front()->frame(), (AppKitRect{0, 0, 1920, 1080}));
    EXPECT_EQ(screens.all().front()->visibleFrame(), (AppKitRect{0, 0, 1920, 1048}));
    state.lose();
    EXPECT_EQ(screens.all().front()->frame().width, 1920);
}

TEST_F(CompanionScreensTest, AreAnchoredToThePrimaryDisplayWhichComesFirst) {
    tell("Hello", helloText(displayText(false, "[0,0,800,600]", "[0,0,800,600]", "DP-1") + "," +
                            displayText(true, "[800,100,1000,500]", "[800,132,1000,468]", "DP-2")));
    ASSERT_EQ(screens.all().size(), 2U);
    EXPECT_EQ(screens.all()[0]->frame(), (AppKitRect{0, 0, 1000, 500}));
    EXPECT_EQ(screens.all()[0]->visibleFrame(), (AppKitRect{0, 0, 1000, 468}));
    EXPECT_EQ(screens.all()[1]->frame(), (AppKitRect{-800, 0, 800, 600}));
    const CompanionCoordinates& coordinates = screens.coordinates();
    EXPECT_EQ(coordinates.toAppKit(CompanionPoint{800, 100}), (AppKitPoint{0.5, 499.5}))
        << "the middle of what holds it";
    EXPECT_EQ(coordinates.toCompanion(screens.all()[1]->frame()), (CompanionRect{0, 0, 800, 600}));
    EXPECT_EQ(coordinates.toCompanion(AXPoint{-800, -100}, AXSize{800, 600}),
              (CompanionRect{0, 0, 800, 600}));
}

TEST_F(CompanionScreensTest, KeepADisplaysObjectUntilTheDisplayChanges) {
    tell("Hello", helloText());
    const ScreenPtr before = screens.all().front();
    int changes = 0;
    QObject::connect(&screens, &Screens::screensChanged, &screens, [&] { ++changes; });
    tell("Displays", R"({"displays":[)" + displayText() + "]}");
    EXPECT_EQ(screens.all().front(), before);
    EXPECT_EQ(changes, 0);
    tell("Displays",
         R"({"displays":[)" + displayText(true, "[0,0,1920,1080]", "[0,40,1920,1040]") + "]}");
    EXPECT_NE(screens.all().front(), before);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(before->visibleFrame(), (AppKitRect{0, 0, 1920, 1048}));
}

TEST_F(CompanionScreensTest, BearTheKeysThatTheyHaveOnX11) {
    folder.add("card0-DP-1", withBothSerials);
    folder.add("card0-HDMI-A-1", withoutSerial);
    const auto keyOnX11 = [](const char* connector, const QByteArray& edid) {
        return DisplayKeys().update({{QString::fromLatin1(connector), Edid::parse(edid)}})[0];
    };
    EXPECT_EQ(keyAt("DP-1"), keyOnX11("DP-1", withBothSerials));
    EXPECT_EQ(keyAt("DP-1"), keyOnX11("DP-9", withBothSerials)) << "wherever it is plugged in";
    EXPECT_EQ(keyAt("HDMI-1"), keyOnX11("HDMI-1", withoutSerial))
        << "as the X server calls the plug, not the kernel";
    EXPECT_EQ(keyAt("HDMI-A-1"), keyOnX11("HDMI-1", withoutSerial));
    EXPECT_EQ(screens.all().front()->localizedName(), QStringLiteral("Wide 34"));
}

TEST_F(CompanionScreensTest, BearTheKeysThatTheyHaveOnX11AlsoByTheNamesOfAmdsDrivers) {
    folder.add("card0-DP-1", withoutSerial, "amdgpu");
    const auto onX11 = [](const char* connector) {
        return DisplayKeys().update(
            {{QString::fromLatin1(connector), Edid::parse(withoutSerial)}})[0];
    };
    EXPECT_EQ(keyAt("DP-1"), onX11("DisplayPort-0"));
    EXPECT_NE(keyAt("DP-1"), onX11("DP-1"));
}

TEST_F(CompanionScreensTest, HaveTheConnectorsNumberWhereThereIsNoEdid) {
    EXPECT_EQ(keyAt("Virtual-1"), std::nullopt);
    EXPECT_EQ(screens.all().front()->displayID(), displayNumber(QStringLiteral("Virtual-1")));
    EXPECT_EQ(screens.all().front()->localizedName(), QStringLiteral("Virtual remote monitor"));
    EXPECT_EQ(keyAt(""), std::nullopt);
    EXPECT_EQ(screens.all().front()->displayID(),
              displayNumber(QStringLiteral("Red/Virtual remote monitor/0x1")))
        << "then the compositor's own words count";
}

TEST_F(CompanionScreensTest, CountLikeQtWhereTheDesktopCountsPixels) {
    tell("Hello", helloText(displayText().replace(R"("unit":1)", R"("unit":2)")));
    const ScreenPtr screen = screens.all().front();
    EXPECT_EQ(screen->frame().width, 1920);
    EXPECT_EQ(CompanionScreens::unitsPerPoint(*screen), 2);
    EXPECT_EQ(screens.qtSpace(*screen).toQt({0, 980, 200, 100}), (QtRect{0, 0, 100, 50}));
}

TEST_F(CompanionScreensTest, FindTheDisplayThatTheUserWorksOn) {
    const QByteArray two = displayText(true, "[0,0,800,600]", "[0,0,800,600]", "DP-1") + "," +
                           displayText(false, "[800,0,800,600]", "[800,0,800,600]", "DP-2");
    tell("Hello", helloText(two));
    EXPECT_EQ(screens.main(), screens.all()[0]);
    tell("Focus", R"({"focus":)" + windowText(7, "[900,100,300,300]") + "}");
    EXPECT_EQ(screens.main(), screens.all()[1]);
    tell("Displays", R"({"displays":[]})");
    EXPECT_FALSE(screens.all().empty()) << "then Qt's word counts";
}

TEST(CompanionScreens, TakeTheNamesOfThoseInTheSamePlaceForDisplaysWithoutOne) {
    const auto display = [](double x, double width, const char* connector) {
        CompanionDisplay made;
        made.frame = {x, 0, width, 720};
        made.connector = QString::fromLatin1(connector);
        made.product = made.connector.isEmpty() ? QString() : QStringLiteral("Product");
        return made;
    };
    // What a scale of a display comes to is rounded by some.
    std::vector<CompanionDisplay> displays{display(1280, 1279.8, ""), display(0, 1280, ""),
                                           display(2560, 800, ""), display(9000, 1, "Own-1")};
    CompanionScreens::takeNames(displays, {display(0, 1280, "DP-1"), display(1280, 1280, "DP-2"),
                                           display(9000, 1, "DP-3")});
    EXPECT_EQ(displays[0].connector, QStringLiteral("DP-2"));
    EXPECT_EQ(displays[0].product, QStringLiteral("Product"));
    EXPECT_EQ(displays[1].connector, QStringLiteral("DP-1"));
    EXPECT_TRUE(displays[2].connector.isEmpty()) << "another one";
    EXPECT_EQ(displays[3].connector, QStringLiteral("Own-1"));
}

} // namespace tilewright::testing
