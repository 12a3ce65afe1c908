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
        QObject::connect(
            &item, &StatusItem::activated,
            [this](const std::optional<AppKitRect>& place) { places.push_back(place); });
    }
    /// Where the item says it is when it is clicked.
    [[nodiscard]] std::optional<AppKitRect> placeOfClick(std::optional<AppKitRect> frame) {
        appKit.statusItem->frame = frame;
        appKit.statusItem->clicked();
        return places.back();
    }

    FakeMacSystem system;
    FakeAppKit appKit;
    MacStatusItem item;
    std::vector<std::optional<AppKitRect>> places;
};

} // namespace

TEST_F(MacStatusItemTest, TellsWhereItWasClickedToTheHalfPointsOfADenseDisplay) {
    const AppKitRect frame{1200.5, 876.5, 24, 23.5};
    EXPECT_EQ(placeOfClick(frame), frame);
}

TEST_F(MacStatusItemTest, TellsNoPlaceWhereItIsInNoMenuBar) {
    EXPECT_EQ(placeOfClick(std::nullopt), std::nullopt);
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
    {
        const MacStatusItem item;
        EXPECT_TRUE(appKit.statusItem);
    }
    EXPECT_FALSE(appKit.statusItem);
}
