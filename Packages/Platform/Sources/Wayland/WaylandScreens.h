#pragma once

#include <Platform/MainLoop.h>
#include <Platform/Screens.h>

#include <QPointer>
#include <QScreen>
#include <vector>

namespace tilewright {

/// The displays as Qt's Wayland platform tells of them. One point of AppKit screen space is one of
/// Qt's. They have no identity, since nothing is placed on them. Main thread only; the loop has to
/// outlive it.
class WaylandScreens final : public Screens {
    Q_OBJECT

public:
    explicit WaylandScreens(MainLoop& loop);
    ~WaylandScreens() override;

    [[nodiscard]] const std::vector<ScreenPtr>& all() const override { return screens_; }
    [[nodiscard]] ScreenPtr main() const override;
    [[nodiscard]] QtSpace qtSpace(const Screen& screen) const override;

    /// A point of Qt's in AppKit screen space.
    [[nodiscard]] AppKitPoint toAppKit(QPoint point) const;

private:
    void follow(QScreen* screen);
    void changeNoticed();
    void refresh();

    MainLoop& loop_;
    std::vector<ScreenPtr> screens_;
    ScopedTimer settling_;
};

} // namespace tilewright
