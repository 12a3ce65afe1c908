// The real program with its companion in a session of GNOME Shell: seen and used as by a user.

#include "ProgramInGnome.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <csignal>

namespace tilewright::testing {
namespace {

/// A program whose file can be replaced, as the companion's can.
struct UpgradedPackage : ProgramInGnome {
    UpgradedPackage()
        : ProgramInGnome(copyOfTheProgram()) {}
    ~UpgradedPackage() override { QFile::remove(path()); }

    [[nodiscard]] static QString path() {
        return QStringLiteral("%1/tilewright-%2").arg(QDir::tempPath()).arg(::getpid());
    }
    static QString copyOfTheProgram() {
        QFile::remove(path());
        EXPECT_TRUE(QFile::copy(QStringLiteral(TILEWRIGHT_PROGRAM), path()));
        return path();
    }
};

} // namespace

TEST_F(ProgramInGnome, TakesNoPartInADragThatEscapeCancelsOrThatHasNoControl) {
    expectNoPartAfterEscapeAndWithoutControl(session.startClient(CompositorClient::qt, start));
}

TEST_F(ProgramInGnome, LeavesNothingWhenItIsKilledInMidDrag) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    program->signal(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_TRUE(session.item().isEmpty());
    drop();
    EXPECT_EQ(session.frame(title).size(), start.size());
}

TEST_F(ProgramInGnome, DoesNotHoldUpADragWhileItIsStopped) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragWhileItIsStopped(title, *program);
    drop();
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    program->signal(SIGCONT);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); })) << session.describe();
}

TEST_F(ProgramInGnome, OpensItsPanelBelowTheItemWithTheFocusAndClosesItInEveryWay) {
    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    EXPECT_TRUE(panelIs(QStringLiteral("is_on_all_workspaces()")));
    EXPECT_TRUE(panelIs(QStringLiteral("skip_taskbar")));
    const QRect frame = session.frame(panelTitle);
    // The shadow aside, which is at most as wide as the panel is from the screen's edge.
    constexpr int shadow = 60;
    EXPECT_GT(frame.top(), item.bottom() - shadow);
    EXPECT_LT(frame.top(), item.bottom() + shadow);
    EXPECT_LT(frame.right(), 1920 + shadow);
    EXPECT_GT(frame.right(), item.left());

    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "Escape";

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); }));
    // On nothing: no window gets the focus by it.
    session.input().move({300, 900});
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "a press outside";

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); }));
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "the item";
    EXPECT_TRUE(staysTrue([&] { return !isPanelOpen(); }, std::chrono::milliseconds(300)));

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); }));
    session.tell(QStringLiteral("Main.overview.show()"));
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "the overview";
}

TEST_F(ProgramInGnome, OpensItsPanelFromTheOverviewWithTheKeys) {
    const auto is = [&](const QString& state) {
        return session.ask(QStringLiteral("Main.overview.") + state).toBool();
    };
    session.tell(QStringLiteral("Main.overview.show()"));
    ASSERT_TRUE(waitUntil([&] {
        return is(QStringLiteral("visible")) && !is(QStringLiteral("animationInProgress"));
    }));
    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady() && !is(QStringLiteral("visible")); }))
        << session.describe();
    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << session.describe();
}

