#pragma once

#include "SnapModifier.h"

#include <Platform/ObservableObject.h>
#include <Platform/Platform.h>

namespace tilewright {

/// The user's choice of the activation modifier, kept in the user defaults. Main thread only.
class SnapSettings final : public ObservableObject {
    Q_OBJECT

public:
    [[nodiscard]] static SnapSettings& shared();
    ~SnapSettings() override;

    /// Published. `control` unless the user chose another.
    [[nodiscard]] SnapModifier modifier() const { return modifier_.value(); }
    /// Publishes the choice, then stores it, also when it is the present one.
    void setModifier(SnapModifier modifier);

private:
    friend class SharedInstance<SnapSettings>;
    SnapSettings();

    const QString key_;
    Published<SnapModifier> modifier_;
};

} // namespace tilewright
