#pragma once

#include "ScopedVariable.h"

#include <chrono>
#include <optional>

namespace tilewright {

/// Qt connects to the session bus on its own account, for assistive technologies and the tray, and
/// waits without a bound for one that takes connections and says nothing. A bus that has not
/// answered when this is made counts as none for Qt, for as long as the process runs; the
/// environment is left as it was. Made before Qt's application object, destroyed after that was.
class BusPrecaution {
public:
    /// How long the bus has to answer; one that works takes a thousandth of it.
    static constexpr std::chrono::milliseconds bound{300};

    BusPrecaution();
    BusPrecaution(const BusPrecaution&) = delete;
    BusPrecaution& operator=(const BusPrecaution&) = delete;
    ~BusPrecaution();

private:
    std::optional<ScopedVariable> silence_;
};

} // namespace tilewright
