// The real program with its companion in a session of GNOME Shell: seen and used as by a user.

#include "ProgramInGnome.h"

#include <DebianRoot.h>

#include <QJsonArray>
#include <csignal>

namespace tilewright::testing {
namespace {

/// A system with the package, which dpkg has installed.
struct SystemWithPackage {
    SystemWithPackage() { system.install(system.package()); }

    DebianRoot system;
};

struct PackageInGnome : SystemWithPackage, ProgramInGnome {
    PackageInGnome()
        : ProgramInGnome(system.program(), 1, CompanionAtStart::isPackaged, system.dataFolders()) {}

    void dragIntoAZone() {
        const QString title = session.startClient(CompositorClient::qt, start);
        dragToFirstZone(title);
        drop();
        EXPECT_TRUE(waitUntil([&] { return session.frame(title) == zone(0); }))
            << session.describe();
    }
    void lockAndUnlock() {
        session.lock();
        EXPECT_TRUE(session.item().isEmpty());
        session.unlock();
        static_cast<void>(session.waitForItem());
    }
};

} // namespace

TEST_F(ProgramInGnome, TakesNoPartInADragThatEscapeCancelsOrThatHasNoControl) {
    expectNoPartAfterEscapeAndWithoutControl(session.startClient(CompositorClient::qt, start));
}

TEST_F(ProgramInGnome, LeavesNothingAndMovesNothingWhenItIsEndedOrKilledInMidDrag) {
    const QString title = session.startClient(CompositorClient::qt, start);
    endInMidDrag(title, *program, SIGTERM);
    EXPECT_EQ(program->exitCode(), 0);
    EXPECT_TRUE(session.item().isEmpty());

    startAgainWith("control");
    session.place(title, start);
    endInMidDrag(title, *program, SIGKILL);
    EXPECT_TRUE(session.item().isEmpty());
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
    expectPanelBelowItem();

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

    constexpr QRect elsewhere(100, 500, 400, 300);
    const QString other = session.startClient(CompositorClient::qt, elsewhere);
    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); }));
    // Without a press, as by the keys.
    session.place(other, elsewhere);
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "another window has the focus";
    EXPECT_TRUE(isInFront(other));
    // A click right now would be taken for the one that has cost it the focus.
    EXPECT_TRUE(staysTrue([&] { return !isPanelOpen(); }, std::chrono::milliseconds(600)));

    clickItem();
    ASSERT_TRUE(waitUntil([&] { return isPanelReady(); }));
    session.lock();
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); })) << "the lock";
    session.unlock();
    item = session.waitForItem();
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

TEST_F(PackageInGnome, GoesOnThroughAnUpgradeAndARemovalAndFollowsThemAtTheNextLogin) {
    const QString before = session.companionVersion();
    const QString newer = QStringLiteral("999");
    EXPECT_FALSE(before.isEmpty());
    // The program that runs has lost its file by that.
    system.install(system.packageAsVersion(newer));
    lockAndUnlock();
    EXPECT_EQ(session.companionVersion(), before);
    dragIntoAZone();

    session.logInAgain();
    session.start(system.program());
    static_cast<void>(session.waitForItem());
    EXPECT_EQ(session.companionVersion(), newer);
    dragIntoAZone();

    system.purge();
    EXPECT_EQ(system.installed(), QStringList());
    lockAndUnlock();
    dragIntoAZone();

    session.logInAgain();
    EXPECT_EQ(session.companionVersion(), QString());
    const QString enabled = QStringLiteral("global.settings.get_strv('enabled-extensions')");
    EXPECT_TRUE(session.ask(enabled).toArray().contains(QString::fromLatin1(packagedUuid)))
        << "what the user has chosen stays, and does nothing";
    EXPECT_EQ(session.describe().find(packagedUuid), std::string::npos) << session.describe();
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

    // Newer shells begin with the overview, and no companion leaves it here.
    ASSERT_TRUE(waitUntil([&] {
        session.tell(QStringLiteral("Main.overview.hide()"));
        return session
            .ask(QStringLiteral("!Main.overview.visible && !Main.overview.animationInProgress"))
            .toBool();
    })) << session.describe();
    // Meanwhile a second start shows the panel, as a window like any other.
    Subprocess& second = session.start(program);
    EXPECT_TRUE(second.waitForEnd());
    EXPECT_EQ(second.exitCode(), 0);
    const QString panel = QStringLiteral("Tilewright");
    ASSERT_TRUE(waitUntil([&] { return !session.frame(panel).isEmpty(); })) << session.describe();
    EXPECT_TRUE(session
                    .ask(QStringLiteral("global.get_window_actors().map(a => a.meta_window)"
                                        ".some(w => w.get_title() === '%1' && !w.is_above()"
                                        " && !w.skip_taskbar && !w.is_on_all_workspaces())")
                             .arg(panel))
                    .toBool());
    // A click before that goes nowhere.
    QImage before;
    ASSERT_TRUE(waitUntil([&] {
        const QImage now = session.picture();
        const QPoint onGround = session.frame(panel).bottomLeft() + QPoint(60, -30);
        return now.pixelColor(onGround).lightness() > 160 && std::exchange(before, now) == now;
    }));
    const QPoint settings = session.frame(panel).bottomLeft() + QPoint(60, -45);
    session.input().move(settings);
    session.input().click();
    EXPECT_TRUE(waitUntil([&] {
        return session.frame(panel).isEmpty() &&
               !session.frame(QStringLiteral("Tilewright Settings")).isEmpty();
    })) << session.describe();

    session.logInAgain();
    session.start(program);
    EXPECT_FALSE(session.waitForItem().isEmpty()) << session.describe();
}

} // namespace tilewright::testing
