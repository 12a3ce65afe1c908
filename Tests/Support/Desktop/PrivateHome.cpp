#include "PrivateHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

/// Some 30 lines.
std::string lastPartOf(const QString& path) {
    constexpr qint64 lastPart = 3000;
    QFile log(path);
    if (!log.open(QIODevice::ReadOnly))
        return "nothing\n";
    log.seek(std::max<qint64>(0, log.size() - lastPart));
    return log.readAll().toStdString();
}

} // namespace

void writeFile(const QString& path, const QByteArray& contents) {
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(contents), contents.size()) << path.toStdString();
}

QProcessEnvironment inheritedEnvironment() {
    QProcessEnvironment environment;
    for (const char* kept : {"PATH", "LANG", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS",
                             "LSAN_OPTIONS", "GCOV_PREFIX"}) {
        if (qEnvironmentVariableIsSet(kept))
            environment.insert(QString::fromLatin1(kept), qEnvironmentVariable(kept));
    }
    return environment;
}

PrivateHome::PrivateHome()
    : environment_(inheritedEnvironment()) {
    const auto folder = [this](const char* variable, const char* below) {
        const QString full = path() + QString::fromLatin1(below);
        QDir().mkpath(full);
        QFile::setPermissions(full, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        set(variable, full);
    };
    folder("HOME", "");
    folder("XDG_RUNTIME_DIR", "/run");
    folder("XDG_CONFIG_HOME", "/.config");
    folder("XDG_DATA_HOME", "/.local/share");
    folder("XDG_CACHE_HOME", "/.cache");
    set("LC_ALL", QStringLiteral("C.UTF-8"));
    set("GSETTINGS_BACKEND", QStringLiteral("keyfile"));
    set("NO_AT_BRIDGE", QStringLiteral("1"));
}

void PrivateHome::set(const char* variable, const QString& value) {
    environment_.insert(QString::fromLatin1(variable), value);
}

Subprocess& PrivateHome::start(const QString& program, const QStringList& arguments,
                               const std::map<QString, QString>& moreEnvironment,
                               const QString& ownLog) {
    QProcessEnvironment environment = environment_;
    for (const auto& [key, value] : moreEnvironment)
        environment.insert(key, value);
    auto& process = *programs_.emplace_back(std::make_unique<Subprocess>());
    if (!ownLog.isEmpty())
        ownLogs_.append(folder_.filePath(ownLog));
    EXPECT_TRUE(process.start(program, arguments, environment,
                              ownLog.isEmpty() ? logFile() : ownLogs_.last()))
        << program.toStdString() << " did not start";
    return process;
}

QString PrivateHome::logFile() const {
    return folder_.filePath(QStringLiteral("programs.log"));
}

std::string PrivateHome::lastPrinted() const {
    std::string text = "\nthe programs printed:\n" + lastPartOf(logFile());
    for (const QString& log : ownLogs_)
        text += '\n' + QFileInfo(log).fileName().toStdString() + ":\n" + lastPartOf(log);
    return text;
}

} // namespace tilewright::testing
