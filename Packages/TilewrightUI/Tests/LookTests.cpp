#include <TilewrightUI/Look.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QProxyStyle>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

QPalette light() {
    return QPalette(QColor(0xee, 0xee, 0xf1));
}
QPalette dark() {
    return QPalette(QColor(0x2a, 0x2b, 0x2f));
}

double channel(double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double luminance(const QColor& color) {
    return (0.2126 * channel(color.redF())) + (0.7152 * channel(color.greenF())) +
           (0.0722 * channel(color.blueF()));
}
/// The contrast of a colour, as it looks over the ground, with that ground.
double contrast(const QColor& color, const QColor& ground) {
    const auto mix = [&](float a, float b) { return b + ((a - b) * color.alphaF()); };
    const QColor seen =
        QColor::fromRgbF(mix(color.redF(), ground.redF()), mix(color.greenF(), ground.greenF()),
                         mix(color.blueF(), ground.blueF()));
    const double a = luminance(seen);
    const double b = luminance(ground);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Look, AmberIsTheOneAccent) {
    const QColor amber = look::tilewrightAmber();
    EXPECT_NEAR(amber.redF(), 0.82, 0.001);
    EXPECT_NEAR(amber.greenF(), 0.55, 0.001);
    EXPECT_NEAR(amber.blueF(), 0.20, 0.001);
    EXPECT_FLOAT_EQ(amber.alphaF(), 1);
    EXPECT_NEAR(look::tilewrightAmber(0.28).alphaF(), 0.28, 0.001);
}

TEST(Look, TellsDarkPalettesFromLightOnes) {
    EXPECT_FALSE(look::isDark(light()));
    EXPECT_TRUE(look::isDark(dark()));
}

/// Gives the application the palette back that it had.
class ApplicationPalette : public ::testing::Test {
protected:
    ~ApplicationPalette() override { QApplication::setPalette(QPalette()); }
    static QColor color(QPalette::ColorRole role) { return QApplication::palette().color(role); }
};

TEST_F(ApplicationPalette, HasTheAccentAndIsQtsOtherwise) {
    const QPalette before = QApplication::palette();
    look::applyPalette(false);
    EXPECT_EQ(color(QPalette::Highlight), look::tilewrightAmber());
    EXPECT_GE(contrast(color(QPalette::HighlightedText), look::tilewrightAmber()), 4.5);
    EXPECT_EQ(color(QPalette::Window), before.color(QPalette::Window));
    EXPECT_EQ(color(QPalette::Text), before.color(QPalette::Text));
}

TEST_F(ApplicationPalette, IsDarkWhileThatIsWishedFor) {
    const QPalette before = QApplication::palette();
    ASSERT_FALSE(look::isDark(before));
    for (int time = 0; time < 2; ++time) {
        look::applyPalette(true);
        EXPECT_TRUE(look::isDark(QApplication::palette()));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            EXPECT_GE(contrast(color(role), color(QPalette::Window)), 7);
        EXPECT_EQ(color(QPalette::Highlight), look::tilewrightAmber());
    }
    look::applyPalette(false);
    EXPECT_EQ(color(QPalette::Window), before.color(QPalette::Window));
    EXPECT_EQ(color(QPalette::Text), before.color(QPalette::Text));
}

TEST(Look, TextsCanBeReadOnLightAndDarkGround) {
    for (const QPalette& palette : {light(), dark()}) {
        const QColor ground = palette.color(QPalette::Window);
        EXPECT_GE(contrast(look::primary(palette), ground), 7);
        EXPECT_GE(contrast(look::secondary(palette), ground), 4.5);
        EXPECT_GE(contrast(look::accentText(palette), ground), 4.5);
        EXPECT_GE(contrast(look::red(palette), ground), 4.5);
    }
}

TEST(Look, FillsAreFaint) {
    for (const QPalette& palette : {light(), dark()}) {
        const QColor ground = palette.color(QPalette::Window);
        for (const QColor& fill :
             {look::quaternary(palette), look::separator(palette), look::cardFill(palette)}) {
            EXPECT_GT(contrast(fill, ground), 1.02);
            EXPECT_LT(contrast(fill, ground), 2);
        }
    }
}

TEST(Look, TextStylesAreRelativeToTheApplicationsFont) {
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSizeF(26);
    QApplication::setFont(large);
    EXPECT_DOUBLE_EQ(look::font(look::TextStyle::headline).pointSizeF(), 26);
    EXPECT_DOUBLE_EQ(look::font(look::TextStyle::callout).pointSizeF(), 24);
    EXPECT_LT(look::font(look::TextStyle::caption).pointSizeF(), 24);
    EXPECT_DOUBLE_EQ(look::font(look::TextStyle::caption2).pointSizeF(),
                     look::font(look::TextStyle::caption).pointSizeF());
    EXPECT_GE(look::font(look::TextStyle::headline).weight(), QFont::DemiBold);
    large.setPixelSize(26);
    QApplication::setFont(large);
    EXPECT_EQ(look::font(look::TextStyle::callout).pixelSize(), 24);
    QApplication::setFont(before);
}

TEST(Look, PlainTextDoublesAmpersands) {
    EXPECT_EQ(look::plainText(QStringLiteral("A & B && <b>")), QStringLiteral("A && B &&&& <b>"));
}

TEST(Look, BordersStayInsideTheEdge) {
    QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    look::strokeInside(painter, QRectF(10, 10, 20, 20), 4, Qt::black, 2);
    EXPECT_EQ(qAlpha(image.pixel(20, 9)), 0);
    EXPECT_EQ(qAlpha(image.pixel(20, 10)), 255);
    EXPECT_EQ(qAlpha(image.pixel(20, 11)), 255);
    EXPECT_EQ(qAlpha(image.pixel(20, 12)), 0);
    EXPECT_EQ(qAlpha(image.pixel(29, 20)), 255);
    EXPECT_EQ(qAlpha(image.pixel(30, 20)), 0);
}

TEST(Look, BordersOfEmptyRectanglesPaintNothing) {
    QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    look::strokeInside(painter, QRectF(2, 2, 0, 4), 4, Qt::black, 1);
    EXPECT_EQ(qAlpha(image.pixel(2, 4)), 0);
}

TEST(Look, ContinuousCornersFillTheirRectangle) {
    const QRectF rect(3, 4, 100, 60);
    const QPainterPath path = look::continuousRoundedRect(rect, 5);
    EXPECT_EQ(path.boundingRect(), rect);
    EXPECT_FALSE(path.contains(QPointF(3.3, 4.3)));
    EXPECT_TRUE(path.contains(QPointF(6, 7)));
    EXPECT_EQ(look::continuousRoundedRect(rect, 0).boundingRect(), rect);
    EXPECT_EQ(look::continuousRoundedRect(rect, 500).boundingRect(), rect);
}

TEST(Look, ReducedMotionFollowsWhatTheDesktopTells) {
    look::setPrefersReducedMotion(true);
    EXPECT_TRUE(look::prefersReducedMotion());
    look::setPrefersReducedMotion(false);
    EXPECT_FALSE(look::prefersReducedMotion());
}

TEST(Look, ReducedMotionIsTheStylesMatterWhereTheDesktopTellsNothing) {
    class Style final : public QProxyStyle {
    public:
        explicit Style(int duration)
            : duration_(duration) {}
        int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                      QStyleHintReturn* data) const override {
            return hint == SH_Widget_Animation_Duration
                       ? duration_
                       : QProxyStyle::styleHint(hint, option, widget, data);
        }

    private:
        int duration_;
    };
    const QString before = QApplication::style()->name();
    look::setPrefersReducedMotion(std::nullopt);
    QApplication::setStyle(new Style(0));
    EXPECT_TRUE(look::prefersReducedMotion());
    QApplication::setStyle(new Style(200));
    EXPECT_FALSE(look::prefersReducedMotion());
    QApplication::setStyle(before);
    look::setPrefersReducedMotion(false);
}

} // namespace
} // namespace tilewright
