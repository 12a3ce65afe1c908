#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace tilewright {

/// The file that layouts are kept in, which may stand behind links.
///
/// Only a regular file is ever read or replaced, nothing else that stands in its place. A process
/// that is killed while it writes may leave a temporary file behind, which the next one removes.
class LayoutsFile {
public:
    /// A larger file counts as one that cannot be read: nobody has so many layouts.
    static constexpr qint64 largest = 64 << 20;

    explicit LayoutsFile(QString path);

    /// All that the file holds; none when it is missing, too large or cannot be read.
    [[nodiscard]] std::optional<QByteArray> read() const;

    /// Has the next `write()` leave what the file holds until then beside it, under its name with
    /// ".unreadable" appended, in the place of what was left there before. A file that is too large
    /// is not left.
    void keepOldContents() { keepsOldContents_ = true; }
    /// Has the file hold these contents from now on, also after a loss of power; whatever goes
    /// wrong it holds the old ones or the new ones, whole. Answers whether it holds the new ones. A
    /// new file is the user's own, an old one keeps its permissions.
    bool write(const QByteArray& contents);

    /// Removes the temporary files that earlier processes left more than a minute ago.
    void removeStrayFiles() const;

private:
    [[nodiscard]] QString target() const;
    void leaveOldContents(const QString& target) const;

    const QString path_;
    bool keepsOldContents_ = false;
};

} // namespace tilewright
