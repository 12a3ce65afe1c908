#pragma once

#include <QString>
#include <QStringList>

namespace tilewright {

/// The companion as files, which GNOME Shell loads at its start from a folder with the extension's
/// name. A package installs one that obeys the installed program; a program that runs from where it
/// was built brings along one of its own, which obeys that one, for the user to install.
class GnomeCompanionFiles {
public:
    /// The extension that a package installs, and the one that a build brings along: neither is in
    /// the other's way.
    [[nodiscard]] static QString packagedName();
    [[nodiscard]] static QString buildsName();

    /// Those of the running program, in the places where the shell looks.
    [[nodiscard]] static GnomeCompanionFiles ofThisProgram();

    /// `folders` are where the shell looks for extensions, the user's own first, in the order of
    /// their importance; `offer` is the folder of the one that a build brings along, which need not
    /// be there.
    GnomeCompanionFiles(QStringList folders, QString offer);

    /// By this name the shell knows the extension of this program.
    [[nodiscard]] QString name() const;
    [[nodiscard]] bool areInstalled() const;
    /// Whether `install` could help.
    [[nodiscard]] bool canBeInstalled() const;
    /// Where `install` puts them; removing that folder undoes it.
    [[nodiscard]] QString place() const;
    /// Copies those that the build brings along to where the shell finds them. False when that
    /// failed; then the shell takes none of them for an extension.
    [[nodiscard]] bool install() const;

private:
    const QStringList folders_;
    const QString offer_;
};

} // namespace tilewright
