#pragma once

#include "Screens.h"

#include <QUuid>
#include <chrono>
#include <vector>

namespace tilewright {

/// An sRGB colour; each channel and the opacity from 0 to 1, the channels not multiplied by it.
struct OverlayColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 0;

    friend bool operator==(const OverlayColor&, const OverlayColor&) = default;
};

/// A line along a tile's edge; it lies over the fill.
struct OverlayPictureLine {
    double width = 0;
    OverlayColor color;

    friend bool operator==(const OverlayPictureLine&, const OverlayPictureLine&) = default;
};

/// One tile of the overlay, at rest in the state that it is in or on its way to: a rounded
/// rectangle with a border inside its edge, beside that a light line, and beside that a dark one,
/// without which it would be lost on some grounds. Lengths are points of the display, places are
/// measured from its top-left corner, y downward.
struct OverlayPictureTile {
    /// The zone's id: the same tile in the next picture. Several tiles may bear one.
    QUuid id;
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double cornerRadius = 0;
    OverlayColor fill;
    /// Lies over the fill.
    OverlayColor border;
    double borderWidth = 0;
    OverlayPictureLine light;
    OverlayPictureLine dark;
    /// Of the tile as a whole.
    double opacity = 1;
    bool isHighlighted = false;

    friend bool operator==(const OverlayPictureTile&, const OverlayPictureTile&) = default;
};

/// What an overlay shows on a display, for desktops that draw it by themselves.
struct OverlayPicture {
    /// The display whose whole frame it covers.
    ScreenPtr display;
    /// In drawing order: later ones lie on top. Tiles too small to be seen are left out.
    std::vector<OverlayPictureTile> tiles;
    /// How long a tile takes from one state to the other, along the ease-out curve whose control
    /// points are (0, 0) and (0.58, 1); zero where the user wants no motion.
    std::chrono::milliseconds transition{0};

    friend bool operator==(const OverlayPicture&, const OverlayPicture&) = default;
};

} // namespace tilewright
