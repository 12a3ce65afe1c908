#include "SettingsProgram.h"

#include <Gnome/GnomeStartList.h>
#include <Waiting.h>

namespace tilewright::testing {
namespace {

const QString ours = QStringLiteral("tilewright@tilewright.org");

class GnomeStartListTest : public ::testing::Test {
protected:
    [[nodiscard]] bool isCalled(int times) {
        return waitUntil([&] { return settings.calls().size() == times; });
    }
    /// That an extension is added in a second round says that the first has come to its end.
    [[nodiscard]] bool takesAnother() {
        return waitUntil([&] {
            list.add(QStringLiteral("another"));
            return settings.started().contains("another");
        });
    }

    SettingsProgram settings;
    GnomeStartList list{settings.program()};
};

} // namespace

TEST(GnomeStartListValues, AreListsOfPlainTextsOrNothing) {
    using List = QStringList;
    const QString a = QStringLiteral("a@b.c");
    EXPECT_EQ(GnomeStartList::listIn("@as []\n"), List());
    EXPECT_EQ(GnomeStartList::listIn("['a@b.c']\n"), List(a));
    EXPECT_EQ(GnomeStartList::listIn("['a@b.c', 'd e']"), List({a, QStringLiteral("d e")}));
    for (const char* const other : {"",
                                    "[",
                                    "]",
                                    "[]",
                                    "['a'",
                                    "'a'",
                                    "a",
                                    "['a',]",
                                    "['a','b']",
                                    "['a', b]",
                                    "[\"a\"]",
                                    "['a\\'', 'b']",
                                    "['a\\\\']",
                                    "[\"it's\", 'b']",
                                    "['a'] ['b']",
                                    "['\xc3\xa4']",
                                    "['\xff']",
                                    "['a\nb']",
                                    "[1, 2]",
                                    "['a', '",
                                    "[', ']"})
        EXPECT_EQ(GnomeStartList::listIn(other), std::nullopt) << other;
}

TEST(GnomeStartListValues, AreReadAsTheyWereWritten) {
    for (const QStringList& list :
         {QStringList(), QStringList(ours), QStringList{QStringLiteral("other@example.org"), ours}})
        EXPECT_EQ(GnomeStartList::listIn(GnomeStartList::valueOf(list).toUtf8()), list);
}

TEST_F(GnomeStartListTest, AddsTheExtensionToThoseThatRun) {
    settings.setStarted("['other@example.org']\n");
    list.add(ours);
    EXPECT_TRUE(waitUntil([&] {
        return settings.started() == "['other@example.org', 'tilewright@tilewright.org']";
    }));
}

TEST_F(GnomeStartListTest, LeavesAListAloneThatHasIt) {
    settings.setStarted("['tilewright@tilewright.org']\n");
    list.add(ours);
    ASSERT_TRUE(isCalled(2));
    ASSERT_TRUE(takesAnother());
    EXPECT_EQ(settings.started(), "['tilewright@tilewright.org', 'another']");
}

TEST_F(GnomeStartListTest, TurnsNothingOnThatTheUserHasTurnedOff) {
    settings.setTurnedOff("['tilewright@tilewright.org']\n");
    list.add(ours);
    ASSERT_TRUE(isCalled(1));
    ASSERT_TRUE(takesAnother());
    EXPECT_EQ(settings.started(), "['another']");
}

TEST(GnomeStartList, WritesNothingWhereItDoesNotUnderstandWhatIsThere) {
    for (const QByteArray& value : {QByteArray("['it\\'s']\n"), QByteArray(),
                                    QByteArray("['" + QByteArray(100'000, 'x') + "']")}) {
        const SettingsProgram settings;
        settings.setStarted(value);
        GnomeStartList list(settings.program());
        // A second round says that the first has come to its end.
        constexpr int inOneRound = 2;
        EXPECT_TRUE(waitUntil([&] {
            list.add(ours);
            return settings.calls().size() > inOneRound;
        }));
        EXPECT_EQ(settings.started(), value);
        EXPECT_EQ(settings.calls().filter(QStringLiteral("set ")), QStringList());
    }
}

TEST_F(GnomeStartListTest, EndsASettingsProgramThatDoesNotStopToTell) {
    settings.floodOnce();
    list.add(ours);
    ASSERT_TRUE(isCalled(1));
    EXPECT_TRUE(takesAnother());
    EXPECT_EQ(settings.started(), "['another']");
}

TEST_F(GnomeStartListTest, LivesWithASettingsProgramThatIsNotThereOrFails) {
    GnomeStartList none(QStringLiteral("/nonexistent/gsettings"));
    GnomeStartList failing(QStringLiteral("/bin/false"));
    for (int time = 0; time < 2; ++time) {
        none.add(ours);
        failing.add(ours);
        ASSERT_TRUE(takesAnother());
        settings.setStarted("@as []\n");
    }
    // And with one that is under way at the end.
    settings.floodOnce();
    GnomeStartList(settings.program()).add(ours);
}

} // namespace tilewright::testing
