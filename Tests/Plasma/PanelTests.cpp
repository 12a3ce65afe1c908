// The panel of the real program with its companion in a session of KWin, and what is opened from
// there.

#include "ProgramInPlasma.h"

#include <QJsonArray>
#include <csignal>
#include <cstdlib>

namespace tilewright::testing {

TEST_F(ProgramInPlasma, ShowsItsPanelNowhereElseBeforeItIsBelowThePointer) {
    constexpr QPoint pointer(600, 300);
    session.input().move(pointer);
    // Where it is a way to the bus and back after it has come.
    const QString watch = session.begin(
        QStringLiteral("(workspace.windowAdded || workspace.clientAdded).connect(window => {"
                       " if (String(window.caption) === '%1')"
                       "  callDBus('org.freedesktop.DBus', '/', 'org.freedesktop.DBus', 'GetId',"
                       "   () => answer([window.frameGeometry.x, window.frameGeometry.y]));"
                       "})")
            .arg(panelTitle));
    startAgain();
    const QJsonArray first = session.answerTo(watch).toArray();
    expectPanelBelow(pointer);
    const QPoint place = session.frame(panelTitle).topLeft();
    EXPECT_EQ(first, (QJsonArray{place.x(), place.y()}));
}

TEST_F(ProgramInPlasma, OpensItsPanelBelowThePointerAtASecondStartAndClosesItInEveryWay) {
    constexpr QPoint pointer(600, 300);
    const auto open = [&] {
        session.input().move(pointer);
        openPanel();
    };
    const QString other = session.startClient(CompositorClient::qt, {1200, 500, 400, 300});
    open();
    for (const char* property : {"keepAbove", "onAllDesktops", "skipTaskbar", "skipPager"})
        EXPECT_TRUE(session.isWindow(panelTitle, QString::fromLatin1(property))) << property;
    expectPanelBelow(pointer);
    EXPECT_TRUE(waitUntil([&] { return !session.hasErrand(); })) << "nothing stays to place it";

    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "Escape";
    open();
    session.input().move(session.frame(other).center());
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "another window";

    session.place(other, {0, 0, 1900, 1000});
    open();
    session.input().move(QPoint(session.frame(panelTitle).left() + 4, 400));
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "another window, through the shadow";
}

TEST_F(ProgramInPlasma, OpensItsPanelWhereThePointerIsAlsoWhenKWinIsSlowToTell) {
    session.input().move({1200, 500});
    openPanel();
    session.input().tap(KernelKey::escape);
    ASSERT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
    constexpr QPoint pointer(600, 300);
    session.input().move(pointer);
    session.tell(QStringLiteral("0"));
    ::kill(session.kwinPid(), SIGSTOP);
    // As a second start does; that would have to wait for KWin itself.
    const QString name = QStringLiteral("org.tilewright.Tilewright.Displaywayland_2dtest");
    const QDBusMessage answer = session.bus().call(QDBusMessage::createMethodCall(
        name, QStringLiteral("/org/tilewright/Tilewright"),
        QStringLiteral("org.tilewright.Instance"), QStringLiteral("Activate")));
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    const auto isStillThere = [&] { return program->isRunning(); };
    EXPECT_TRUE(staysTrue(isStillThere, std::chrono::milliseconds(600)));
    ::kill(session.kwinPid(), SIGCONT);
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    expectPanelBelow(pointer);
}

TEST_F(ProgramInPlasma, KnowsItsPanelWhereAnotherWindowHasTheSameTitle) {
    constexpr QPoint pointer(600, 300);
    static_cast<void>(session.startClient(CompositorClient::qt, {1200, 500, 400, 300}, panelTitle));
    session.input().move(pointer);
    startAgain();
    // KWin 5 numbers them.
    const QString panel =
        QStringLiteral("all().filter(window => window.active && window.keepAbove)[0]");
    EXPECT_TRUE(waitUntil([&] { return !session.frameOf(panel).isEmpty(); })) << session.describe();
    EXPECT_LE(std::abs(session.frameOf(panel).center().x() - pointer.x()), 2);
}

TEST_F(ProgramInPlasma, SnapsTheLastActiveWindowThatIsNotItsOwnByAClickOnAZoneInThePanel) {
    expectToSnapTheLastActiveWindowByAClickInThePanel(start);
}

TEST_F(ProgramInPlasma, OpensItsPanelWhileItsSettingsHaveTheFocus) {
    openSettings();
    openPanel();
    EXPECT_TRUE(staysTrue([&] { return isPanelReady(); }, std::chrono::milliseconds(400)));
}

TEST_F(ProgramInPlasma, BringsItsSettingsToTheFrontAgainWhenTheyAreAskedForAgain) {
    expectToBringTheSettingsForwardAgain(start);
}

} // namespace tilewright::testing
