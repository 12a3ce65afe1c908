#include "LayoutsFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostLinks = 40;
constexpr qint64 strayAge = 60;
const auto temporarySuffix = u".saving-"_s;

QString temporaryTemplate(const QString& path) {
    return path + temporarySuffix + u"XXXXXX"_s;
}

/// Whether nothing is lost when a file takes the place of what is there.
bool mayBeReplaced(const QString& path) {
    const QFileInfo info(path);
    return info.exists() ? info.isFile() : !info.isSymLink();
}

/// Moves a file into the place of another, in one step.
bool replace(const QString& path, const QString& by) {
    return std::rename(QFile::encodeName(by).constData(), QFile::encodeName(path).constData()) == 0;
}

bool sync(int descriptor) {
    // Some file systems know no such thing.
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

/// Without it a loss of power may undo what was done to the folder's entries last.
void syncFolderOf(const QString& path) {
    const int folder = ::open(QFile::encodeName(QFileInfo(path).path()).constData(),
                              O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    sync(folder);
    ::close(folder);
}

bool replaceContents(const QString& path, const QByteArray& contents) {
    QTemporaryFile file(temporaryTemplate(path));
    if (!file.open())
        return false;
    const QFileInfo old(path);
    if (old.exists())
        file.setPermissions(old.permissions());
    // It has a name from when that is asked for.
    if (file.write(contents) != contents.size() || !file.flush() || !sync(file.handle()) ||
        !replace(path, file.fileName()))
        return false;
    file.setAutoRemove(false);
    syncFolderOf(path);
    return true;
}

void removeStrayFilesOf(const QString& path) {
    const QFileInfo info(path);
    const QRegularExpression ours(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(info.fileName() + temporarySuffix) + u"[A-Za-z]{6}"_s));
    const QDateTime newest = QDateTime::currentDateTimeUtc().addSecs(-strayAge);
    const auto entries =
        info.dir().entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Unsorted);
    for (const QFileInfo& entry : entries) {
        if (ours.match(entry.fileName()).hasMatch() && entry.lastModified() < newest)
            QFile::remove(entry.filePath());
    }
}

} // namespace

LayoutsFile::LayoutsFile(QString path)
    : path_(std::move(path)) {}

std::optional<QByteArray> LayoutsFile::read() const {
    // Only a regular file ends: reading a pipe or a device could block for ever.
    const QFileInfo info(path_);
    if (!info.isFile() || info.size() > largest)
        return std::nullopt;
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray contents = file.read(info.size());
    if (contents.size() != info.size())
        return std::nullopt;
    return contents;
}

bool LayoutsFile::write(const QByteArray& contents) {
    const QString path = target();
    if (!mayBeReplaced(path))
        return false;
    if (keepsOldContents_)
        leaveOldContents(path);
    if (!replaceContents(path, contents))
        return false;
    keepsOldContents_ = false;
    return true;
}

void LayoutsFile::removeStrayFiles() const {
    const QString path = target();
    removeStrayFilesOf(path_);
    if (path != path_)
        removeStrayFilesOf(path);
}

QString LayoutsFile::target() const {
    QString path = path_;
    for (int i = 0; i < mostLinks && QFileInfo(path).isSymLink(); ++i)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

void LayoutsFile::leaveOldContents(const QString& target) const {
    const QString place = path_ + u".unreadable"_s;
    const QFileInfo old(target);
    if (!old.isFile() || old.size() > largest || !mayBeReplaced(place))
        return;
    // A second name is all that can be had of a file that cannot be read. Other file systems, and
    // those that have no second names, get a copy.
    QFile::remove(place);
    if (::link(QFile::encodeName(target).constData(), QFile::encodeName(place).constData()) == 0)
        return;
    if (const auto contents = read())
        replaceContents(place, *contents);
}

} // namespace tilewright
