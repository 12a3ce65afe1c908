#include "WaylandScreens.h"

#include <QGuiApplication>
#include <algorithm>

namespace tilewright {

namespace {

/// Compositors tell of one change in several steps.
constexpr std::chrono::milliseconds rest{50};

class WaylandScreen final : public Screen {
public:
    struct Values {
        QRect frame;
        QRect visibleFrame;
        QString name;
        /// The lower edge of the primary display, where AppKit screen space begins.
        int origin = 0;

        friend bool operator==(const Values&, const Values&) = default;
    };

    WaylandScreen(Values values, QScreen* screen)
        : values_(std::move(values))
        , screen_(screen) {}

    [[nodiscard]] AppKitRect frame() const override { return toAppKit(values_.frame); }
    [[nodiscard]] AppKitRect visibleFrame() const override {
        return toAppKit(values_.visibleFrame);
    }
    [[nodiscard]] std::optional<quint32> displayID() const override { return std::nullopt; }
    [[nodiscard]] std::optional<QString> persistentUUID() const override { return std::nullopt; }
    [[nodiscard]] QString localizedName() const override { return values_.name; }

    [[nodiscard]] const Values& values() const { return values_; }
    [[nodiscard]] QScreen* screen() const { return screen_; }

private:
    [[nodiscard]] AppKitRect toAppKit(const QRect& rect) const {
        return {static_cast<double>(rect.x()),
                static_cast<double>(values_.origin - rect.y() - rect.height()),
                static_cast<double>(rect.width()), static_cast<double>(rect.height())};
    }

    Values values_;
    QPointer<QScreen> screen_;
};

int originOfAppKitSpace() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary ? primary->geometry().y() + primary->geometry().height() : 0;
}

WaylandScreen::Values valuesOf(const QScreen& screen) {
    const QString model = screen.model();
    return {screen.geometry(), screen.availableGeometry(), model.isEmpty() ? screen.name() : model,
            originOfAppKitSpace()};
}

} // namespace

WaylandScreens::WaylandScreens(MainLoop& loop)
    : loop_(loop) {
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        follow(screen);
        changeNoticed();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &WaylandScreens::changeNoticed);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &WaylandScreens::changeNoticed);
    for (QScreen* screen : QGuiApplication::screens())
        follow(screen);
    refresh();
}

WaylandScreens::~WaylandScreens() = default;

void WaylandScreens::follow(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, &WaylandScreens::changeNoticed);
    connect(screen, &QScreen::availableGeometryChanged, this, &WaylandScreens::changeNoticed);
}

void WaylandScreens::changeNoticed() {
    settling_ = ScopedTimer(loop_.scheduleOnce(rest, [this] { refresh(); }));
}

void WaylandScreens::refresh() {
    QList<QScreen*> found = QGuiApplication::screens();
    std::stable_partition(found.begin(), found.end(), [](const QScreen* screen) {
        return screen == QGuiApplication::primaryScreen();
    });
    std::vector<ScreenPtr> screens;
    for (QScreen* screen : found) {
        WaylandScreen::Values values = valuesOf(*screen);
        const auto known =
            std::find_if(screens_.begin(), screens_.end(), [&](const ScreenPtr& old) {
                const auto& same = static_cast<const WaylandScreen&>(*old);
                return same.screen() == screen && same.values() == values;
            });
        screens.push_back(known != screens_.end()
                              ? *known
                              : std::make_shared<WaylandScreen>(std::move(values), screen));
    }
    if (screens == screens_)
        return;
    screens_ = std::move(screens);
    Q_EMIT screensChanged();
}

ScreenPtr WaylandScreens::main() const {
    return screens_.empty() ? nullptr : screens_.front();
}

QtSpace WaylandScreens::qtSpace(const Screen& screen) const {
    const auto* known = dynamic_cast<const WaylandScreen*>(&screen);
    if (!known)
        return {};
    const AppKitRect frame = screen.frame();
    return {known->screen(),
            {frame.minX(), frame.maxY()},
            {known->values().frame.x(), known->values().frame.y()},
            1};
}

AppKitPoint WaylandScreens::toAppKit(QPoint point) const {
    // The pointer is the middle of the point that holds it.
    return {point.x() + 0.5, originOfAppKitSpace() - point.y() - 0.5};
}

} // namespace tilewright
