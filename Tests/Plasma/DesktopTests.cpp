// The real program in a whole session of Plasma: with its desktop, its panel and its tray.

#include "PlasmaDesktop.h"

#include <ProgramInCompositor.h>

#include <csignal>

namespace tilewright::testing {
namespace {

struct ProgramInPlasmasDesktop : ProgramInCompositor<PlasmaSession> {
    ProgramInPlasmasDesktop()
        : ProgramInCompositor(PlasmaDisplays{}, PlasmaSession::Around::desktop)
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

    PlasmaDesktop desktop{session};
    Subprocess* const program;
    /// Where the tray shows it.
    QPoint item;
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

} // namespace tilewright::testing
