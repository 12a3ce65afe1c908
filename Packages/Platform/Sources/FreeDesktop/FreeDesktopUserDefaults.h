#pragma once

#include <Platform/UserDefaults.h>

#include <QSettings>

namespace tilewright {

/// The user defaults in $XDG_CONFIG_HOME/Tilewright/Tilewright.conf. A value is in that file, for
/// every process, when `setString` returns.
class FreeDesktopUserDefaults final : public UserDefaults {
public:
    FreeDesktopUserDefaults();

    [[nodiscard]] std::optional<QString> string(const QString& key) const override;
    void setString(const QString& value, const QString& key) override;

private:
    QSettings settings_;
};

} // namespace tilewright
