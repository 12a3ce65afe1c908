#pragma once

#include <QString>
#include <QStringList>

namespace tilewright {

/// The files without which KWin tells this program of no keys. KWin 5 needs four effects of ours,
/// which it looks for at its start; some of KWin 6 an entry among the applications that asks for
/// the keys on behalf of this very program, which is found within seconds. A package installs both;
/// a program that runs from where it was built brings its own along, for the user to install.
class KWinKeyFiles {
public:
    /// Those of the running program, in the places where KWin looks.
    [[nodiscard]] static KWinKeyFiles ofThisProgram();

    /// `folders` are where KWin looks for data of all kinds, the user's own first; `offer` is the
    /// folder of the effects that a build brings along, which need not be there; `program` is this
    /// program's own file.
    KWinKeyFiles(QStringList folders, QString offer, QString program);

    [[nodiscard]] bool areEffectsInstalled() const;
    /// Whether `installEffects` could help.
    [[nodiscard]] bool canEffectsBeInstalled() const;
    /// Copies those that the build brings along to where KWin finds them for this user. False when
    /// that failed.
    [[nodiscard]] bool installEffects() const;
    /// The folder in which they are then.
    [[nodiscard]] QString effectsPlace() const;

    [[nodiscard]] bool isEntryInstalled() const;
    /// Writes an entry that shows in no menu, for this user. False when that failed.
    [[nodiscard]] bool installEntry() const;
    /// The file that it is then.
    [[nodiscard]] QString entryPlace() const;

private:
    [[nodiscard]] bool asksForKeys(const QString& entry) const;

    const QStringList folders_;
    const QString offer_;
    const QString program_;
};

} // namespace tilewright
