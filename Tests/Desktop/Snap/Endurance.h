#pragma once

namespace tilewright::testing {

/// Drags a window from zone to zone, again and again, and compares what the program holds before
/// and after: memory, X resources, file descriptors, windows.
void expectNothingPilesUp(int drags);

} // namespace tilewright::testing
