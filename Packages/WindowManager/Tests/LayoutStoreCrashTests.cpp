#include "SampleLayout.h"
#include "StoreCrash.h"
#include "TestHelperProcess.h"

#include <WindowManager/LayoutCoding.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace Qt::StringLiterals;

namespace {

constexpr int oldNumber = 5;
constexpr int newNumber = 11;

/// A folder with a store's file that holds the old document.
class LayoutStoreFault : public ::testing::Test {
protected:
    void SetUp() override { writeOld(); }

    void writeOld() const {
        QFile::remove(path());
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(*LayoutCoding::encode(LayoutCoding::Persisted{{sampleLayout(oldNumber)}, {}}));
    }

    [[nodiscard]] QString path() const { return folder_.filePath(u"layouts.json"_s); }

    /// The number of the document in the file; none when it is not a whole one.
    [[nodiscard]] std::optional<int> documentFound() const {
        QFile file(path());
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        const auto found = LayoutCoding::decodePersisted(file.readAll());
        if (!found || found->customLayouts.size() != 1 || !found->assignments.empty())
            return std::nullopt;
        const int number = found->customLayouts.front().name.toInt();
        return found->customLayouts.front() == sampleLayout(number) ? std::optional(number)
                                                                    : std::nullopt;
    }

    [[nodiscard]] TestHelperRun save(const QString& fault, int call) const {
        return runTestHelper({fault, path(), QString::number(newNumber), QString::number(call)});
    }

    /// Which calls change files when one document is saved, in order.
    [[nodiscard]] QStringList calls() const {
        const TestHelperRun run = save(u"none"_s, 0);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(documentFound(), newNumber);
        writeOld();
        return run.lines;
    }
    [[nodiscard]] int callCount() const { return static_cast<int>(calls().size()); }
    /// The number of the call that puts the new document in the place of the old one.
    [[nodiscard]] int placingCall() const {
        return static_cast<int>(calls().lastIndexOf(u"rename"_s)) + 1;
    }

    [[nodiscard]] QStringList files() const {
        return QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden);
    }

    /// Has each call in turn meet a fault; answers how often the old document was found.
    int faultEachCall(const QString& fault, int expectedExitCode) const {
        const int calls = callCount();
        EXPECT_GE(calls, 4) << "a file is opened, written, flushed and put in place";
        int foundOld = 0;
        for (int call = 1; call <= calls; ++call) {
            writeOld();
            const TestHelperRun run = save(fault, call);
            EXPECT_EQ(run.exitCode, expectedExitCode) << "call " << call;
            const auto found = documentFound();
            EXPECT_TRUE(found == oldNumber || found == newNumber) << "call " << call;
            foundOld += found == oldNumber ? 1 : 0;
        }
        return foundOld;
    }

private:
    QTemporaryDir folder_;
};

} // namespace

TEST(LayoutStoreCrash, LeavesAWholeDocumentWhenKilledAtRandomMoments) {
    const StoreCrashResult result = crashSavingProcesses(100, 20260101);
    EXPECT_EQ(result.failure, "");
    EXPECT_EQ(result.kills, 100);
    EXPECT_GT(result.saves, 100);
    EXPECT_EQ(result.foundOld + result.foundNew, 100);
    EXPECT_EQ(result.strayFiles, 0);
}

TEST_F(LayoutStoreFault, LeavesAWholeDocumentWhenAnyOneCallFails) {
    EXPECT_GT(faultEachCall(u"fail"_s, 0), 0);
    EXPECT_EQ(files(), QStringList{u"layouts.json"_s}) << "nothing is left behind";
}

TEST_F(LayoutStoreFault, IsSafeOnTheDiskBeforeItTakesItsPlaceAndItsPlaceIsSafeInTheEnd) {
    const QStringList made = calls();
    const auto placed = made.indexOf(u"rename"_s);
    EXPECT_GT(made.indexOf(u"sync"_s), made.lastIndexOf(u"write"_s));
    EXPECT_LT(made.indexOf(u"sync"_s), placed);
    EXPECT_EQ(made.mid(placed), (QStringList{u"rename"_s, u"sync folder"_s}));
}

TEST_F(LayoutStoreFault, LeavesTheOldDocumentWhereItMayMakeNoFile) {
    EXPECT_EQ(save(u"refuse-new-files"_s, 0).exitCode, 0);
    EXPECT_EQ(documentFound(), oldNumber);
    EXPECT_EQ(files(), QStringList{u"layouts.json"_s});
}

