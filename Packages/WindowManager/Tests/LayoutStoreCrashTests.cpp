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

    /// How many calls change files when one document is saved.
    [[nodiscard]] int callCount() const {
        const TestHelperRun run = save(u"none"_s, 0);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(documentFound(), newNumber);
        writeOld();
        return run.lines.value(0).toInt();
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
}

TEST_F(LayoutStoreFault, LeavesAWholeDocumentWhenAnyOneCallFails) {
    EXPECT_GT(faultEachCall(u"fail"_s, 0), 0);
    EXPECT_EQ(files(), QStringList{u"layouts.json"_s}) << "nothing is left behind";
}

TEST_F(LayoutStoreFault, LeavesTheOldDocumentWhenTheDiskIsFullFromAnyCallOn) {
    const int calls = callCount();
    for (int call = 1; call <= calls; ++call) {
        writeOld();
        EXPECT_EQ(save(u"fail-from-there-on"_s, call).exitCode, 0);
        EXPECT_EQ(documentFound(), oldNumber) << "call " << call;
        EXPECT_EQ(files(), QStringList{u"layouts.json"_s}) << "call " << call;
    }
}

TEST_F(LayoutStoreFault, LeavesTheOldDocumentWhenTheDiskFillsUpWithinAWrite) {
    const int calls = callCount();
    for (int call = 1; call <= calls; ++call) {
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
