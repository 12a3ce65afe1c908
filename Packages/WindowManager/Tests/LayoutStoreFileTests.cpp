// What the store makes of the places that its file can be in.

#include <FakePlatform.h>
#include <WindowManager/LayoutCoding.h>
#include <WindowManager/LayoutStore.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

using namespace tilewright;
using namespace Qt::StringLiterals;
using tilewright::testing::FakeDesktop;
using tilewright::testing::makeScreen;

namespace {

ZoneLayout customLayout(const QString& name) {
    return {QUuid::createUuid(), name, u"square"_s, false, {}};
}

std::optional<LayoutCoding::Persisted> read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? LayoutCoding::decodePersisted(file.readAll())
                                          : std::nullopt;
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray documentOf(const ZoneLayout& layout) {
    return *LayoutCoding::encode(LayoutCoding::Persisted{{layout}, {}});
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void setAge(const QString& path, qint64 seconds) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-seconds),
                                 QFileDevice::FileModificationTime));
}

mode_t modeOf(const QString& path) {
    struct stat status {};
    EXPECT_EQ(stat(QFile::encodeName(path).constData(), &status), 0);
    return status.st_mode & 07777U;
}

class LayoutStoreFile : public ::testing::Test {
protected:
    [[nodiscard]] QString at(const QString& name) const { return folder.filePath(name); }
    [[nodiscard]] QStringList entries() const {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDir::Name);
    }

    const QTemporaryDir folder;
    const ZoneLayout layout = customLayout(u"One"_s);
};

} // namespace

TEST_F(LayoutStoreFile, IsNotMadeAFolderForWhenItsLocationIsGiven) {
    const QString path = at(u"missing/layouts.json"_s);
    LayoutStore store(path);
    store.addCustomLayout(layout);
    EXPECT_EQ(store.customLayouts(), std::vector{layout});
    EXPECT_FALSE(QFile::exists(at(u"missing"_s)));
}

TEST_F(LayoutStoreFile, GetsItsDefaultFolderWithAllFoldersAbove) {
    FakeDesktop desktop;
    const QString support = *desktop.platform.fakeApplicationSupport.folder();
    ASSERT_TRUE(QDir().rmdir(support));
    const LayoutStore store;
    EXPECT_TRUE(QFileInfo(support + u"/Tilewright"_s).isDir());
}

TEST_F(LayoutStoreFile, StaysSilentWhenItsDefaultFolderCannotBeMade) {
    FakeDesktop desktop;
    const QString blocked = *desktop.platform.fakeApplicationSupport.folder() + u"/Tilewright"_s;
    write(blocked, "a file in the folder's place");
    LayoutStore& store = LayoutStore::shared();
    store.addCustomLayout(layout);
    store.assign(layout, *makeScreen());
    EXPECT_EQ(store.customLayouts(), std::vector{layout});
    EXPECT_EQ(store.layoutFor(*makeScreen()), layout);

    // The next save that succeeds writes all of it.
    ASSERT_TRUE(QFile::remove(blocked));
    ASSERT_TRUE(QDir().mkdir(blocked));
    const auto other = customLayout(u"Two"_s);
    store.addCustomLayout(other);
    EXPECT_EQ(read(blocked + u"/layouts.json"_s)->customLayouts, (std::vector{layout, other}));
    EXPECT_EQ(read(blocked + u"/layouts.json"_s)->assignments.size(), 1U);
}

TEST_F(LayoutStoreFile, MayBeAnythingButAFile) {
    const QString path = at(u"layouts.json"_s);
    ASSERT_TRUE(QDir().mkpath(path + u"/inside"_s));
    LayoutStore store(path);
    EXPECT_TRUE(store.customLayouts().empty());
    store.addCustomLayout(layout);
    EXPECT_EQ(store.customLayouts(), std::vector{layout});
    EXPECT_TRUE(QFileInfo(path + u"/inside"_s).isDir());
}

