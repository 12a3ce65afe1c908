#include "X11PlaceChanges.h"

namespace tilewright {

void X11PlaceChanges::configured(std::uint32_t window, QPoint place) {
    const auto known = places_.find(window);
    if (known == places_.end()) {
        if (places_.size() < most)
            places_.emplace(window, Place{place});
        return;
    }
    known->second.isLeft = known->second.isLeft || known->second.first != place;
    hasMoved_ = hasMoved_ || known->second.isLeft;
}

void X11PlaceChanges::clear() {
    places_.clear();
    hasMoved_ = false;
}

std::vector<std::uint32_t> X11PlaceChanges::moved() const {
    std::vector<std::uint32_t> windows;
    for (const auto& [window, place] : places_) {
        if (place.isLeft)
            windows.push_back(window);
    }
    return windows;
}

} // namespace tilewright
