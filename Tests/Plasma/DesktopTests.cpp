// The real program in a whole session of Plasma: with its desktop, its panel and its tray.

#include "PlasmaDesktop.h"

#include <ProgramInCompositor.h>

#include <csignal>

namespace tilewright::testing {
namespace {

struct ProgramInPlasmasDesktop : ProgramInCompositor<PlasmaSession> {
    explicit ProgramInPlasmasDesktop(
        PlasmaDesktop::Panel panel = PlasmaDesktop::Panel::besideWindows)
        : ProgramInCompositor(PlasmaDisplays{}, PlasmaSession::Around::desktop)
        , desktop(session, panel)
        , program(&startProgram(QStringLiteral(TILEWRIGHT_PROGRAM), session.secondConnector())) {
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It slides into its place.
        const auto isInPlace = [&] { return desktop.newItem() && *desktop.newItem() == item; };
        EXPECT_TRUE(waitUntil([&] {
            item = desktop.newItem().value_or(QPoint());
            return staysTrue(isInPlace, std::chrono::milliseconds(1000));
        })) << session.describe();
    }
    [[nodiscard]] QRect workArea() override { return desktop.workArea(); }
    void clickItem() {
        session.input().move(item);
        session.input().click();
    }
    void openPanel() override {
        clickItem();
        ASSERT_TRUE(waitUntil([&] {
            return session.isWindow(panelTitle, QStringLiteral("active && w.keepAbove"));
        })) << session.describe();
        // A key that comes in the moment in which it opens finds nothing in it to press yet.
        ASSERT_TRUE(waitUntil([&] {
            const QImage picture = session.picture();
            return staysTrue([&] { return session.picture() == picture; },
                             std::chrono::milliseconds(300));
        }));
    }

    [[nodiscard]] bool isInFront(const QString& title) override {
        return session.isWindow(title, QStringLiteral("active"));
    }

    PlasmaDesktop desktop;
    Subprocess* const program;
    /// Where the tray shows it.
    QPoint item;
};

struct ProgramBelowPlasmasPanel : ProgramInPlasmasDesktop {
    ProgramBelowPlasmasPanel()
        : ProgramInPlasmasDesktop(PlasmaDesktop::Panel::aboveWindows) {}
};

} // namespace

TEST_F(ProgramInPlasmasDesktop, OpensItsPanelAtItsItemInTheTrayAndClosesItByAnotherClick) {
    for (int round = 0; round < 2; ++round) {
        openPanel();
        const QRect frame = session.frame(panelTitle);
        EXPECT_TRUE(frame.left() < item.x() && item.x() < frame.right());
        // Its shadow ends below it.
        constexpr int shadow = 60;
        EXPECT_NEAR(frame.bottom(), workArea().bottom(), shadow);
        clickItem();
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        EXPECT_TRUE(staysTrue([&] { return !isPanelOpen(); }, std::chrono::milliseconds(500)));
    }
}

TEST_F(ProgramInPlasmasDesktop, KeepsTheDisplayAwakeUntilItIsToldToStopOrIsKilled) {
    constexpr std::chrono::seconds plasmaThinksItOver{20};
    expectToKeepAwakeUntilToldToStopOrKilled(
        *program, [&] { openPanel(); }, [&] { return desktop.isKeptAwake(); }, plasmaThinksItOver);
}

TEST_F(ProgramInPlasmasDesktop, DividesWhatThePanelLeavesOfTheDisplay) {
    const QString title = session.startClient(CompositorClient::qt, {600, 300, 640, 420});
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
}

TEST_F(ProgramBelowPlasmasPanel, ShowsItsZonesAboveThatAndAboveAFullScreenWindow) {
    const QRect display = session.displays().front();
    ASSERT_TRUE(waitUntil([&] { return workArea() == display; })) << session.describe();
    const QString below = session.startClient(CompositorClient::gtk4, {0, 400, 1000, 680});
    const QString title = session.startClient(CompositorClient::qt, {600, 200, 640, 420});
    // Between the tasks and the tray.
    const QPoint onPanel(zone(0).right() - 60, desktop.panel().center().y());
    const QPoint besidePanel(onPanel.x(), desktop.panel().top() - 60);
    const auto amber = [&] {
        const QColor colour = session.pixel(onPanel);
        return colour.red() - colour.blue();
    };
    session.grab(title);
    session.input().glide(zone(0).center());
    EXPECT_TRUE(waitUntil([&] { return session.pixel(onPanel) != session.pixel(besidePanel); }))
        << "it is above windows";
    // It changes with the windows below it, a little and for a while.
    int bare = 0;
    EXPECT_TRUE(waitUntil([&] {
        bare = amber();
        return staysTrue([&] { return amber() == bare; }, std::chrono::milliseconds(500));
    }));
    const auto isLit = [&] { return amber() > bare + 10; };
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(0).center() + QPoint(6, 0), 3);
    ASSERT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
    EXPECT_TRUE(waitUntil(isLit)) << amber() << " after " << bare;
    session.input().releaseKey(KernelKey::control);
    session.input().glide(zone(0).center(), 3);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_TRUE(waitUntil([&] { return !isLit(); })) << amber() << " after " << bare;
    // With Control held it would end no drag in Plasma 5.
    session.input().tap(KernelKey::escape);
    drop();

    session.tell(QStringLiteral("find('%1').fullScreen = true").arg(below));
    ASSERT_TRUE(waitUntil([&] { return session.frame(below) == display; }));
    const QString above = session.startClient(CompositorClient::qt, {600, 200, 640, 420});
    dragToFirstZone(above);
    drop();
    EXPECT_TRUE(endsIn(above, zone(0))) << session.describe();
    EXPECT_TRUE(session.isWindow(below, QStringLiteral("fullScreen")));
}

} // namespace tilewright::testing
