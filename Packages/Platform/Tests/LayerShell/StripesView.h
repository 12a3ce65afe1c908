#pragma once

#include <Platform/OverlaySurface.h>

#include <QPaintEvent>
#include <QPainter>
#include <QWidget>
#include <functional>
#include <optional>

namespace tilewright::testing {

/// Four upright stripes of equal width, half transparent, of which one may be bright.
class StripesView final : public OverlayView {
public:
    static constexpr int count = 4;

    OverlayPicture picture(const ScreenPtr&) const override { return {}; }
    void onPictureChanged(std::function<void()>) override {}
    QWidget& widget() override { return canvas_; }
    void setRepaint(std::function<void(const QRegion&)> repaint) override {
        repaint_ = std::move(repaint);
    }
    void setShown(bool isShown) override { isShown_ = isShown; }
    void setRendering(OverlayRendering) override {}
    QRegion outline() override { return {}; }
    QRegion blurArea() override { return {}; }
    void onAreasChanged(std::function<void()>) override {}
    void finishAnimations() override { ++endings; }

    /// Makes another stripe the bright one.
    void highlight(std::optional<int> stripe) {
        for (const std::optional<int>& one : {bright_, stripe}) {
            if (one && repaint_ && bright_ != stripe)
                repaint_(areaOf(*one));
        }
        bright_ = stripe;
    }
    [[nodiscard]] QRect areaOf(int stripe) const {
        const int left = canvas_.width() * stripe / count;
        const int right = canvas_.width() * (stripe + 1) / count;
        return {left, 0, right - left, canvas_.height()};
    }
    /// All of it, as it should be seen on a display with so many pixels for each point.
    [[nodiscard]] QImage expected(QSize size, QSize pixels, double scale) {
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        image.setDevicePixelRatio(scale);
        canvas_.resize(size);
        canvas_.render(&image, {}, {}, {});
        image.setDevicePixelRatio(1);
        return image;
    }
    [[nodiscard]] bool isShown() const { return isShown_; }

    int endings = 0;

private:
    class Canvas final : public QWidget {
    public:
        explicit Canvas(StripesView& view)
            : view_(view) {}

    protected:
        void paintEvent(QPaintEvent*) override {
            QPainter painter(this);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            for (int stripe = 0; stripe < count; ++stripe)
                painter.fillRect(view_.areaOf(stripe), view_.bright_ == stripe
                                                           ? QColor(250, 180, 40, 200)
                                                           : QColor(10, 20, 60 * stripe, 128));
        }

    private:
        StripesView& view_;
    };

    std::optional<int> bright_;
    std::function<void(const QRegion&)> repaint_;
    bool isShown_ = false;
    Canvas canvas_{*this};
};

} // namespace tilewright::testing
