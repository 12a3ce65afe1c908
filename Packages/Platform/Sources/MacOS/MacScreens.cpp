#include "MacScreens.h"

#include "AppKitNotifications.h"
#include "AppKitScreenList.h"
#include "DisplayNumbers.h"

#include <QGuiApplication>
#include <algorithm>
#include <cmath>

namespace tilewright {

/// What was true of a display when it was listed; only the UUID is asked for afresh.
class MacScreens::MacScreen final : public Screen {
public:
    explicit MacScreen(appkit::ScreenFacts facts)
        : facts_(std::move(facts)) {}

    AppKitRect frame() const override { return facts_.frame; }
    AppKitRect visibleFrame() const override { return facts_.visibleFrame; }
    std::optional<quint32> displayID() const override { return facts_.displayID; }
    std::optional<QString> persistentUUID() const override {
        return facts_.displayID ? persistentUUIDOfDisplay(*facts_.displayID) : std::nullopt;
    }
    QString localizedName() const override { return facts_.localizedName; }

    [[nodiscard]] const appkit::ScreenFacts& facts() const { return facts_; }

private:
    const appkit::ScreenFacts facts_;
};

MacScreens::MacScreens(MainLoop& loop)
    : loop_(loop)
    , screens_(std::make_unique<const List>())
    , observation_(appkit::observe(appkit::Notification::screenParametersChanged, [this] {
        refresh();
        Q_EMIT screensChanged();
    })) {}

MacScreens::~MacScreens() = default;

void MacScreens::refresh() const {
    const std::vector<appkit::ScreenFacts> listed = appkit::screens();
    auto known = *screens_;
    auto fresh = std::make_unique<List>();
    fresh->reserve(listed.size());
    for (const appkit::ScreenFacts& facts : listed) {
        const auto same = std::find_if(known.begin(), known.end(), [&](const ScreenPtr& screen) {
            return static_cast<const MacScreen&>(*screen).facts() == facts;
        });
        if (same == known.end()) {
            fresh->push_back(std::make_shared<MacScreen>(facts));
            continue;
        }
        fresh->push_back(std::move(*same));
        // Two displays may be alike in all that is told of them: each keeps its own object.
        known.erase(same);
    }
    if (*fresh == *screens_)
        return;
    if (retired_.empty())
        loop_.post([this] { retired_.clear(); });
    retired_.push_back(std::exchange(screens_, std::move(fresh)));
}

const std::vector<ScreenPtr>& MacScreens::all() const {
    refresh();
    return *screens_;
}

ScreenPtr MacScreens::main() const {
    const std::optional<appkit::ScreenFacts> wanted = appkit::mainScreen();
    if (!wanted)
        return nullptr;
    const std::vector<ScreenPtr>& screens = all();
    const auto found = std::find_if(screens.begin(), screens.end(), [&](const ScreenPtr& screen) {
        return static_cast<const MacScreen&>(*screen).facts() == *wanted;
    });
    return found == screens.end() ? nullptr : *found;
}

QtSpace MacScreens::qtSpace(const Screen& screen) const {
    // Qt counts in the same points, from the top of the primary display.
    const AppKitPoint corner{screen.frame().minX(), screen.frame().maxY()};
    const std::vector<ScreenPtr>& screens = all();
    const double top = screens.empty() ? corner.y : screens.front()->frame().maxY();
    const QtPoint qtCorner{static_cast<int>(std::lround(corner.x)),
                           static_cast<int>(std::lround(top - corner.y))};
    return {QGuiApplication::screenAt({qtCorner.x, qtCorner.y}), corner, qtCorner, 1};
}

} // namespace tilewright
