#include "CompanionScreens.h"

#include <QGuiApplication>
#include <algorithm>

namespace tilewright {

namespace {

class CompanionScreen final : public Screen {
public:
    struct Values {
        AppKitRect frame;
        AppKitRect visibleFrame;
        std::optional<quint32> displayID;
        std::optional<QString> persistentUUID;
        QString localizedName;
        CompanionDisplay display;

        friend bool operator==(const Values&, const Values&) = default;
    };

    explicit CompanionScreen(Values values)
        : values_(std::move(values)) {}

    [[nodiscard]] AppKitRect frame() const override { return values_.frame; }
    [[nodiscard]] AppKitRect visibleFrame() const override { return values_.visibleFrame; }
    [[nodiscard]] std::optional<quint32> displayID() const override { return values_.displayID; }
    [[nodiscard]] std::optional<QString> persistentUUID() const override {
        return values_.persistentUUID;
    }
    [[nodiscard]] QString localizedName() const override { return values_.localizedName; }

    [[nodiscard]] const Values& values() const { return values_; }

private:
    Values values_;
};

CompanionRect rectOf(const QRect& rect) {
    return {static_cast<double>(rect.x()), static_cast<double>(rect.y()),
            static_cast<double>(rect.width()), static_cast<double>(rect.height())};
}

std::vector<CompanionDisplay> displaysOfQt() {
    std::vector<CompanionDisplay> displays;
    for (const QScreen* screen : QGuiApplication::screens()) {
        CompanionDisplay& display = displays.emplace_back();
        display.isPrimary = screen == QGuiApplication::primaryScreen();
        display.frame = rectOf(screen->geometry());
        display.workArea = rectOf(screen->availableGeometry());
        display.connector = screen->name();
        display.vendor = screen->manufacturer();
        display.product = screen->model();
        display.serial = screen->serialNumber();
    }
    return displays;
}

/// The compositor's own words for a display.
QString textsOf(const CompanionDisplay& display) {
    return QStringList{display.vendor, display.product, display.serial}.join(u'/');
}

QString nameFor(const CompanionDisplay& display, const DrmConnectors::Connector& connector) {
    if (connector.edid)
        return displayName(connector.x11Name, connector.edid);
    if (!display.product.isEmpty())
        return display.product;
    return connector.x11Name.isEmpty() ? QStringLiteral("Display") : connector.x11Name;
}

/// How much two displays look alike, between 0 and 1, to whom they are but rectangles.
double likeness(const CompanionDisplay& display, const QRect& geometry) {
    const QRectF asQtHasIt(
        display.frame.x / display.unitsPerPoint, display.frame.y / display.unitsPerPoint,
        display.frame.width / display.unitsPerPoint, display.frame.height / display.unitsPerPoint);
    const QRectF shared = asQtHasIt.intersected(QRectF(geometry));
    return shared.width() * shared.height() / std::max(asQtHasIt.width() * asQtHasIt.height(), 1.0);
}

QScreen* qtScreenOf(const CompanionDisplay& display) {
    QScreen* best = QGuiApplication::primaryScreen();
    double most = 0;
    const QList<QScreen*> candidates = QGuiApplication::screens();
    for (QScreen* candidate : candidates) {
        if (!display.connector.isEmpty() && candidate->name() == display.connector)
            return candidate;
        const double shared = likeness(display, candidate->geometry());
        if (shared <= most)
            continue;
        best = candidate;
        most = shared;
    }
    return best;
}

} // namespace

CompanionScreens::CompanionScreens(CompanionState& state, DrmConnectors connectors)
    : state_(state)
    , connectors_(std::move(connectors)) {
    connect(&state_, &CompanionState::displaysChanged, this, [this] {
        isStale_ = false;
        refresh();
    });
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        follow(screen);
        qtChanged();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &CompanionScreens::qtChanged);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &CompanionScreens::qtChanged);
    for (QScreen* screen : QGuiApplication::screens())
        follow(screen);
    refresh();
}

