#include <FreeDesktop/FreeDesktopApplicationSupport.h>
#include <FreeDesktop/FreeDesktopUserDefaults.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tilewright::testing {
namespace {

/// The user's folders in a place of the test's own.
class FreeDesktopFoldersTest : public ::testing::Test {
protected:
    FreeDesktopFoldersTest() {
        qputenv("HOME", home.path().toUtf8());
        qunsetenv("XDG_DATA_HOME");
        qunsetenv("XDG_CONFIG_HOME");
    }
    ~FreeDesktopFoldersTest() override {
        qputenv("HOME", formerHome);
        // Qt would go on with the folder of the first test.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QString::fromUtf8(formerHome) + QStringLiteral("/.config"));
    }
    void SetUp() override {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           home.path() + QStringLiteral("/.config"));
    }

    QTemporaryDir home;
    const QString settingsFile =
        home.filePath(QStringLiteral(".config/Tilewright/Tilewright.conf"));
    const QByteArray formerHome = qgetenv("HOME");
    const QString key = QStringLiteral("snapActivationModifier");
};

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST_F(FreeDesktopFoldersTest, KeepsApplicationDataInTheGenericDataFolder) {
    EXPECT_EQ(FreeDesktopApplicationSupport().folder(),
              home.path() + QStringLiteral("/.local/share"));
    const QString chosen = home.filePath(QStringLiteral("data"));
    qputenv("XDG_DATA_HOME", chosen.toUtf8());
    EXPECT_EQ(FreeDesktopApplicationSupport().folder(), chosen);
    qunsetenv("XDG_DATA_HOME");
}

TEST_F(FreeDesktopFoldersTest, KeepsSettingsInOneFileOfTheConfigurationFolder) {
    FreeDesktopUserDefaults defaults;
    defaults.setString(QStringLiteral("option"), key);
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), QStringLiteral("option"));
    EXPECT_EQ(QDir(home.filePath(QStringLiteral(".config")))
                  .entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("Tilewright")});
    EXPECT_EQ(QDir(QFileInfo(settingsFile).path()).entryList(QDir::Files),
              QStringList{QStringLiteral("Tilewright.conf")});
}

TEST_F(FreeDesktopFoldersTest, HasEachSettingInItsFileAsSoonAsItIsSet) {
    FreeDesktopUserDefaults defaults;
    for (const QString& value : {QStringLiteral("option"), QStringLiteral("shift")}) {
        defaults.setString(value, key);
        // Nothing has turned the event loop.
        EXPECT_EQ(contents(settingsFile),
                  "[General]\nsnapActivationModifier=" + value.toUtf8() + "\n");
    }
}

TEST_F(FreeDesktopFoldersTest, KeepsASettingOfAProcessThatIsKilledRightAfterwards) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        FreeDesktopUserDefaults defaults;
        defaults.setString(QStringLiteral("command"), key);
        std::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), QStringLiteral("command"));
}

TEST_F(FreeDesktopFoldersTest, HasNoValueWhereNoneOrAnotherKindOfOneIsStored) {
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), std::nullopt);
    {
        QSettings settings(QStringLiteral("Tilewright"), QStringLiteral("Tilewright"));
        settings.setValue(key, QStringList{QStringLiteral("shift"), QStringLiteral("option")});
    }
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), std::nullopt);
}

TEST_F(FreeDesktopFoldersTest, TakesNoValueFromFilesThatAreNotThisUsersSettings) {
    const QString system = home.filePath(QStringLiteral("system"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, system);
    const QStringList others{system + QStringLiteral("/Tilewright/Tilewright.conf"),
                             system + QStringLiteral("/Tilewright.conf"),
                             home.filePath(QStringLiteral(".config/Tilewright.conf"))};
    for (const QString& path : others) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\nsnapActivationModifier=shift\n");
    }
    FreeDesktopUserDefaults defaults;
    EXPECT_EQ(defaults.string(key), std::nullopt);
    defaults.setString(QStringLiteral("option"), key);
    EXPECT_EQ(defaults.string(key), QStringLiteral("option"));
}

} // namespace tilewright::testing
