#pragma once

#include <Platform/MainLoop.h>
#include <Platform/Screens.h>

#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// The displays as AppKit lists them, which is the primary one first. Main thread only; the loop
/// has to outlive it.
class MacScreens final : public Screens {
    Q_OBJECT

public:
    explicit MacScreens(MainLoop& loop);
    ~MacScreens() override;

    /// Asked of AppKit at each call, so that displays rearranged in the middle of a drag are seen
    /// also before they are announced.
    [[nodiscard]] const std::vector<ScreenPtr>& all() const override;
    [[nodiscard]] ScreenPtr main() const override;
    [[nodiscard]] QtSpace qtSpace(const Screen& screen) const override;

private:
    class MacScreen;
    using List = std::vector<ScreenPtr>;

    /// Lists the displays afresh, keeping the object of each that is as it was.
    void refresh() const;

    MainLoop& loop_;
    mutable std::unique_ptr<const List> screens_;
    /// Lists that callers may still hold: they are valid until the next turn of the loop.
    mutable std::vector<std::unique_ptr<const List>> retired_;
    std::unique_ptr<appkit::Observation> observation_;
};

} // namespace tilewright
