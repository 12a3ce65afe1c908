#pragma once

#include <QRect>
#include <QSize>
#include <cstdint>
#include <optional>
#include <vector>

namespace tilewright {

/// The strip of the X screen that a panel keeps for itself along one of the screen's edges.
struct X11Strut {
    enum class Edge { left, right, top, bottom };
    Edge edge = Edge::top;
    /// How far it reaches from the edge of the X screen, in pixels.
    int thickness = 0;
    /// Where along the edge it starts and ends, both inside.
    int start = 0;
    int end = 0;

    friend bool operator==(const X11Strut&, const X11Strut&) = default;
};

/// Reads `_NET_WM_STRUT_PARTIAL` or, where that is empty, `_NET_WM_STRUT`.
[[nodiscard]] std::vector<X11Strut> strutsFrom(const std::vector<std::uint32_t>& partial,
                                               const std::vector<std::uint32_t>& whole,
                                               QSize screen);

/// Reads one of the areas in `_NET_WORKAREA` or `_GTK_WORKAREAS_Dn`; none where there are not as
/// many. Numbers beyond any X screen are cut to its utmost.
[[nodiscard]] std::optional<QRect> workAreaAt(const std::vector<std::uint32_t>& items,
                                              std::size_t index);

/// What the window manager says of the space that panels leave.
struct X11WorkAreaHints {
    /// `_GTK_WORKAREAS_Dn` of the current desktop: one area or more for each monitor; empty where
    /// there is none.
    std::vector<QRect> perMonitor;
    /// The current desktop's part of `_NET_WORKAREA`: one for all monitors together.
    std::optional<QRect> together;
    std::vector<X11Strut> struts;
};

/// What panels leave of each monitor, in the monitors' order. Never empty for a monitor that is
/// not: what would leave nothing is taken for a mistake.
[[nodiscard]] std::vector<QRect> visibleAreas(const std::vector<QRect>& monitors, QSize screen,
                                              const X11WorkAreaHints& hints);

} // namespace tilewright
