#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace tilewright {

/// The user's list of the extensions that GNOME Shell runs, for one that the shell has not found
/// yet: of such a one it takes no word over the bus. The list is read and written by the desktop's
/// own program for settings; nothing waits for that, and where it fails the list stays as it is.
/// Main thread only.
class GnomeStartList final : public QObject {
    Q_OBJECT

public:
    /// The desktop's program for settings.
    [[nodiscard]] static QString settingsProgram();
    /// What a value of the settings says where it is a list of texts; nothing where it is anything
    /// else, or one of the texts is more than printable ASCII, or has quotation marks or
    /// backslashes.
    [[nodiscard]] static std::optional<QStringList> listIn(const QByteArray& value);
    /// The value that says so.
    [[nodiscard]] static QString valueOf(const QStringList& list);

    /// `program` is what reads and writes the setting.
    explicit GnomeStartList(QString program);
    ~GnomeStartList() override;

    /// Has the shell run the extension from its next start on, unless the user has turned that one
    /// off. Does nothing while an earlier call is under way.
    void add(const QString& extension);

private:
    /// Whether something is read or written.
    [[nodiscard]] bool isBusy() const { return process_.state() != QProcess::NotRunning; }
    void read(const QString& key, std::function<void(const QStringList&)> whenRead);
    void run(const QStringList& arguments, std::function<void()> whenDone);
    void finish(int code, QProcess::ExitStatus status);

    const QString program_;
    std::function<void()> whenDone_;
    QProcess process_;
};

} // namespace tilewright