TEST_F(LayoutStoreFault, LeavesTheOldDocumentWhenTheDiskIsFullFromAnyCallOn) {
    const int last = placingCall();
    ASSERT_GE(last, 4);
    for (int call = 1; call <= last; ++call) {
        writeOld();
        EXPECT_EQ(save(u"fail-from-there-on"_s, call).exitCode, 0);
        EXPECT_EQ(documentFound(), oldNumber) << "call " << call;
        EXPECT_EQ(files(), QStringList{u"layouts.json"_s}) << "call " << call;
    }
}

TEST_F(LayoutStoreFault, LeavesTheOldDocumentWhenTheDiskFillsUpWithinAWrite) {
    const int last = placingCall();
    for (int call = 1; call <= last; ++call) {
        writeOld();
        EXPECT_EQ(save(u"fail-half-way"_s, call).exitCode, 0);
        EXPECT_EQ(documentFound(), oldNumber) << "call " << call;
    }
}

TEST_F(LayoutStoreFault, LeavesAWholeDocumentWhenKilledBeforeAnyCall) {
    EXPECT_GT(faultEachCall(u"kill-before"_s, -1), 0);
}

TEST_F(LayoutStoreFault, LeavesAWholeDocumentWhenKilledAfterAnyCall) {
    EXPECT_GT(faultEachCall(u"kill-after"_s, -1), 0);
}

TEST_F(LayoutStoreFault, LeavesTheOldDocumentWhenTheSystemAllowsNoFileOfItsSize) {
    ASSERT_GT(LayoutCoding::encode(LayoutCoding::Persisted{{sampleLayout(newNumber)}, {}})->size(),
              1000);
    for (const int bytes : {0, 1, 100, 999}) {
        EXPECT_EQ(save(u"save-with-limit"_s, bytes).exitCode, 0);
        EXPECT_EQ(documentFound(), oldNumber) << bytes << " bytes";
        EXPECT_EQ(files(), QStringList{u"layouts.json"_s}) << bytes << " bytes";
    }
}

namespace {

/// A folder whose file nobody can make sense of, until it is saved over.
class LayoutStoreUnreadable : public LayoutStoreFault {
protected:
    const QByteArray old = "{\"customLayouts\":[],, \"made\":\"by hand\"}";
    const QString unreadable = path() + u".unreadable"_s;

    void writeOld() const {
        QFile::remove(unreadable);
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(old);
    }
    [[nodiscard]] static QByteArray contents(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Has each call of the save in turn meet a fault.
    void faultEachCall(const QString& fault, int expectedExitCode) const {
        writeOld();
        const auto calls = save(u"none"_s, 0).lines.size();
        EXPECT_GE(calls, 5) << "what a save takes, and what leaving the old contents takes";
        for (int call = 1; call <= calls; ++call) {
            writeOld();
            EXPECT_EQ(save(fault, call).exitCode, expectedExitCode) << "call " << call;
            if (contents(path()) == old)
                continue;
            EXPECT_EQ(documentFound(), newNumber) << "call " << call;
            EXPECT_EQ(contents(unreadable), old) << "call " << call;
        }
    }
};

} // namespace

TEST_F(LayoutStoreUnreadable, IsLeftWhicheverCallFails) {
    faultEachCall(u"fail"_s, 0);
}

TEST_F(LayoutStoreUnreadable, IsLeftWhereverTheProcessIsKilled) {
    faultEachCall(u"kill-before"_s, -1);
    faultEachCall(u"kill-after"_s, -1);
}

TEST_F(LayoutStoreUnreadable, IsLeftAsACopyWhereAFileCanHaveNoSecondName) {
    writeOld();
    EXPECT_EQ(save(u"none"_s, 0).lines.value(0), u"link"_s);
    writeOld();
    EXPECT_EQ(save(u"fail"_s, 1).exitCode, 0);
    EXPECT_EQ(documentFound(), newNumber);
    EXPECT_EQ(contents(unreadable), old);
}

TEST_F(LayoutStoreUnreadable, IsAFileOfWhichOnlyAPartCanBeReadAlthoughThatWouldMakeSense) {
    QByteArray document = contents(path());
    document += QByteArray(document.size() + 1, ' ');
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(document);
    }
    ASSERT_EQ(documentFound(), oldNumber);
    const TestHelperRun run = runTestHelper({u"load-half"_s, path(), QString::number(newNumber)});
    EXPECT_EQ(run.lines, QStringList{u"0"_s});
    EXPECT_EQ(documentFound(), newNumber);
    EXPECT_EQ(contents(unreadable), document);
}
