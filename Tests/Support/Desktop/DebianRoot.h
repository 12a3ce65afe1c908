#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace tilewright::testing {

/// The Debian package of this build, and a folder that dpkg takes for the whole system: one that
/// has of what the package needs whatever this machine has, in its versions.
class DebianRoot {
public:
    /// Builds the package; nothing is installed yet.
    DebianRoot();

    [[nodiscard]] QString path() const { return folder_.path(); }
    /// The package's file.
    [[nodiscard]] QString package() const { return package_; }
    /// The same package as another version, and its companion with it.
    [[nodiscard]] QString packageAsVersion(const QString& version) const;
    void install(const QString& package) const { dpkg({QStringLiteral("--install"), package}); }
    void purge() const { dpkg({QStringLiteral("--purge"), QStringLiteral("tilewright")}); }
    /// The files that are installed, as they would be called if this were the whole system.
    [[nodiscard]] QStringList installed() const;
    [[nodiscard]] QString program() const { return path() + QStringLiteral("/usr/bin/tilewright"); }
    /// What XDG_DATA_DIRS is for those who live there.
    [[nodiscard]] QString dataFolders() const {
        return path() + QStringLiteral("/usr/share:/usr/local/share:/usr/share");
    }

private:
    /// What dpkg has on record of the packages that the package names as needed.
    [[nodiscard]] QString whatItNeeds() const;
    void dpkg(const QStringList& arguments) const;

    QTemporaryDir folder_;
    QString package_;
};

} // namespace tilewright::testing
