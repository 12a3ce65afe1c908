#include "GnomeCompanionFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

namespace tilewright {

namespace {

/// Without it the shell takes a folder for no extension.
QString description() {
    return QStringLiteral("metadata.json");
}

bool isExtension(const QString& folder) {
    return QFileInfo(folder + u'/' + description()).isFile();
}

bool copyOver(const QString& from, const QString& to) {
    QFile::remove(to);
    return QDir().mkpath(QFileInfo(to).path()) && QFile::copy(from, to);
}

} // namespace

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
    return isExtension(offer_) ? buildsName() : packagedName();
}

bool GnomeCompanionFiles::areInstalled() const {
    return std::any_of(folders_.begin(), folders_.end(), [name = name()](const QString& folder) {
        return isExtension(folder + u'/' + name);
    });
}

bool GnomeCompanionFiles::canBeInstalled() const {
    return isExtension(offer_) && !folders_.isEmpty();
}

QString GnomeCompanionFiles::place() const {
    return folders_.value(0) + u'/' + buildsName();
}

bool GnomeCompanionFiles::install() const {
    if (!canBeInstalled())
        return false;
    const QDir offer(offer_);
    const QString last = offer.filePath(description());
    // Whatever goes wrong before, what is there by then is no extension.
    QFile::remove(place() + u'/' + description());
    for (QDirIterator it(offer_, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString file = it.next();
        if (file != last && !copyOver(file, place() + u'/' + offer.relativeFilePath(file)))
            return false;
    }
    return copyOver(last, place() + u'/' + description());
}

} // namespace tilewright
