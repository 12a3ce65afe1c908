#include "SnapSettings.h"

namespace tilewright {

namespace {

SnapModifier storedModifier(const QString& key) {
    const std::optional<QString> stored = Platform::current().userDefaults.string(key);
    if (!stored)
        return SnapModifier::control;
    return snapModifierFromRawValue(*stored).value_or(SnapModifier::control);
}

} // namespace

SnapSettings& SnapSettings::shared() {
    return SharedInstance<SnapSettings>::get();
}

SnapSettings::SnapSettings()
    : key_(QStringLiteral("snapActivationModifier"))
    , modifier_(*this, storedModifier(key_)) {}

SnapSettings::~SnapSettings() = default;

void SnapSettings::setModifier(SnapModifier modifier) {
    modifier_ = modifier;
    Platform::current().userDefaults.setString(rawValue(modifier), key_);
}

} // namespace tilewright