CompanionScreens::~CompanionScreens() = default;

void CompanionScreens::follow(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, &CompanionScreens::qtChanged);
    connect(screen, &QScreen::availableGeometryChanged, this, &CompanionScreens::qtChanged);
}

void CompanionScreens::qtChanged() {
    // What the companion tells counts; but of names it may have none.
    isStale_ = isStale_ || !state_.isConnected();
    refresh();
}

void CompanionScreens::refresh() {
    std::vector<CompanionDisplay> displays =
        isStale_ || state_.displays().empty() ? displaysOfQt() : state_.displays();
    takeNames(displays, displaysOfQt());
    const auto primary = std::find_if(displays.begin(), displays.end(),
                                      [](const auto& display) { return display.isPrimary; });
    if (primary != displays.end())
        std::rotate(displays.begin(), primary, primary + 1);

    std::vector<DrmConnectors::Connector> connectors;
    std::vector<DisplayKeys::Display> known;
    for (const CompanionDisplay& display : displays) {
        connectors.push_back(connectors_.connector(display.connector));
        known.push_back({connectors.back().x11Name, connectors.back().edid});
    }
    const auto uuids = keys_.update(known);
    coordinates_ =
        displays.empty() ? CompanionCoordinates() : CompanionCoordinates(displays.front().frame);

    std::vector<ScreenPtr> screens;
    for (std::size_t i = 0; i < displays.size(); ++i) {
        const CompanionDisplay& display = displays[i];
        const QString& connector = connectors[i].x11Name;
        const CompanionScreen::Values values{
            coordinates_.toAppKit(display.frame),
            coordinates_.toAppKit(display.workArea),
            displayNumber(connector.isEmpty() ? textsOf(display) : connector),
            uuids[i],
            nameFor(display, connectors[i]),
            display};
        const auto same = std::find_if(screens_.begin(), screens_.end(), [&](const ScreenPtr& old) {
            return static_cast<const CompanionScreen&>(*old).values() == values;
        });
        screens.push_back(same == screens_.end() ? std::make_shared<const CompanionScreen>(values)
                                                 : *same);
    }
    if (screens == screens_)
        return;
    screens_ = std::move(screens);
    Q_EMIT screensChanged();
}

void CompanionScreens::takeNames(std::vector<CompanionDisplay>& displays,
                                 const std::vector<CompanionDisplay>& named) {
    for (CompanionDisplay& display : displays) {
        const auto same = std::find_if(named.begin(), named.end(), [&](const auto& other) {
            return CompanionCoordinates::withRoundEdges(display.frame) == other.frame;
        });
        if (!display.connector.isEmpty() || same == named.end())
            continue;
        display.connector = same->connector;
        display.vendor = same->vendor;
        display.product = same->product;
        display.serial = same->serial;
    }
}

ScreenPtr CompanionScreens::main() const {
    if (screens_.empty())
        return nullptr;
    const auto active = state_.lastActive();
    const ScreenPtr holds = active ? at(coordinates_.toAppKit(active->frame).center()) : nullptr;
    return holds ? holds : screens_.front();
}

QtSpace CompanionScreens::qtSpace(const Screen& screen) const {
    const auto* known = dynamic_cast<const CompanionScreen*>(&screen);
    QScreen* qtScreen = known ? qtScreenOf(known->values().display) : nullptr;
    if (!qtScreen)
        return {};
    const AppKitRect frame = screen.frame();
    const QPoint corner = qtScreen->geometry().topLeft();
    return {qtScreen,
            {frame.minX(), frame.maxY()},
            {corner.x(), corner.y()},
            known->values().display.unitsPerPoint};
}

double CompanionScreens::unitsPerPoint(const Screen& screen) {
    const auto* known = dynamic_cast<const CompanionScreen*>(&screen);
    return known ? known->values().display.unitsPerPoint : 1;
}

} // namespace tilewright
