#pragma once

namespace tilewright {

/// Makes rows of tabs tell assistive tools which tab is chosen, and that it has the focus only
/// while the row has it; Qt calls the chosen one focused at all times. To be called before such a
/// row is asked for what it is; further calls do nothing.
void installSymbolTabBarAccessibility();

} // namespace tilewright
