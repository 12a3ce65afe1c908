#include <Tilewright/RoundedPanelChrome.h>
#include <TilewrightUI/Look.h>

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

constexpr QSize surface(200, 160);

QImage painted(PanelRendering rendering, const QPalette& palette) {
    QImage image(surface, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    QPainter painter(&image);
    RoundedPanelChrome().paint(painter, image.rect(), palette, rendering);
    return image;
}

} // namespace

TEST(RoundedPanelChrome, IsASquareGroundAndAHairlineWhereTheDesktopDoesNotBlend) {
    const QPalette palette;
    EXPECT_TRUE(RoundedPanelChrome().margins(PanelRendering::opaque).isNull());
    const QImage image = painted(PanelRendering::opaque, palette);
    EXPECT_EQ(image.pixelColor(1, 1), look::panelFill(palette));
    EXPECT_EQ(image.pixelColor(100, 80), look::panelFill(palette));
    EXPECT_NE(image.pixelColor(0, 80), look::panelFill(palette)) << "the hairline";
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 255);
}

TEST(RoundedPanelChrome, IsARoundedGroundInASoftShadowWhereItBlends) {
    const QPalette palette;
    const QMargins margins = RoundedPanelChrome().margins(PanelRendering::translucent);
    EXPECT_GT(margins.top(), 0);
    const QImage image = painted(PanelRendering::translucent, palette);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "no shadow reaches the corner";
    const QRect ground = QRect(QPoint(), surface).marginsRemoved(margins);
    EXPECT_EQ(image.pixelColor(ground.center()), look::panelFill(palette));
    EXPECT_LT(image.pixelColor(ground.topLeft()).alpha(), 255) << "rounded";
    const int below = image.pixelColor(ground.center().x(), ground.bottom() + 3).alpha();
    const int fartherBelow = image.pixelColor(ground.center().x(), ground.bottom() + 12).alpha();
    EXPECT_GT(below, fartherBelow);
    EXPECT_GT(fartherBelow, 0);
}

} // namespace tilewright
