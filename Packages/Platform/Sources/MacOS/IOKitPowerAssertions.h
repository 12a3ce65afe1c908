#pragma once

#include <Platform/PowerAssertions.h>

namespace tilewright {

/// Power assertions of the system's power management. Main thread only.
class IOKitPowerAssertions final : public PowerAssertions {
public:
    [[nodiscard]] PowerAssertionResult create(const QString& type, quint32 level,
                                              const QString& name) override;
    void release(PowerAssertionID id) override;
};

} // namespace tilewright
