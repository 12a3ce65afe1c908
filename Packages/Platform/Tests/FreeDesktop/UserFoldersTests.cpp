#include <FreeDesktop/FreeDesktopApplicationSupport.h>
#include <FreeDesktop/FreeDesktopUserDefaults.h>
#include <Waiting.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

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
        // The toolkit would go on with the folder of the first test.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QString::fromUtf8(formerHome) + QStringLiteral("/.config"));
    }
    void SetUp() override {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           home.path() + QStringLiteral("/.config"));
    }

    QTemporaryDir home;
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
    const QString path = home.filePath(QStringLiteral(".config/Tilewright/Tilewright.conf"));
    FreeDesktopUserDefaults defaults;
    defaults.setString(QStringLiteral("option"), key);
    EXPECT_TRUE(waitUntil([&] { return contents(path).contains("snapActivationModifier=option"); }))
        << "without any further call, once the event loop turns";
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), QStringLiteral("option"));
}

TEST_F(FreeDesktopFoldersTest, HasNoValueWhereNoneOrAnotherKindOfOneIsStored) {
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), std::nullopt);
    {
        QSettings settings(QStringLiteral("Tilewright"), QStringLiteral("Tilewright"));
        settings.setValue(key, QStringList{QStringLiteral("shift"), QStringLiteral("option")});
    }
    EXPECT_EQ(FreeDesktopUserDefaults().string(key), std::nullopt);
}

} // namespace tilewright::testing