TEST_F(LayoutStoreFile, DoesNotBlockOnAPipe) {
    const QString path = at(u"layouts.json"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const LayoutStore store(path);
    EXPECT_TRUE(store.customLayouts().empty());
}

TEST_F(LayoutStoreFile, LeavesWhatIsNoFileAsItIsAlsoBehindALink) {
    const QString pipe = at(u"pipe"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    ASSERT_TRUE(QDir().mkpath(at(u"folder"_s)));
    ASSERT_TRUE(QFile::link(pipe, at(u"link to pipe"_s)));
    ASSERT_TRUE(QFile::link(at(u"folder"_s), at(u"link to folder"_s)));
    const QStringList before = entries();
    for (const QString& name : before) {
        LayoutStore store(at(name));
        EXPECT_TRUE(store.customLayouts().empty());
        store.addCustomLayout(layout);
        EXPECT_EQ(store.customLayouts(), std::vector{layout});
    }
    EXPECT_EQ(entries(), before);
    struct stat status {};
    ASSERT_EQ(stat(QFile::encodeName(pipe).constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
    EXPECT_TRUE(QFileInfo(at(u"folder"_s)).isDir());
    EXPECT_TRUE(QFileInfo(at(u"link to pipe"_s)).isSymLink());
    EXPECT_TRUE(QFileInfo(at(u"link to folder"_s)).isSymLink());
}

TEST_F(LayoutStoreFile, IsReadUpToSixtyFourMebibytes) {
    const QString path = at(u"layouts.json"_s);
    constexpr qsizetype bound = 64 << 20;
    write(path, documentOf(layout).leftJustified(bound, ' '));
    EXPECT_EQ(LayoutStore(path).customLayouts(), std::vector{layout});
    write(path, documentOf(layout).leftJustified(bound + 1, ' '));
    LayoutStore store(path);
    EXPECT_TRUE(store.customLayouts().empty());
    const auto other = customLayout(u"Two"_s);
    store.addCustomLayout(other);
    EXPECT_EQ(read(path)->customLayouts, std::vector{other});
    EXPECT_EQ(entries(), QStringList{u"layouts.json"_s}) << "so much is not kept";
}

TEST_F(LayoutStoreFile, IsLeftBesideItsSuccessorWhenItCouldNotBeUnderstood) {
    const QString path = at(u"layouts.json"_s);
    const QString unreadable = path + u".unreadable"_s;
    const QByteArray byHand = documentOf(layout) + ",";
    write(path, byHand);
    {
        LayoutStore store(path);
        EXPECT_EQ(entries(), QStringList{u"layouts.json"_s}) << "nothing has changed yet";
        store.addCustomLayout(layout);
        EXPECT_EQ(contents(unreadable), byHand);
        EXPECT_EQ(read(path)->customLayouts, std::vector{layout});
        store.addCustomLayout(layout);
        EXPECT_EQ(contents(unreadable), byHand);
    }
    LayoutStore(path).addCustomLayout(layout);
    EXPECT_EQ(contents(unreadable), byHand) << "what could be understood is no successor";

    write(path, "another");
    LayoutStore(path).addCustomLayout(layout);
    EXPECT_EQ(contents(unreadable), "another");
    EXPECT_EQ(entries(), (QStringList{u"layouts.json"_s, u"layouts.json.unreadable"_s}));
}

TEST_F(LayoutStoreFile, IsLeftBesideTheLinkThatStandsForIt) {
    const QString link = at(u"layouts.json"_s);
    ASSERT_TRUE(QDir().mkpath(at(u"elsewhere"_s)));
    write(at(u"elsewhere/target.json"_s), "by hand");
    ASSERT_TRUE(QFile::link(at(u"elsewhere/target.json"_s), link));
    LayoutStore(link).addCustomLayout(layout);
    EXPECT_EQ(contents(link + u".unreadable"_s), "by hand");
    EXPECT_EQ(read(at(u"elsewhere/target.json"_s))->customLayouts, std::vector{layout});
    EXPECT_EQ(QDir(at(u"elsewhere"_s)).entryList(QDir::Files), QStringList{u"target.json"_s});
}

TEST_F(LayoutStoreFile, IsNotLeftInThePlaceOfWhatIsNoFile) {
    const QString path = at(u"layouts.json"_s);
    const QByteArray place = QFile::encodeName(path + u".unreadable"_s);
    ASSERT_EQ(mkfifo(place.constData(), 0600), 0);
    write(path, "by hand");
    LayoutStore(path).addCustomLayout(layout);
    EXPECT_EQ(read(path)->customLayouts, std::vector{layout});
    struct stat status {};
    ASSERT_EQ(stat(place.constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST_F(LayoutStoreFile, StaysWhenItCouldNotBeUnderstoodAndTheChangeCannotBeWritten) {
    const QString path = at(u"layouts.json"_s);
    write(path, "by hand");
    LayoutStore store(path);
    ZoneLayout endless = layout;
    endless.zones.push_back({QUuid(), u""_s, 0, 0, std::numeric_limits<double>::infinity(), 1});
    store.addCustomLayout(endless);
    EXPECT_EQ(contents(path), "by hand");
    EXPECT_EQ(entries(), QStringList{u"layouts.json"_s});
    store.removeCustomLayout(endless.id);
    EXPECT_EQ(contents(path + u".unreadable"_s), "by hand");
}

TEST_F(LayoutStoreFile, HasItsOldTemporaryFilesRemovedAtTheNextStartAndNothingElse) {
    const QString path = at(u"layouts.json"_s);
    const QString stray = u"layouts.json.saving-AbCdEf"_s;
    QStringList kept{u"layouts.json"_s,
                     u"layouts.json.AbCdEf"_s,
                     u"layouts.json.backup"_s,
                     u"layouts.json.saving"_s,
                     u"layouts.json.saving-"_s,
                     u"layouts.json.saving-AbCdE"_s,
                     u"layouts.json.saving-AbCdEfg"_s,
                     u"layouts.json.saving-AbCdE1"_s,
                     u"layouts.json.unreadable"_s,
                     u"layoutsXjson.saving-AbCdEf"_s,
                     u"my layouts.json.saving-AbCdEf"_s,
                     u"other.json.saving-AbCdEf"_s};
    for (const QString& name : kept + QStringList{stray}) {
        write(at(name), documentOf(layout));
        setAge(at(name), 61);
    }
    write(at(u"layouts.json.saving-QRSTUV"_s), "of somebody who is saving now");
    setAge(at(u"layouts.json.saving-QRSTUV"_s), 50);
    ASSERT_TRUE(QDir().mkpath(at(u"layouts.json.saving-folder"_s)));
    ASSERT_TRUE(QFile::link(at(kept.back()), at(u"layouts.json.saving-linked"_s)));
    ASSERT_EQ(mkfifo(QFile::encodeName(at(u"layouts.json.saving-pipepi"_s)).constData(), 0600), 0);
    kept += {u"layouts.json.saving-QRSTUV"_s, u"layouts.json.saving-folder"_s,
             u"layouts.json.saving-linked"_s, u"layouts.json.saving-pipepi"_s};
    kept.sort();
    ASSERT_EQ(LayoutStore(path).customLayouts(), std::vector{layout});
    QStringList found = entries();
    found.sort();
    EXPECT_EQ(found, kept);
}

TEST_F(LayoutStoreFile, HasItsOldTemporaryFilesRemovedWhereItsLinkLeads) {
    ASSERT_TRUE(QDir().mkpath(at(u"elsewhere"_s)));
    ASSERT_TRUE(QFile::link(at(u"elsewhere/target.json"_s), at(u"layouts.json"_s)));
    for (const QString& name :
         {u"elsewhere/target.json.saving-AbCdEf"_s, u"layouts.json.saving-AbCdEf"_s}) {
        write(at(name), "cut off");
        setAge(at(name), 61);
    }
    const LayoutStore store(at(u"layouts.json"_s));
    EXPECT_EQ(entries(), (QStringList{u"elsewhere"_s, u"layouts.json"_s}));
    EXPECT_TRUE(QDir(at(u"elsewhere"_s)).isEmpty());
}

TEST_F(LayoutStoreFile, DoesNotReadADevice) {
    const LayoutStore store(u"/dev/zero"_s);
    EXPECT_TRUE(store.customLayouts().empty());
}

TEST_F(LayoutStoreFile, MayHaveBecomeUnreadableBytes) {
    const QString path = at(u"layouts.json"_s);
    write(path, QByteArray(100000, '\xFE'));
    LayoutStore store(path);
    EXPECT_TRUE(store.customLayouts().empty());
    store.addCustomLayout(layout);
    EXPECT_EQ(read(path)->customLayouts, std::vector{layout});
}

TEST_F(LayoutStoreFile, KeepsItsPermissions) {
    const QString path = at(u"layouts.json"_s);
    for (const mode_t mode : {0600U, 0640U, 0644U, 0664U, 0700U}) {
        write(path, documentOf(customLayout(u"Old"_s)));
        ASSERT_EQ(chmod(QFile::encodeName(path).constData(), mode), 0);
        LayoutStore(path).addCustomLayout(layout);
        EXPECT_EQ(read(path)->customLayouts.size(), 2U);
        EXPECT_EQ(modeOf(path), mode);
        QFile::remove(path);
    }
}

TEST_F(LayoutStoreFile, StaysALinkToTheFileItStandsFor) {
    const QString target = at(u"target.json"_s);
    const QString link = at(u"layouts.json"_s);
    write(target, documentOf(customLayout(u"Old"_s)));
    ASSERT_EQ(chmod(QFile::encodeName(target).constData(), 0640), 0);
    ASSERT_TRUE(QFile::link(target, link));
    LayoutStore(link).addCustomLayout(layout);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), target);
    EXPECT_FALSE(QFileInfo(target).isSymLink());
    EXPECT_EQ(read(target)->customLayouts.size(), 2U);
    EXPECT_EQ(modeOf(target), 0640U);
}

TEST_F(LayoutStoreFile, StaysALinkThroughOtherLinksAndFolders) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"elsewhere"_s));
    const QString target = at(u"elsewhere/target.json"_s);
    write(target, documentOf(customLayout(u"Old"_s)));
    ASSERT_TRUE(QFile::link(u"elsewhere/target.json"_s, at(u"middle.json"_s)));
    ASSERT_TRUE(QFile::link(u"middle.json"_s, at(u"layouts.json"_s)));
    LayoutStore(at(u"layouts.json"_s)).addCustomLayout(layout);
    EXPECT_TRUE(QFileInfo(at(u"layouts.json"_s)).isSymLink());
    EXPECT_TRUE(QFileInfo(at(u"middle.json"_s)).isSymLink());
    EXPECT_EQ(read(target)->customLayouts.size(), 2U);
}

TEST_F(LayoutStoreFile, IsMadeWhereALinkPointsThatLeadsNowhereYet) {
    const QString target = at(u"target.json"_s);
    const QString link = at(u"layouts.json"_s);
    ASSERT_TRUE(QFile::link(target, link));
    LayoutStore(link).addCustomLayout(layout);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(read(target)->customLayouts, std::vector{layout});
}

TEST_F(LayoutStoreFile, SurvivesALinkToItself) {
    const QString link = at(u"layouts.json"_s);
    ASSERT_TRUE(QFile::link(link, link));
    LayoutStore store(link);
    EXPECT_TRUE(store.customLayouts().empty());
    store.addCustomLayout(layout);
    EXPECT_EQ(store.customLayouts(), std::vector{layout});
}

TEST_F(LayoutStoreFile, LeavesNothingElseInItsFolder) {
    LayoutStore store(at(u"layouts.json"_s));
    for (int i = 0; i < 20; ++i)
        store.addCustomLayout(customLayout(QString::number(i)));
    EXPECT_EQ(entries(), QStringList{u"layouts.json"_s});
}

TEST_F(LayoutStoreFile, MayHaveAnyName) {
    const QString path = at(u"Größe 😀 & <b>.json"_s);
    LayoutStore(path).addCustomLayout(layout);
    EXPECT_EQ(LayoutStore(path).customLayouts(), std::vector{layout});
}
