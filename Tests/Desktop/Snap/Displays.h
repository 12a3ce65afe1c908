#pragma once

#include <DesktopSession.h>

#include <WindowManager/ZoneLayout.h>

#include <vector>

namespace tilewright::testing {

/// A layout with these zones, given as fractions.
[[nodiscard]] ZoneLayout customLayout(const QString& name,
                                      const std::vector<std::array<double, 4>>& zones);

/// Splits an Xvfb screen into two monitors, for whoever asks RandR. Waits until it is done.
void splitIntoMonitors(DesktopSession& desktop, const QRect& left, const QRect& right);

/// Moves the right one of two real outputs. Waits until it is done.
void moveRightOutput(DesktopSession& desktop, QPoint place);

/// The monitors that RandR tells of, in its order: the primary first, where there is one.
[[nodiscard]] std::vector<QRect> monitors(const DesktopSession& desktop);

/// Writes a layouts file in which the displays, the primary first, use these layouts. Before the
/// program starts.
void assignLayouts(DesktopSession& desktop, const std::vector<ZoneLayout>& layouts);

} // namespace tilewright::testing
