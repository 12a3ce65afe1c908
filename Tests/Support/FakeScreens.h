#pragma once

#include <Platform/Screens.h>

namespace tilewright::testing {

/// A display whose values a test sets. Visible frame: the frame, unless set otherwise.
class FakeScreen final : public Screen {
public:
    struct Values {
        AppKitRect frame{0, 0, 1440, 900};
        std::optional<AppKitRect> visibleFrame = std::nullopt;
        std::optional<quint32> displayID = 1;
        std::optional<QString> persistentUUID = std::nullopt;
        QString localizedName = QStringLiteral("Display");
    };

    explicit FakeScreen(Values initial)
        : values(std::move(initial)) {}

    AppKitRect frame() const override { return values.frame; }
    AppKitRect visibleFrame() const override { return values.visibleFrame.value_or(values.frame); }
    std::optional<quint32> displayID() const override { return values.displayID; }
    std::optional<QString> persistentUUID() const override { return values.persistentUUID; }
    QString localizedName() const override { return values.localizedName; }

    Values values;
};

/// A display list that a test sets.
class FakeScreens final : public Screens {
    Q_OBJECT

public:
    const std::vector<ScreenPtr>& all() const override { return screens_; }
    ScreenPtr main() const override { return main_; }
    /// As on X11: corners are where they are, and Qt scales about them.
    QtSpace qtSpace(const Screen& screen) const override {
        const AppKitPoint corner{screen.frame().minX(), screen.frame().maxY()};
        const double top = screens_.front()->frame().maxY();
        return {nullptr,
                corner,
                {static_cast<int>(corner.x), static_cast<int>(top - corner.y)},
                qtScale};
    }

    /// Replaces the list; the first is the primary display and, unless set apart, the main one.
    void setScreens(std::vector<ScreenPtr> screens) {
        screens_ = std::move(screens);
        main_ = screens_.empty() ? nullptr : screens_.front();
    }
    void setMain(ScreenPtr screen) { main_ = std::move(screen); }
    /// Replaces the list and announces it.
    void change(std::vector<ScreenPtr> screens) {
        setScreens(std::move(screens));
        Q_EMIT screensChanged();
    }

    double qtScale = 1;

private:
    std::vector<ScreenPtr> screens_;
    ScreenPtr main_;
};

/// A display with these values.
inline std::shared_ptr<FakeScreen> makeScreen(FakeScreen::Values values = {}) {
    return std::make_shared<FakeScreen>(std::move(values));
}

} // namespace tilewright::testing
