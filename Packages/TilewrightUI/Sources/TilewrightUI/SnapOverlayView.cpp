#include "SnapOverlayView.h"

#include "Look.h"

#include <Platform/Platform.h>

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace tilewright {

namespace {

bool areInTheSamePlaces(const std::vector<OverlayTile>& some,
                        const std::vector<OverlayTile>& others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const OverlayTile& a, const OverlayTile& b) {
                          return a.zoneID() == b.zoneID() && a.frame() == b.frame();
                      });
}

/// Tells the tiles that may be drawn without regard to the others.
void tellPlaces(std::vector<OverlayTile>& tiles) {
    for (OverlayTile& tile : tiles) {
        const bool shares = std::any_of(tiles.begin(), tiles.end(), [&](const OverlayTile& other) {
            return &other != &tile && other.area().intersects(tile.area());
        });
        tile.place = shares ? OverlayTile::Place::shared : OverlayTile::Place::alone;
    }
}

} // namespace

SnapOverlayView::SnapOverlayView(const SnapOverlayModel& model, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , refresh_([this] {
        carryOut(synchronize(preferredTransition()));
        if (onPictureChanged_)
            onPictureChanged_();
    }) {
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    refresh_.observe(model);
    carryOut(synchronize(Transition::immediate));
}

SnapOverlayView::~SnapOverlayView() = default;

void SnapOverlayView::setRendering(OverlayRendering rendering) {
    if (rendering == rendering_)
        return;
    rendering_ = rendering;
    carryOut({rect(), true});
}

OverlayPicture SnapOverlayView::picture(const ScreenPtr& display) const {
    OverlayPicture picture;
    picture.display = display;
    const AppKitRect frame = display->frame();
    for (const OverlayTile& tile : tilesOfModel({frame.width, frame.height})) {
        if (const auto values = tile.values())
            picture.tiles.push_back(*values);
    }
    if (!look::prefersReducedMotion())
        picture.transition = HighlightFade::duration;
    return picture;
}

void SnapOverlayView::onPictureChanged(std::function<void()> callback) {
    onPictureChanged_ = std::move(callback);
}

void SnapOverlayView::setRepaint(std::function<void(const QRegion&)> repaint) {
    repaint_ = std::move(repaint);
}

void SnapOverlayView::setShown(bool isShown) {
    // What changed while nobody could see it must not fade now.
    if (std::exchange(isShownAsPixels_, isShown) != isShown)
        finishAnimations();
}

void SnapOverlayView::repaintLater(const QRegion& region) {
    if (repaint_)
        repaint_(region);
    else
        update(region);
}

template<class RegionOf>
QRegion SnapOverlayView::united(RegionOf regionOf) {
    // A surface asks before the model's change has come round the loop. That its areas change is
    // no news to it then.
    repaintLater(synchronize(preferredTransition()).repaint);
    QRegion region;
    for (const OverlayTile& tile : tiles_)
        region += regionOf(tile);
    return region.intersected(rect());
}

QRegion SnapOverlayView::outline() {
    return united([](const OverlayTile& tile) { return tile.outline(); });
}

QRegion SnapOverlayView::blurArea() {
    return united([](const OverlayTile& tile) { return tile.shape(); });
}

void SnapOverlayView::onAreasChanged(std::function<void()> callback) {
    onAreasChanged_ = std::move(callback);
}

void SnapOverlayView::finishAnimations() {
    carryOut(synchronize(Transition::immediate));
}

SnapOverlayView::Transition SnapOverlayView::preferredTransition() const {
    return isShown() && !look::prefersReducedMotion() ? Transition::fading : Transition::immediate;
}

template<class Action>
void SnapOverlayView::changeFade(OverlayTile& tile, Change& change, Action action) const {
    const double valueBefore = tile.fade.value();
    const int widthBefore = tile.opaqueBorderWidth();
    action(tile.fade);
    if (tile.fade.value() != valueBefore)
        change.repaint += tile.area();
    if (rendering_ == OverlayRendering::shaped && tile.opaqueBorderWidth() != widthBefore)
        change.areas = true;
}

void SnapOverlayView::carryOut(const Change& change) {
    if (!change.repaint.isEmpty())
        repaintLater(change.repaint);
    if (change.areas && onAreasChanged_)
        onAreasChanged_();
}

SnapOverlayView::Change SnapOverlayView::synchronize(Transition transition) {
    Change change;
    if (replaceTiles())
        change = {rect(), true};
    const MainLoop::Interval now = Platform::current().mainLoop.now();
    for (OverlayTile& tile : tiles_) {
        const bool highlighted = tile.zoneID() == model_.highlightedZoneID();
        changeFade(tile, change, [&](HighlightFade& fade) {
            if (transition == Transition::immediate) {
                fade.finish(highlighted);
                return;
            }
            // Frames are counted from the latest start, so that its fade ends on time; the fades
            // that run already take this for a frame of theirs.
            if (fade.isHighlighted() != highlighted)
                frames_.reset();
            fade.start(highlighted, now);
            fade.advance(now);
        });
    }
    runFramesWhileFading();
    return change;
}

std::vector<OverlayTile> SnapOverlayView::tilesOfModel(const QSizeF& size) const {
    std::vector<OverlayTile> tiles;
    tiles.reserve(model_.layout().zones.size());
    for (const Zone& zone : model_.layout().zones) {
        OverlayTile& tile = tiles.emplace_back(zone, size);
        tile.fade.finish(zone.id == model_.highlightedZoneID());
    }
    return tiles;
}

bool SnapOverlayView::replaceTiles() {
    const std::vector<Zone>& zones = model_.layout().zones;
    if (size_ == size() && zones_ == zones)
        return false;
    size_ = size();
    zones_ = zones;
    ++layoutCount_;
    std::vector<OverlayTile> tiles = tilesOfModel(size_);
    if (areInTheSamePlaces(tiles, tiles_))
        return false;
    tellPlaces(tiles);
    for (OverlayTile& tile : tiles) {
        const bool wasHighlighted =
            std::any_of(tiles_.begin(), tiles_.end(), [&](const OverlayTile& old) {
                return old.zoneID() == tile.zoneID() && old.fade.isHighlighted();
            });
        tile.fade.finish(wasHighlighted);
    }
    tiles_ = std::move(tiles);
    return true;
}

void SnapOverlayView::runFramesWhileFading() {
    const bool fades = std::any_of(tiles_.begin(), tiles_.end(),
                                   [](const OverlayTile& tile) { return tile.fade.isRunning(); });
    if (!fades)
        frames_.reset();
    else if (!frames_.isActive())
        frames_ = ScopedTimer(Platform::current().mainLoop.scheduleRepeating(
            HighlightFade::frame, [this] { advanceFades(); }));
}

void SnapOverlayView::advanceFades() {
    const MainLoop::Interval now = Platform::current().mainLoop.now();
    Change change;
    for (OverlayTile& tile : tiles_)
        changeFade(tile, change, [now](HighlightFade& fade) { fade.advance(now); });
    runFramesWhileFading();
    carryOut(change);
}

void SnapOverlayView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    carryOut(synchronize(preferredTransition()));
}

