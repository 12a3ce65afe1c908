#include <Plasma/KWinCompanion.h>
#include <Plasma/KWinKeyFiles.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class KWinKeyFilesTest : public ::testing::Test {
protected:
    void write(const QString& path, const QByteArray& text) const {
        QFile file(folder.filePath(path));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    [[nodiscard]] QByteArray read(const QString& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void offerEffects() const {
        for (const QString& effect : KWinCompanion::keyEffects()) {
            write(QStringLiteral("offer/%1/metadata.json").arg(effect), "{}");
            write(QStringLiteral("offer/%1/contents/code/main.js").arg(effect), effect.toUtf8());
        }
    }
    [[nodiscard]] KWinKeyFiles files(const QString& program = QStringLiteral("/opt/tilewright")) {
        return {
            {folder.filePath(QStringLiteral("user")), folder.filePath(QStringLiteral("system"))},
            folder.filePath(QStringLiteral("offer")),
            program};
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(KWinKeyFilesTest, FindsTheEffectsInAnyFolderIfAllOfThemAreThere) {
    EXPECT_FALSE(files().areEffectsInstalled());
    for (const QString& effect : KWinCompanion::keyEffects()) {
        EXPECT_FALSE(files().areEffectsInstalled());
        write(QStringLiteral("system/kwin/effects/%1/metadata.json").arg(effect), "{}");
    }
    EXPECT_TRUE(files().areEffectsInstalled());
}

TEST_F(KWinKeyFilesTest, CopiesTheEffectsThatABuildBringsAlong) {
    EXPECT_FALSE(files().canEffectsBeInstalled());
    EXPECT_FALSE(files().installEffects());
    offerEffects();
    ASSERT_TRUE(files().canEffectsBeInstalled());
    EXPECT_TRUE(files().installEffects());
    EXPECT_TRUE(files().areEffectsInstalled());
    for (const QString& effect : KWinCompanion::keyEffects())
        EXPECT_EQ(
            read(files().effectsPlace() + u'/' + effect + QStringLiteral("/contents/code/main.js")),
            effect.toUtf8());
}

TEST_F(KWinKeyFilesTest, SaysSoWhenTheEffectsCannotBeCopied) {
    offerEffects();
    write(QStringLiteral("user"), "no folder");
    EXPECT_FALSE(files().installEffects());
}

TEST_F(KWinKeyFilesTest, WritesAnEntryForThisVeryProgram) {
    const QString odd = QStringLiteral("/opt/my \"own\" $5\\100%/tilewright");
    EXPECT_FALSE(files(odd).isEntryInstalled());
    EXPECT_TRUE(files(odd).installEntry());
    EXPECT_TRUE(files(odd).isEntryInstalled());
    EXPECT_EQ(read(files(odd).entryPlace()).toStdString(),
              "[Desktop Entry]\nType=Application\nName=Tilewright\nNoDisplay=true\n"
              "Exec=\"/opt/my \\\\\"own\\\\\" \\\\$5\\\\\\\\100%%/tilewright\"\n"
              "X-KDE-Wayland-Interfaces=org_kde_kwin_keystate\n");
    EXPECT_FALSE(files(QStringLiteral("/opt/other")).isEntryInstalled());
}

TEST_F(KWinKeyFilesTest, TakesAnEntryForItsOwnOnlyIfItNamesItsWholePathAndAsksForTheKeys) {
    const QString entry = QStringLiteral("system/applications/org.tilewright.Tilewright.desktop");
    write(entry, "[Desktop Entry]\nExec=tilewright\n"
                 "X-KDE-Wayland-Interfaces=org_kde_kwin_keystate\n");
    EXPECT_FALSE(files().isEntryInstalled());
    write(entry, "[Desktop Entry]\nExec=/opt/tilewright\n");
    EXPECT_FALSE(files().isEntryInstalled());
    write(entry, "[Desktop Entry]\nExec=/opt/tilewright\n"
                 "X-KDE-Wayland-Interfaces=org_kde_kwin_keystate\n");
    EXPECT_TRUE(files().isEntryInstalled());
}

TEST_F(KWinKeyFilesTest, SaysSoWhenTheEntryCannotBeWritten) {
    write(QStringLiteral("user"), "no folder");
    EXPECT_FALSE(files().installEntry());
}

} // namespace tilewright::testing
