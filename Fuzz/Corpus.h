#pragma once

#include <QDir>
#include <QFile>
#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

/// What the tests of a fuzzer's corpus share. A check reads bytes, says whether they were valid,
/// and ends the process where it finds a fault.
namespace tilewright::corpus {

using Files = std::vector<std::pair<QString, QByteArray>>;

/// The files of a folder, and what each holds.
inline Files filesIn(const char* path) {
    Files files;
    const QDir folder(QString::fromUtf8(path));
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        files.emplace_back(name, file.readAll());
    }
    return files;
}

/// Expects each file to be what its name says, and at least so many of both kinds.
template<class Check>
void expectToldApart(const Files& files, Check check, int leastValid, int leastInvalid) {
    int valid = 0;
    int invalid = 0;
    for (const auto& [name, bytes] : files) {
        const bool isValid = name.startsWith(QStringLiteral("valid-"));
        EXPECT_TRUE(isValid || name.startsWith(QStringLiteral("invalid-"))) << name.toStdString();
        EXPECT_EQ(check(bytes), isValid) << name.toStdString();
        ++(isValid ? valid : invalid);
    }
    EXPECT_GE(valid, leastValid);
    EXPECT_GE(invalid, leastInvalid);
}

/// Reads each file cut off at up to 400 places.
template<class Check>
void readCutOff(const Files& files, Check check) {
    for (const auto& [name, bytes] : files) {
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 400);
        for (qsizetype length = 0; length < bytes.size(); length += step)
            (void)check(bytes.first(length));
    }
}

/// Reads each file with another byte at up to 100 places.
template<class Check>
void readSpoilt(const Files& files, Check check) {
    for (const auto& [name, bytes] : files) {
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 100);
        for (qsizetype at = 0; at < bytes.size(); at += step) {
            for (const char byte : {'\0', '"', '\\', '{', ']', ',', '9', '-', '\x80', '\xFF'}) {
                QByteArray spoilt = bytes;
                spoilt[at] = byte;
                (void)check(spoilt);
            }
        }
    }
}

} // namespace tilewright::corpus
