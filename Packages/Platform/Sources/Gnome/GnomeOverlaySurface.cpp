#include "GnomeOverlaySurface.h"

namespace tilewright {

namespace {

/// A display as large as it is in Qt's points, for a view whose lengths are such ones.
class ScreenInPoints final : public Screen {
public:
    ScreenInPoints(ScreenPtr screen, double unitsPerPoint)
        : screen_(std::move(screen))
        , unitsPerPoint_(unitsPerPoint) {}

    [[nodiscard]] AppKitRect frame() const override { return inPoints(screen_->frame()); }
    [[nodiscard]] AppKitRect visibleFrame() const override {
        return inPoints(screen_->visibleFrame());
    }
    [[nodiscard]] std::optional<quint32> displayID() const override { return screen_->displayID(); }
    [[nodiscard]] std::optional<QString> persistentUUID() const override {
        return screen_->persistentUUID();
    }
    [[nodiscard]] QString localizedName() const override { return screen_->localizedName(); }

private:
    [[nodiscard]] AppKitRect inPoints(const AppKitRect& rect) const {
        return {rect.x / unitsPerPoint_, rect.y / unitsPerPoint_, rect.width / unitsPerPoint_,
                rect.height / unitsPerPoint_};
    }

    const ScreenPtr screen_;
    const double unitsPerPoint_;
};

OverlayPictureLine lineFor(const OverlayPictureLine& line, double units) {
    return {line.width * units, line.color};
}

CompanionTile tileFor(const OverlayPictureTile& tile, double units) {
    return {CompanionCoordinates::withRoundEdges(tile.x * units, tile.y * units,
                                                 (tile.x + tile.width) * units,
                                                 (tile.y + tile.height) * units),
            tile.cornerRadius * units,
            tile.fill,
            tile.border,
            tile.borderWidth * units,
            {lineFor(tile.light, units), lineFor(tile.dark, units)},
            tile.opacity};
}

} // namespace

GnomeOverlaySurface::GnomeOverlaySurface(const CompanionState& state,
                                         const CompanionScreens& screens, CompanionOutbox& outbox,
                                         std::shared_ptr<OverlayView> view)
    : state_(state)
    , screens_(screens)
    , outbox_(outbox)
    , view_(std::move(view)) {
    view_->onPictureChanged(life_.guard([this] {
        if (isShown_)
            show();
    }));
}

GnomeOverlaySurface::~GnomeOverlaySurface() {
    orderOut();
}

void GnomeOverlaySurface::setScreen(const ScreenPtr& screen) {
    if (!screen)
        return;
    screen_ = screen;
    if (isShown_)
        show();
}

void GnomeOverlaySurface::orderFront() {
    isShown_ = true;
    show();
}

void GnomeOverlaySurface::orderOut() {
    if (!isShown_)
        return;
    isShown_ = false;
    if (state_.isConnected())
        outbox_.hideOverlay();
}

void GnomeOverlaySurface::show() {
    if (!screen_ || !state_.isConnected())
        return;
    const double units = CompanionScreens::unitsPerPoint(*screen_);
    const OverlayPicture picture =
        view_->picture(units == 1 ? screen_ : std::make_shared<ScreenInPoints>(screen_, units));
    CompanionOverlay overlay;
    overlay.area = screens_.coordinates().toCompanion(screen_->frame());
    overlay.transition = picture.transition;
    for (const OverlayPictureTile& tile : picture.tiles)
        overlay.tiles.push_back(tileFor(tile, units));
    outbox_.showOverlay(overlay);
}

} // namespace tilewright
