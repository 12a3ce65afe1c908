#pragma once

#include <Platform/PanelSurface.h>

#include <QPixmap>

namespace tilewright {

/// What surrounds the panel's content: a rounded ground with a hairline and a soft shadow where the
/// desktop blends windows, a square one without shadow where it does not.
class RoundedPanelChrome final : public PanelChrome {
public:
    [[nodiscard]] QMargins margins(PanelRendering rendering) const override;
    void paint(QPainter& painter, const QRect& surface, const QPalette& palette,
               PanelRendering rendering) override;

private:
    void paintShadow(QPainter& painter, const QRect& surface);

    /// The shadow of a small panel, of which larger ones are stretched; made on first use.
    QPixmap shadow_;
};

} // namespace tilewright
