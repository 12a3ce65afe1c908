#pragma once

#include <Platform/Platform.h>

#include <QByteArray>
#include <memory>

namespace tilewright {

/// A session of GNOME on Wayland. What a client may not see or do there, a companion inside the
/// shell tells and does; until it is there, panel, settings and keep-awake work. Needs Qt's
/// application object, and has to end before it.
class GnomePlatform final : public Platform {
public:
    GnomePlatform();
    ~GnomePlatform() override;

    StatusItem& statusItem() override;
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override;
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override;

private:
    struct Parts;
    explicit GnomePlatform(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace tilewright