TEST_F(ProgramInGnome, ShowsItsPanelNowhereElseBeforeItIsBelowTheItem) {
    // Where the panel belongs comes by the bus, its window by the compositor's socket: whichever is
    // later, here by far, no frame shows it in another place, nor in the shell's manner of opening
    // windows.
    session.tell(QStringLiteral(R"((() => {
        const windows = Main.extensionManager.lookup('%1').stateObj._companion._windows;
        const setPanel = windows.setPanel.bind(windows);
        windows.setPanel = command => imports.gi.GLib.timeout_add(0, 300, () => setPanel(command) && false);
        globalThis.seen = [];
        global.stage.connect('after-paint', () => global.get_window_actors()
            .filter(actor => actor.meta_window.get_title() === '%2' && actor.visible && actor.opacity > 0)
            .forEach(actor => {
                const {x, y} = actor.meta_window.get_frame_rect();
                globalThis.seen.push([x, y, actor.scale_x, actor.scale_y]);
            }));
    })())")
                     .arg(QString::fromLatin1(companionUuid), panelTitle));
    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    QJsonArray seen;
    ASSERT_TRUE(waitUntil([&] {
        seen = session.ask(QStringLiteral("globalThis.seen")).toArray();
        return !seen.isEmpty();
    }));
    const QPoint place = session.frame(panelTitle).topLeft();
    const QJsonArray there{place.x(), place.y(), 1, 1};
    for (const QJsonValue& frame : std::as_const(seen))
        EXPECT_EQ(frame.toArray(), there);
}

TEST_F(ProgramInGnome, OpensItsPanelBelowThePointerAtASecondStart) {
    constexpr QPoint pointer(600, 500);
    session.input().move(pointer);
    startAgain();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    expectPanelBelow(pointer);
}

TEST_F(ProgramInGnome, BringsItsSettingsToTheFrontAgainWhenTheyAreAskedForAgain) {
    expectToBringTheSettingsForwardAgain(start);
}

TEST_F(ProgramInGnome, ShowsNothingBehindTheLockAndGoesOnAfterIt) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    session.lock();
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_TRUE(session.item().isEmpty());
    drop();
    session.unlock();
    static_cast<void>(session.waitForItem());
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); })) << session.describe();
}

TEST_F(UpgradedPackage, GoesOnWithTheShellsOldCompanionUntilTheNextLoginBringsTheNewOne) {
    const auto dragIntoAZone = [&] {
        const QString title = session.startClient(CompositorClient::qt, start);
        dragToFirstZone(title);
        drop();
        EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); }))
            << session.describe();
    };
    // The program that runs has lost its file by that.
    copyOfTheProgram();
    session.installCompanion(path(), QStringLiteral("1"));
    session.lock();
    EXPECT_TRUE(session.item().isEmpty());
    session.unlock();
    static_cast<void>(session.waitForItem());
    EXPECT_EQ(session.companionVersion(), QStringLiteral("0"));
    dragIntoAZone();

    session.logInAgain();
    session.start(path());
    static_cast<void>(session.waitForItem());
    EXPECT_EQ(session.companionVersion(), QStringLiteral("1"));
    dragIntoAZone();
}

TEST_F(UpgradedPackage, LeavesNothingThatFailsAtTheNextLoginWhenItIsRemoved) {
    QFile::remove(path());
    session.removeCompanion();
    // It is there for as long as nothing is switched.
    EXPECT_FALSE(session.item().isEmpty());
    session.logInAgain();
    EXPECT_EQ(session.companionVersion(), QString());
    const QString enabled = QStringLiteral("global.settings.get_strv('enabled-extensions')");
    EXPECT_TRUE(session.ask(enabled).toArray().contains(QString::fromLatin1(companionUuid)));
    EXPECT_EQ(session.describe().find(companionUuid), std::string::npos) << session.describe();
}

TEST(CompanionThatTheShellHasYetToSee, RunsAfterTheNextLoginWithoutAClick) {
    const QString program = QStringLiteral(TILEWRIGHT_PROGRAM);
    GnomeSession session(program, 1, CompanionAtStart::isNowhere);
    session.installCompanion(program);
    session.start(program);
    ASSERT_TRUE(waitUntil([&] {
        return session.ask(QStringLiteral("global.settings.get_strv('enabled-extensions')"))
            .toArray()
            .contains(QString::fromLatin1(companionUuid));
    })) << session.describe();
    EXPECT_FALSE(session.isCompanionActive());
    session.logInAgain();
    session.start(program);
    EXPECT_FALSE(session.waitForItem().isEmpty()) << session.describe();
}

} // namespace tilewright::testing
