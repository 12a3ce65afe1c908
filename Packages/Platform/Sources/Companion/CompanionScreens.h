#pragma once

#include "CompanionCoordinates.h"
#include "CompanionState.h"
#include "DrmConnectors.h"

#include <FreeDesktop/DisplayKeys.h>
#include <Platform/Screens.h>

#include <QPointer>
#include <QScreen>

namespace tilewright {

/// The displays as a companion tells of them; before it has told anything, as Qt does. They bear
/// the keys that they have in an X11 session. Main thread only.
class CompanionScreens final : public Screens {
    Q_OBJECT

public:
    /// The state has to outlive this.
    explicit CompanionScreens(CompanionState& state, DrmConnectors connectors = DrmConnectors());
    ~CompanionScreens() override;

    [[nodiscard]] const std::vector<ScreenPtr>& all() const override { return screens_; }
    [[nodiscard]] ScreenPtr main() const override;
    [[nodiscard]] QtSpace qtSpace(const Screen& screen) const override;

    /// How the screen spaces lie among the companion's units now.
    [[nodiscard]] const CompanionCoordinates& coordinates() const { return coordinates_; }
    /// How many of the companion's units are one point of Qt's on a display of the list.
    [[nodiscard]] static double unitsPerPoint(const Screen& screen);
    /// Gives displays without a name that of the one in the same place. Some compositors keep the
    /// names from their companions, and tell them to their clients.
    static void takeNames(std::vector<CompanionDisplay>& displays,
                          const std::vector<CompanionDisplay>& named);

private:
    void follow(QScreen* screen);
    void qtChanged();
    void refresh();

    CompanionState& state_;
    const DrmConnectors connectors_;
    DisplayKeys keys_;
    CompanionCoordinates coordinates_;
    std::vector<ScreenPtr> screens_;
    /// What the companion told holds no longer: it is gone, and the displays have changed.
    bool isStale_ = false;
};

} // namespace tilewright
