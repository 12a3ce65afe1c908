#include "GnomeCompanionFiles.h"

#include <Companion/ExtensionFolder.h>

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <algorithm>

namespace tilewright {

QString GnomeCompanionFiles::packagedName() {
    return QStringLiteral("tilewright@tilewright.org");
}

QString GnomeCompanionFiles::buildsName() {
    return QStringLiteral("tilewright-run@tilewright.org");
}

GnomeCompanionFiles GnomeCompanionFiles::ofThisProgram() {
    const QString extensions = QStringLiteral("/gnome-shell/extensions");
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    for (QString& folder : folders)
        folder += extensions;
    return {folders, QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                     QStringLiteral("/../share/tilewright/companion"))};
}

GnomeCompanionFiles::GnomeCompanionFiles(QStringList folders, QString offer)
    : folders_(std::move(folders))
    , offer_(std::move(offer)) {}

QString GnomeCompanionFiles::name() const {
    return isExtensionFolder(offer_) ? buildsName() : packagedName();
}

bool GnomeCompanionFiles::areInstalled() const {
    return std::any_of(folders_.begin(), folders_.end(), [name = name()](const QString& folder) {
        return isExtensionFolder(folder + u'/' + name);
    });
}

bool GnomeCompanionFiles::canBeInstalled() const {
    return isExtensionFolder(offer_) && !folders_.isEmpty();
}

QString GnomeCompanionFiles::place() const {
    return folders_.value(0) + u'/' + buildsName();
}

bool GnomeCompanionFiles::install() const {
    return canBeInstalled() && installExtensionFolder(offer_, place());
}

} // namespace tilewright
