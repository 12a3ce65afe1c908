#include "LayoutsTarget.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace tilewright;

namespace {

/// The files of a corpus, and what each holds.
std::vector<std::pair<QString, QByteArray>> filesIn(const char* path) {
    std::vector<std::pair<QString, QByteArray>> files;
    const QDir folder(QString::fromUtf8(path));
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        files.emplace_back(name, file.readAll());
    }
    return files;
}

/// What was written by hand.
std::vector<std::pair<QString, QByteArray>> corpus() {
    return filesIn(TILEWRIGHT_CORPUS);
}

} // namespace

TEST(LayoutsCorpus, HoldsFilesOfBothKindsWhichAreToldApart) {
    int valid = 0;
    int invalid = 0;
    for (const auto& [name, bytes] : corpus()) {
        const bool isValid = name.startsWith(QStringLiteral("valid-"));
        EXPECT_TRUE(isValid || name.startsWith(QStringLiteral("invalid-"))) << name.toStdString();
        EXPECT_EQ(checkLayoutsFile(bytes), isValid) << name.toStdString();
        ++(isValid ? valid : invalid);
    }
    EXPECT_GE(valid, 8);
    EXPECT_GE(invalid, 20);
}

TEST(LayoutsCorpus, IsReadSafelyInAllWaysThatTheFuzzerFound) {
    const auto found = filesIn(TILEWRIGHT_CORPUS "-found");
    EXPECT_GE(found.size(), 300U);
    int valid = 0;
    for (const auto& [name, bytes] : found)
        valid += checkLayoutsFile(bytes) ? 1 : 0;
    EXPECT_GT(valid, 0);
    EXPECT_LT(valid, static_cast<int>(found.size()));
}

TEST(LayoutsCorpus, IsReadSafelyWhenCutOffAnywhere) {
    for (const auto& [name, bytes] : corpus()) {
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 400);
        for (qsizetype length = 0; length < bytes.size(); length += step)
            (void)checkLayoutsFile(bytes.first(length));
    }
}

TEST(LayoutsCorpus, IsReadSafelyWithAnyOneByteSpoilt) {
    for (const auto& [name, bytes] : corpus()) {
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 100);
        for (qsizetype at = 0; at < bytes.size(); at += step) {
            for (const char byte : {'\0', '"', '\\', '{', ']', ',', '9', '-', '\x80', '\xFF'}) {
                QByteArray spoilt = bytes;
                spoilt[at] = byte;
                (void)checkLayoutsFile(spoilt);
            }
        }
    }
}
