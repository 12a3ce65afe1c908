#include <TilewrightUI/Symbols.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

const QStringList& names() {
    static const QStringList list =
        QStringLiteral(
            "accessibility arrow.down.left arrow.down.right arrow.up.left arrow.up.right "
            "checkmark.circle.fill checkmark.shield.fill chevron.down chevron.up.chevron.down "
            "cup.and.saucer cup.and.saucer.fill doc.badge.plus exclamationmark.shield.fill "
            "exclamationmark.triangle.fill folder gearshape list.bullet.rectangle pencil plus "
            "rectangle.center.inset.filled rectangle.split.2x1 rectangle.split.3x1 "
            "square.and.arrow.down square.dashed square.grid.2x2 square.grid.3x3.square trash")
            .split(u' ');
    return list;
}

/// How much of the picture is covered, as a share of its area.
double coverage(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
    return sum / (image.width() * image.height());
}

/// The strongest pixel's opacity.
int strongest(const QImage& image) {
    int result = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            result = std::max(result, qAlpha(image.pixel(x, y)));
    }
    return result;
}

TEST(Symbols, EveryNameHasADrawing) {
    for (const QString& name : names())
        EXPECT_TRUE(symbols::exists(name)) << name.toStdString();
    EXPECT_FALSE(symbols::exists(QStringLiteral("no.such.symbol")));
    EXPECT_FALSE(symbols::exists(QString()));
}

TEST(Symbols, AreDrawnAtEverySizeInTheColourAskedFor) {
    for (const QString& name : names()) {
        for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
            const QImage image = symbols::pixmap(name, 16, Qt::red, ratio)
                                     .toImage()
                                     .convertToFormat(QImage::Format_ARGB32);
            ASSERT_EQ(image.width(), qRound(16 * ratio)) << name.toStdString();
            EXPECT_GT(coverage(image), 0.04) << name.toStdString();
            EXPECT_LT(coverage(image), 0.85) << name.toStdString();
            EXPECT_GT(strongest(image), 200) << name.toStdString() << " is faint at " << ratio;
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, image.height() / 2);
                if (pixel.alpha() > 128) {
                    EXPECT_EQ(pixel.rgb(), QColor(Qt::red).rgb()) << name.toStdString();
                }
            }
        }
    }
}

TEST(Symbols, StayInsideTheirSquare) {
    for (const QString& name : names()) {
        const QImage image = symbols::pixmap(name, 40, Qt::black, 1).toImage();
        for (int i = 0; i < 40; ++i) {
            for (const QPoint& edge : {QPoint(i, 0), QPoint(i, 39), QPoint(0, i), QPoint(39, i)})
                EXPECT_LT(qAlpha(image.pixel(edge)), 255) << name.toStdString();
        }
    }
}

TEST(Symbols, OfTwoTonesPutTheMarkOnTheGround) {
    const QImage image =
        symbols::pixmap(QStringLiteral("exclamationmark.shield.fill"), 40, Qt::white, 1, Qt::blue)
            .toImage()
            .convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(image.pixelColor(20, 16), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(11, 16), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
}

TEST(Symbols, OfTwoTonesInOneColourCutTheMarkOut) {
    const QImage image =
        symbols::pixmap(QStringLiteral("exclamationmark.shield.fill"), 40, Qt::blue, 1)
            .toImage()
            .convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(image.pixelColor(20, 16).alpha(), 0);
    EXPECT_EQ(image.pixelColor(11, 16), QColor(Qt::blue));
}

TEST(Symbols, FilledAndOutlinedCupDifferInsideTheCup) {
    const auto inside = [](const char* name) {
        return symbols::pixmap(QString::fromLatin1(name), 22, Qt::black, 1)
            .toImage()
            .pixelColor(9, 10)
            .alpha();
    };
    EXPECT_EQ(inside("cup.and.saucer"), 0);
    EXPECT_EQ(inside("cup.and.saucer.fill"), 255);
}

TEST(Symbols, AreRedrawnRatherThanEnlargedAtScaleTwo) {
    for (const QString& name : names()) {
        const QImage once = symbols::pixmap(name, 16, Qt::black, 1).toImage();
        const QImage twice = symbols::pixmap(name, 16, Qt::black, 2).toImage();
        EXPECT_NE(once.scaled(32, 32).convertToFormat(QImage::Format_ARGB32),
                  twice.copy().convertToFormat(QImage::Format_ARGB32))
            << name.toStdString();
    }
}

TEST(Symbols, PaintOnWholePixels) {
    const auto painted = [](double offset) {
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        symbols::paint(painter, QRectF(8 + offset, 8 + offset, 20, 20),
                       QStringLiteral("square.grid.2x2"), Qt::black);
        return image;
    };
    EXPECT_EQ(painted(0), painted(0.3));
}

TEST(Symbols, IconsRenderThemselvesAtEachSize) {
    const QIcon icon = symbols::icon(QStringLiteral("cup.and.saucer"), Qt::black);
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        const QPixmap pixmap = icon.pixmap(QSize(size, size));
        EXPECT_EQ(pixmap.width(), qRound(size * pixmap.devicePixelRatio()));
        EXPECT_GT(coverage(pixmap.toImage()), 0.04);
        EXPECT_GT(strongest(pixmap.toImage()), 200);
    }
}

TEST(Symbols, TheProgramsIconHasTheSizesThatDesktopsShow) {
    const QIcon icon = symbols::applicationIcon();
    for (const int side : {16, 32, 48}) {
        EXPECT_TRUE(icon.availableSizes().contains(QSize(side, side))) << side;
        const QImage image = icon.pixmap(QSize(side, side), 1.0).toImage();
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "its corners are round";
        // The large tile, at its upper left.
        const QColor tile = image.pixelColor(side * 40 / 128, side * 36 / 128);
        EXPECT_GT(tile.red() - tile.blue(), 100) << side;
    }
}

TEST(Symbols, OfUnknownNamesPaintNothing) {
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    symbols::paint(painter, QRectF(0, 0, 16, 16), QStringLiteral("none"), Qt::black);
    EXPECT_EQ(strongest(image), 0);
}

} // namespace
} // namespace tilewright
