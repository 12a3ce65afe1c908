#include "CompanionTarget.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace tilewright;

namespace {

/// The files of the corpus, and what each holds.
std::vector<std::pair<QString, QByteArray>> corpus() {
    std::vector<std::pair<QString, QByteArray>> files;
    const QDir folder(QString::fromUtf8(TILEWRIGHT_CORPUS));
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        files.emplace_back(name, file.readAll());
    }
    return files;
}

} // namespace

TEST(CompanionCorpus, HoldsMessagesOfBothKindsWhichAreToldApart) {
    int valid = 0;
    int invalid = 0;
    for (const auto& [name, bytes] : corpus()) {
        const bool isValid = name.startsWith(QStringLiteral("valid-"));
        EXPECT_TRUE(isValid || name.startsWith(QStringLiteral("invalid-"))) << name.toStdString();
        EXPECT_EQ(checkCompanionMessage(bytes), isValid) << name.toStdString();
        ++(isValid ? valid : invalid);
    }
    EXPECT_GE(valid, 12);
    EXPECT_GE(invalid, 20);
}

TEST(CompanionCorpus, IsReadSafelyWhenCutOffAnywhere) {
    for (const auto& [name, bytes] : corpus()) {
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 400);
        for (qsizetype length = 0; length < bytes.size(); length += step)
            (void)checkCompanionMessage(bytes.first(length));
    }
}

TEST(CompanionCorpus, IsReadSafelyWithAnyOneByteSpoilt) {
    for (const auto& [name, bytes] : corpus()) {
        const qsizetype step = std::max<qsizetype>(1, bytes.size() / 100);
        for (qsizetype at = 0; at < bytes.size(); at += step) {
            for (const char byte : {'\0', '"', '\\', '{', ']', ',', '9', '-', '\x80', '\xFF'}) {
                QByteArray spoilt = bytes;
                spoilt[at] = byte;
                (void)checkCompanionMessage(spoilt);
            }
        }
    }
}
