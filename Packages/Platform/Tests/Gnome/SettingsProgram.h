#pragma once

#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {

/// Stands in for the desktop's program for settings: a script that keeps each key in a file, and
/// notes how it was called.
class SettingsProgram {
public:
    SettingsProgram() {
        write("enabled-extensions", "@as []\n");
        write("disabled-extensions", "@as []\n");
        write("gsettings", "#!/bin/sh\ncd '" + folder_.path().toUtf8() +
                               "' || exit\n"
                               "echo \"$@\" >> calls\n"
                               "! rm flood 2>/dev/null || exec yes\n"
                               "[ \"$2\" = org.gnome.shell ] || exit 1\n"
                               "case $1 in\n"
                               "get) cat \"$3\" ;;\n"
                               "set) printf '%s' \"$4\" > \"$3.new\" && mv \"$3.new\" \"$3\" ;;\n"
                               "esac\n");
        EXPECT_TRUE(QFile::setPermissions(program(), QFile::ReadOwner | QFile::ExeOwner));
    }

    [[nodiscard]] QString program() const { return path("gsettings"); }
    /// The extensions that run, as the setting has them.
    [[nodiscard]] QByteArray started() const { return read("enabled-extensions"); }
    void setStarted(const QByteArray& value) const { write("enabled-extensions", value); }
    void setTurnedOff(const QByteArray& value) const { write("disabled-extensions", value); }
    /// Has the next call tell without an end.
    void floodOnce() const { write("flood", {}); }
    /// The arguments of each call.
    [[nodiscard]] QStringList calls() const {
        return QString::fromUtf8(read("calls")).split(u'\n', Qt::SkipEmptyParts);
    }

private:
    [[nodiscard]] QString path(const char* name) const {
        return folder_.filePath(QString::fromLatin1(name));
    }
    [[nodiscard]] QByteArray read(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const char* name, const QByteArray& contents) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    const QTemporaryDir folder_;
};

} // namespace tilewright::testing
