#include "MacTestPlatform.h"

#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

class MacStatusItemTest : public ::testing::Test {
protected:
    MacStatusItemTest() {
        appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25),
                          makeFacts({1440, -200, 1920, 1080}, 2)};
        QObject::connect(&item, &StatusItem::activated,
                         [this](const QRect& place) { places.push_back(place); });
    }
    /// Where the item says it is when it is clicked.
    [[nodiscard]] QRect placeOfClick(std::optional<AppKitRect> frame) {
        appKit.statusItem->frame = frame;
        appKit.statusItem->clicked();
        return places.back();
    }

    FakeMacSystem system;
    FakeAppKit appKit;
    FakeMainLoop loop;
    MacScreens screens{loop};
    MacStatusItem item{screens};
    std::vector<QRect> places;
};

} // namespace

TEST_F(MacStatusItemTest, TellsWhereItWasClickedFromTheTopOfThePrimaryDisplay) {
    EXPECT_EQ(placeOfClick(AppKitRect{1200, 875, 24, 25}), QRect(1200, 0, 24, 25));
    // In the menu bar of the second display, whose top is 20 points below the first one's.
    EXPECT_EQ(placeOfClick(AppKitRect{3000, 855, 24, 25}), QRect(3000, 20, 24, 25));
    // Half points of a dense display: the whole item is in the answer.
    EXPECT_EQ(placeOfClick(AppKitRect{1200.5, 876.5, 24, 23.5}), QRect(1200, 0, 25, 24));
}

TEST_F(MacStatusItemTest, TellsNoPlaceWhereItIsInNoMenuBar) {
    EXPECT_TRUE(placeOfClick(std::nullopt).isNull());
    appKit.screens.clear();
    EXPECT_TRUE(placeOfClick(AppKitRect{1200, 875, 24, 25}).isNull());
}

TEST_F(MacStatusItemTest, ShowsASymbolAtTwiceItsPointsInPixels) {
    QPixmap drawing(72, 72);
    drawing.fill(Qt::transparent);
    QPainter(&drawing).fillRect(18, 18, 36, 36, Qt::black);
    item.setSymbol(u"cup.and.saucer"_s, QIcon(drawing));
    ASSERT_EQ(appKit.statusItem->images.size(), 1U);
    EXPECT_EQ(appKit.statusItem->side, 18);
    const QImage image = QImage::fromData(appKit.statusItem->images.front(), "PNG");
    EXPECT_GE(image.width(), 36);
    EXPECT_EQ(image.width(), image.height());
    // A template is its transparency.
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() / 2).alpha(), 255);
}

TEST_F(MacStatusItemTest, BearsItsName) {
    item.setAccessibleName(u"Tilewright"_s);
    EXPECT_EQ(appKit.statusItem->accessibleName, u"Tilewright"_s);
}

TEST(MacStatusItemEnd, TakesTheItemOutOfTheMenuBar) {
    const FakeMacSystem system;
    const FakeAppKit appKit;
    FakeMainLoop loop;
    const MacScreens screens(loop);
    {
        const MacStatusItem item(screens);
        EXPECT_TRUE(appKit.statusItem);
    }
    EXPECT_FALSE(appKit.statusItem);
}
