#include "KWinKeyFiles.h"

#include "KWinCompanion.h"

#include <Companion/ExtensionFolder.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>

namespace tilewright {

namespace {

constexpr char keysWish[] = "X-KDE-Wayland-Interfaces=org_kde_kwin_keystate";

QString effectsFolder(const QString& dataFolder) {
    return dataFolder + QStringLiteral("/kwin/effects");
}

bool hasAllEffects(const QString& folder) {
    const QStringList effects = KWinCompanion::keyEffects();
    return std::all_of(effects.begin(), effects.end(), [&](const QString& effect) {
        return isExtensionFolder(folder + u'/' + effect);
    });
}

/// A path as an entry's command, whose rules for quotes are its own.
QByteArray command(QString path) {
    path.replace(u'\\', QStringLiteral(R"(\\\\)"));
    for (const QChar special : {u'"', u'`', u'$'})
        path.replace(special, QStringLiteral(R"(\\)") + special);
    return QFile::encodeName(u'"' + path.replace(u'%', QStringLiteral("%%")) + u'"');
}

} // namespace

KWinKeyFiles KWinKeyFiles::ofThisProgram() {
    return {QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation),
            QDir::cleanPath(QCoreApplication::applicationDirPath() +
                            QStringLiteral("/../share/tilewright/kwin-effects")),
            QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath()};
}

KWinKeyFiles::KWinKeyFiles(QStringList folders, QString offer, QString program)
    : folders_(std::move(folders))
    , offer_(std::move(offer))
    , program_(std::move(program)) {}

bool KWinKeyFiles::areEffectsInstalled() const {
    return std::any_of(folders_.begin(), folders_.end(),
                       [](const QString& folder) { return hasAllEffects(effectsFolder(folder)); });
}

bool KWinKeyFiles::canEffectsBeInstalled() const {
    return hasAllEffects(offer_) && !folders_.isEmpty();
}

QString KWinKeyFiles::effectsPlace() const {
    return effectsFolder(folders_.value(0));
}

bool KWinKeyFiles::installEffects() const {
    if (!canEffectsBeInstalled())
        return false;
    const QStringList effects = KWinCompanion::keyEffects();
    return std::all_of(effects.begin(), effects.end(), [this](const QString& effect) {
        return installExtensionFolder(offer_ + u'/' + effect, effectsPlace() + u'/' + effect);
    });
}

QString KWinKeyFiles::entryPlace() const {
    return folders_.value(0) +
           QStringLiteral("/applications/org.tilewright.Tilewright-run.desktop");
}

bool KWinKeyFiles::isEntryInstalled() const {
    return std::any_of(folders_.begin(), folders_.end(), [this](const QString& folder) {
        const QDir entries(folder + QStringLiteral("/applications"));
        const QStringList ours =
            entries.entryList({QStringLiteral("org.tilewright.*.desktop")}, QDir::Files);
        return std::any_of(ours.begin(), ours.end(), [&](const QString& entry) {
            return asksForKeys(entries.filePath(entry));
        });
    });
}

bool KWinKeyFiles::asksForKeys(const QString& entry) const {
    QFile file(entry);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArrayList lines = file.readAll().split('\n');
    // KWin compares whole paths: an entry that names this program by its name alone is of no use.
    return lines.contains(keysWish) && (lines.contains("Exec=" + command(program_)) ||
                                        lines.contains("Exec=" + QFile::encodeName(program_)));
}

bool KWinKeyFiles::installEntry() const {
    if (folders_.isEmpty() || !QDir().mkpath(QFileInfo(entryPlace()).path()))
        return false;
    QSaveFile file(entryPlace());
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write("[Desktop Entry]\nType=Application\nName=Tilewright\nNoDisplay=true\nExec=" +
               command(program_) + "\n" + keysWish + "\n");
    return file.commit();
}

} // namespace tilewright
