#include "ExtensionFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace tilewright {

namespace {

QString descriptionIn(const QString& folder) {
    return folder + QStringLiteral("/metadata.json");
}

bool copyOver(const QString& from, const QString& to) {
    QFile::remove(to);
    return QDir().mkpath(QFileInfo(to).path()) && QFile::copy(from, to);
}

} // namespace

bool isExtensionFolder(const QString& folder) {
    return QFileInfo(descriptionIn(folder)).isFile();
}

bool installExtensionFolder(const QString& from, const QString& to) {
    const QString description = descriptionIn(from);
    // It goes first and comes last: nothing half copied describes itself.
    QFile::remove(descriptionIn(to));
    for (QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString file = it.next();
        if (file != description && !copyOver(file, to + u'/' + QDir(from).relativeFilePath(file)))
            return false;
    }
    return copyOver(description, descriptionIn(to));
}

} // namespace tilewright
