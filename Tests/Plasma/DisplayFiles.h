#pragma once

#include <QRect>
#include <QString>
#include <vector>

namespace tilewright::testing {

/// Writes into a home what KWin 5 keeps its displays in, where they are without a screen: their
/// frames in KWin's units, how many pixels lie along a unit of each, how many each of them
/// has, and which one is the primary one.
void writeDisplaysOfKwin5(const QString& home, const std::vector<QRect>& frames,
                          const std::vector<double>& scales, QSize pixels, std::size_t primary);

/// The same for KWin 6, where they are windows of an X server.
void writeDisplaysOfKwin6(const QString& home, const std::vector<QRect>& frames,
                          const std::vector<double>& scales, QSize pixels, std::size_t primary);

} // namespace tilewright::testing
