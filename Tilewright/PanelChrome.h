#pragma once

#include <QMargins>
#include <QPalette>
#include <QPixmap>
#include <QRect>

class QPainter;

namespace tilewright {

/// What surrounds the panel's content: a rounded ground with a hairline and a soft shadow where the
/// desktop blends windows, a square one without shadow where it does not. Lengths are in points.
class PanelChrome {
public:
    /// Whether the desktop blends translucent windows.
    void setBlending(bool blends) { blends_ = blends; }
    [[nodiscard]] bool blends() const { return blends_; }

    /// The room that the shadow needs around the ground.
    [[nodiscard]] QMargins margins() const;
    /// Paints shadow, ground and hairline into a window of this size.
    void paint(QPainter& painter, const QRect& window, const QPalette& palette);

private:
    void paintShadow(QPainter& painter, const QRect& window);

    bool blends_ = false;
    /// The shadow of a small panel, of which larger ones are stretched; made on first use.
    QPixmap shadow_;
};

} // namespace tilewright
