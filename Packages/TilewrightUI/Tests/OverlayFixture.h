#pragma once

#include <FakePlatform.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/SnapOverlayModel.h>
#include <TilewrightUI/SnapOverlayView.h>

#include <QCoreApplication>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <cmath>
#include <gtest/gtest.h>

namespace tilewright::testing {

inline Zone makeZone(double x, double y, double width, double height) {
    return {QUuid::createUuid(), QStringLiteral("Zone"), x, y, width, height};
}

inline ZoneLayout makeLayout(std::vector<Zone> zones) {
    return {QUuid::createUuid(), QStringLiteral("Layout"), QStringLiteral("rectangle"), false,
            std::move(zones)};
}

/// A colour in straight numbers from 0 to 1, so that tests work out by themselves what they expect.
struct Shade {
    double red;
    double green;
    double blue;
};

inline constexpr Shade white{1, 1, 1};
inline constexpr Shade black{0, 0, 0};
inline constexpr Shade amber{0.82, 0.55, 0.20};

/// The top colour at an opacity over what is beneath.
inline Shade over(const Shade& top, double opacity, const Shade& beneath) {
    const auto blend = [opacity](double a, double b) {
        return (a * opacity) + (b * (1 - opacity));
    };
    return {blend(top.red, beneath.red), blend(top.green, beneath.green),
            blend(top.blue, beneath.blue)};
}

inline Shade shadeOf(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF()};
}

inline QColor colorOf(const Shade& shade) {
    return QColor::fromRgbF(static_cast<float>(shade.red), static_cast<float>(shade.green),
                            static_cast<float>(shade.blue));
}

/// Whether the colours are the same but for the rounding of 8-bit channels.
inline ::testing::AssertionResult looksLike(const Shade& actual, const Shade& expected) {
    const double difference =
        std::max({std::abs(actual.red - expected.red), std::abs(actual.green - expected.green),
                  std::abs(actual.blue - expected.blue)});
    if (difference <= 2.0 / 255)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << actual.red << ", " << actual.green << ", " << actual.blue << ") is not ("
           << expected.red << ", " << expected.green << ", " << expected.blue << ")";
}

/// Notes which parts of a widget are repainted.
class PaintRecorder final : public QObject {
public:
    explicit PaintRecorder(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            region += static_cast<QPaintEvent*>(event)->region();
            ++count;
        }
        return false;
    }
    void forget() {
        region = {};
        count = 0;
    }

    QRegion region;
    int count = 0;
};

/// A model and a view of it, on a desktop whose time stands still.
class OverlayFixture : public ::testing::Test {
protected:
    OverlayFixture() {
        look::setPrefersReducedMotion(false);
        view.resize(1000, 800);
    }

    /// The overlay alone, at a number of pixels for each point.
    QImage picture(double scale = 1) {
        const QSizeF size = QSizeF(view.size()) * scale;
        QImage image(size.toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        view.render(&image, {}, {}, {});
        image.setDevicePixelRatio(1);
        return image;
    }
    /// The overlay over a ground of the same size.
    static QImage blended(const QImage& overlay, const QImage& ground) {
        QImage image = ground;
        QPainter painter(&image);
        painter.drawImage(0, 0, overlay);
        return image;
    }
    QImage pictureOver(const Shade& ground, double scale = 1) {
        const QImage overlay = picture(scale);
        QImage image(overlay.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(colorOf(ground));
        return blended(overlay, image);
    }

    void show(std::vector<Zone> zones) {
        model.setLayout(makeLayout(std::move(zones)));
        desktop.platform.fakeMainLoop.runPosted();
    }
    void highlight(const std::optional<QUuid>& id) {
        model.setHighlightedZoneID(id);
        desktop.platform.fakeMainLoop.runPosted();
    }
    [[nodiscard]] const Zone& zone(std::size_t index) const {
        return model.layout().zones.at(index);
    }
    [[nodiscard]] FakeMainLoop& loop() { return desktop.platform.fakeMainLoop; }

    FakeDesktop desktop;
    SnapOverlayModel model{makeLayout({}), std::nullopt};
    SnapOverlayView view{model};
};

} // namespace tilewright::testing