void SnapOverlayView::showEvent(QShowEvent* event) {
    // What changed while nobody could see it must not fade now.
    if (!event->spontaneous())
        finishAnimations();
    QWidget::showEvent(event);
}

void SnapOverlayView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous())
        finishAnimations();
    QWidget::hideEvent(event);
}

void SnapOverlayView::paintEvent(QPaintEvent* event) {
    // The surface may repaint at once, before the model's change has come round the loop.
    Change change = synchronize(preferredTransition());
    change.repaint -= event->region();
    carryOut(change);

    QPainter painter(this);
    const bool isShaped = rendering_ == OverlayRendering::shaped;
    if (!isShaped)
        clear(painter, event->region());
    for (const OverlayTile& tile : tiles_) {
        if (!event->region().intersects(tile.area()))
            continue;
        if (isShaped)
            tile.paintOpaque(painter);
        else
            tile.paint(painter);
    }
}

void SnapOverlayView::clear(QPainter& painter, const QRegion& exposed) const {
    const double scale = painter.deviceTransform().m11();
    QRegion pixels;
    for (const QRect& rect : exposed) {
        pixels +=
            QRectF(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale)
                .toAlignedRect();
    }
    for (const OverlayTile& tile : tiles_)
        pixels -= tile.replacedPixels(scale);
    painter.save();
    painter.scale(1 / scale, 1 / scale);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& rect : pixels)
        painter.fillRect(rect, Qt::transparent);
    painter.restore();
}

} // namespace tilewright
