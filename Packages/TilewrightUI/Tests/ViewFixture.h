#pragma once

#include "FakePlatform.h"

#include <TilewrightUI/Look.h>
#include <WindowManager/LayoutStore.h>

#include <QApplication>
#include <QImage>
#include <QLayout>
#include <QWidget>
#include <gtest/gtest.h>

namespace tilewright::testing {

/// Tests of views on a fake desktop, with motion on.
class ViewFixture : public ::testing::Test {
protected:
    ViewFixture() { look::setPrefersReducedMotion(false); }

    /// Runs what the loop has queued: the views are up to date afterwards.
    void settle() {
        desktop.platform.fakeMainLoop.runPosted();
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }

    /// One display; its key is "display-" and its number.
    static std::shared_ptr<FakeScreen> screen(quint32 number, AppKitRect frame,
                                              const QString& name) {
        FakeScreen::Values values;
        values.displayID = number;
        values.frame = frame;
        values.localizedName = name;
        return makeScreen(values);
    }

    /// A layout of the user's own with one zone for each rectangle.
    static ZoneLayout customLayout(const QString& name, const std::vector<QRectF>& zones) {
        ZoneLayout layout{QUuid::createUuid(), name, QStringLiteral("square.dashed"), false, {}};
        for (const QRectF& zone : zones)
            layout.zones.push_back({QUuid::createUuid(), QStringLiteral("Zone"), zone.x(), zone.y(),
                                    zone.width(), zone.height()});
        return layout;
    }

    /// The widget as it looks at a scale, on a white ground.
    static QImage picture(QWidget& widget, double scale) {
        QImage image(widget.size() * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::white);
        widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    }

    /// A child's place in the coordinates of a widget that holds it.
    static QRect place(const QWidget* child, const QWidget* holder) {
        return {child->mapTo(holder, QPoint()), child->size()};
    }

    FakeDesktop desktop;
};

/// The colour over another one.
inline QColor over(const QColor& top, const QColor& bottom) {
    const auto mix = [&](float a, float b) { return b + ((a - b) * top.alphaF()); };
    return QColor::fromRgbF(mix(top.redF(), bottom.redF()), mix(top.greenF(), bottom.greenF()),
                            mix(top.blueF(), bottom.blueF()));
}

/// Compares with room for the rounding of one blending step each.
inline void expectNear(const QColor& seen, const QColor& wanted, const char* what) {
    EXPECT_NEAR(seen.red(), wanted.red(), 3) << what;
    EXPECT_NEAR(seen.green(), wanted.green(), 3) << what;
    EXPECT_NEAR(seen.blue(), wanted.blue(), 3) << what;
}

/// Sets the application's font for as long as it lives.
class FontSize {
public:
    explicit FontSize(double factor)
        : before_(QApplication::font()) {
        QFont font = before_;
        font.setPointSizeF(font.pointSizeF() * factor);
        QApplication::setFont(font);
    }
    ~FontSize() { QApplication::setFont(before_); }

private:
    QFont before_;
};

} // namespace tilewright::testing
