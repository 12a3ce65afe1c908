#include "Screens.h"

namespace tilewright {

Screen::~Screen() = default;
Screens::~Screens() = default;

} // namespace tilewright
