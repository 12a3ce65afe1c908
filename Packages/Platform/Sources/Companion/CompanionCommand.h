#pragma once

#include "CompanionMessage.h"

#include <Platform/OverlayPicture.h>

#include <QMargins>
#include <QString>
#include <array>
#include <chrono>
#include <optional>
#include <vector>

// What this program has a companion do. Numbers are in the companion's units, as in its messages.

namespace tilewright {

/// One tile of the overlay.
struct CompanionTile {
    /// Measured from the corner of the overlay's area.
    CompanionRect place;
    double cornerRadius = 0;
    OverlayColor fill;
    OverlayColor border;
    double borderWidth = 0;
    /// Beside the border, inward, in this order.
    std::array<OverlayPictureLine, 2> lines;
    double opacity = 1;

    friend bool operator==(const CompanionTile&, const CompanionTile&) = default;
};

/// The overlay as it is to look from now on.
struct CompanionOverlay {
    CompanionRect area;
    std::chrono::milliseconds transition{0};
    std::vector<CompanionTile> tiles;

    friend bool operator==(const CompanionOverlay&, const CompanionOverlay&) = default;
};

/// The item in the desktop's bar.
struct CompanionItem {
    /// The file name, without its ending, of one of the icons that the companion brings along.
    QString icon;
    QString name;

    friend bool operator==(const CompanionItem&, const CompanionItem&) = default;
};

/// This program's own panel window: how it is known, and where it belongs.
struct CompanionPanel {
    bool isShown = false;
    QString title;
    /// Where the top-left corner of its window belongs.
    CompanionPoint corner;
    /// The room around its ground in that window. This and what follows is for companions that know
    /// no corner.
    QMargins margins;
    /// Where its ground has to fit.
    CompanionRect area;
    /// The item that it belongs to, or an empty rectangle at a point.
    CompanionRect anchor;

    friend bool operator==(const CompanionPanel&, const CompanionPanel&) = default;
};

} // namespace tilewright
