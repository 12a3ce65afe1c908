#include <Gnome/GnomeCompanionFiles.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class GnomeCompanionFilesTest : public ::testing::Test {
protected:
    static void write(const QString& path, const QByteArray& bytes) {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    static QByteArray read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void makeOffer() const {
        write(offer + QStringLiteral("/metadata.json"), "{}");
        write(offer + QStringLiteral("/extension.js"), "new");
        write(offer + QStringLiteral("/icons/one.svg"), "<svg/>");
    }

    QTemporaryDir folder;
    const QString user = folder.filePath(QStringLiteral("user"));
    const QString system = folder.filePath(QStringLiteral("system"));
    const QString offer = folder.filePath(QStringLiteral("offer"));
    const GnomeCompanionFiles files{{user, system}, offer};
};

} // namespace

TEST_F(GnomeCompanionFilesTest, AreThePackagesUnlessTheBuildBringsItsOwn) {
    EXPECT_EQ(files.name(), GnomeCompanionFiles::packagedName());
    EXPECT_FALSE(files.canBeInstalled());
    EXPECT_FALSE(files.install());
    EXPECT_FALSE(files.areInstalled());
    write(system + u'/' + GnomeCompanionFiles::packagedName() + QStringLiteral("/metadata.json"),
          "{}");
    EXPECT_TRUE(files.areInstalled());
    makeOffer();
    EXPECT_EQ(files.name(), GnomeCompanionFiles::buildsName());
    EXPECT_FALSE(files.areInstalled()) << "the package's obeys another program";
    EXPECT_TRUE(files.canBeInstalled());
}

TEST_F(GnomeCompanionFilesTest, AreCopiedToTheUsersOwnFolderAlsoOverOlderOnes) {
    makeOffer();
    write(files.place() + QStringLiteral("/extension.js"), "old");
    ASSERT_TRUE(files.install());
    EXPECT_TRUE(files.areInstalled());
    EXPECT_TRUE(files.place().startsWith(user));
    EXPECT_EQ(read(files.place() + QStringLiteral("/extension.js")), "new");
    EXPECT_EQ(read(files.place() + QStringLiteral("/icons/one.svg")), "<svg/>");
    EXPECT_FALSE(QDir(system).exists());
}

TEST_F(GnomeCompanionFilesTest, AreNoExtensionWhereTheyCannotAllBeCopied) {
    makeOffer();
    ASSERT_TRUE(files.install());
    // A folder is in a file's way.
    QFile::remove(files.place() + QStringLiteral("/extension.js"));
    ASSERT_TRUE(QDir().mkpath(files.place() + QStringLiteral("/extension.js/x")));
    EXPECT_FALSE(files.install());
    EXPECT_FALSE(files.areInstalled());
}

} // namespace tilewright::testing
