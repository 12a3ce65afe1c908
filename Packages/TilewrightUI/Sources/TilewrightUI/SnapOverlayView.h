#pragma once

#include "OverlayTile.h"
#include "SnapOverlayModel.h"

#include <Platform/MainLoop.h>
#include <Platform/OverlaySurface.h>

#include <QWidget>
#include <functional>
#include <vector>

namespace tilewright {

/// Draws a layout's zones as rounded, translucent tiles over the whole of the view, the highlighted
/// one in the accent colour.
///
/// Follows its model: it redraws when the layout or the highlighted zone changes, only the tiles
/// that differ, and lets the highlight fade over while it is shown; hidden, it changes at once. No
/// timer runs and no buffer is kept while nothing fades. Under transparency what it does not draw
/// is cleared, so it has to lie alone on its surface. Main thread only.
class SnapOverlayView final : public QWidget, public OverlayView {
    Q_OBJECT

public:
    /// The model has to outlive the view.
    explicit SnapOverlayView(const SnapOverlayModel& model, QWidget* parent = nullptr);
    ~SnapOverlayView() override;

    [[nodiscard]] OverlayPicture picture(const ScreenPtr& display) const override;
    void onPictureChanged(std::function<void()> callback) override;
    [[nodiscard]] QWidget& widget() override { return *this; }
    void setRepaint(std::function<void(const QRegion&)> repaint) override;
    void setShown(bool isShown) override;
    void setRendering(OverlayRendering rendering) override;
    [[nodiscard]] QRegion outline() override;
    [[nodiscard]] QRegion blurArea() override;
    void onAreasChanged(std::function<void()> callback) override;
    void finishAnimations() override;

    /// How often tiles have been laid out: once for each layout and size. For measurements.
    [[nodiscard]] int layoutCount() const { return layoutCount_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    enum class Transition { fading, immediate };
    /// What a change asks for.
    struct Change {
        QRegion repaint;
        bool areas = false;
    };

    /// Takes over what the model says.
    [[nodiscard]] Change synchronize(Transition transition);
    /// The tiles as they are to be, all fades ended.
    [[nodiscard]] std::vector<OverlayTile> tilesOfModel(const QSizeF& size) const;
    /// Lays out the tiles anew where the zones or the size have changed. Answers whether a tile has
    /// another place now.
    [[nodiscard]] bool replaceTiles();
    /// Does something to a tile's fade and notes what follows from it.
    template<class Action>
    void changeFade(OverlayTile& tile, Change& change, Action action) const;
    void carryOut(const Change& change);
    /// Whether anybody can see the view, by itself or as somebody else's pixels.
    [[nodiscard]] bool isShown() const { return isShownAsPixels_ || isVisible(); }
    void repaintLater(const QRegion& region);
    void advanceFades();
    void runFramesWhileFading();
    [[nodiscard]] Transition preferredTransition() const;
    /// The union of a region of each tile's, as the model is now.
    template<class RegionOf>
    [[nodiscard]] QRegion united(RegionOf regionOf);
    /// Makes transparent what no tile is about to replace.
    void clear(QPainter& painter, const QRegion& exposed) const;

    const SnapOverlayModel& model_;
    OverlayRendering rendering_ = OverlayRendering::translucent;
    std::vector<OverlayTile> tiles_;
    /// What the tiles were laid out for.
    std::vector<Zone> zones_;
    QSize size_;
    int layoutCount_ = 0;
    Refresh refresh_;
    ScopedTimer frames_;
    std::function<void(const QRegion&)> repaint_;
    bool isShownAsPixels_ = false;
    std::function<void()> onAreasChanged_;
    std::function<void()> onPictureChanged_;
};

} // namespace tilewright
