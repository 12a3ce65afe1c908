#pragma once

#include <Platform/Geometry.h>

#include <QString>
#include <optional>
#include <vector>

namespace tilewright::appkit {

/// What AppKit tells of one display, in AppKit screen space.
struct ScreenFacts {
    AppKitRect frame;
    AppKitRect visibleFrame;
    std::optional<quint32> displayID;
    QString localizedName;

    friend bool operator==(const ScreenFacts&, const ScreenFacts&) = default;
};

/// The displays as AppKit lists them now: the primary one first.
[[nodiscard]] std::vector<ScreenFacts> screens();
/// The display with the key window; none without displays.
[[nodiscard]] std::optional<ScreenFacts> mainScreen();

} // namespace tilewright::appkit
