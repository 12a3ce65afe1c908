// The program with its companion on other displays than the one plain one, in sessions of KWin.

#include "ProgramInPlasma.h"

#include <FakeNotifierWatcher.h>
#include <NotifierHost.h>
#include <OverlayEdges.h>

namespace tilewright::testing {
namespace {

/// Two displays, the second one with so many pixels along each unit.
struct ProgramOnTwoDisplays : ProgramInPlasma, ::testing::WithParamInterface<double> {
    ProgramOnTwoDisplays()
        : ProgramInPlasma("control", {.scales = {1, GetParam()}}) {}
};

INSTANTIATE_TEST_SUITE_P(Of, ProgramOnTwoDisplays, ::testing::Values(1, 1.5),
                         [](const auto& scale) {
                             return "100And" + QString::number(scale.param * 100).toStdString();
                         });

/// A display with as many pixels along each unit.
struct ProgramAtScale : ProgramInPlasma, ::testing::WithParamInterface<double> {
    ProgramAtScale()
        : ProgramInPlasma("control", {.scales = {GetParam()}}) {}
};

INSTANTIATE_TEST_SUITE_P(Of, ProgramAtScale, ::testing::Values(1.25, 1.5, 2),
                         [](const auto& scale) {
                             return QString::number(scale.param * 100).toStdString();
                         });

/// Two displays, and a tray that has taken in the program's item.
struct ProgramWithItsItem : ProgramInPlasma {
    ProgramWithItsItem()
        : ProgramInPlasma("control", {.scales = {1, 1}}) {
        EXPECT_TRUE(waitUntil([&] { return !tray.items.isEmpty(); })) << session.describe();
    }
    /// As a tray tells of it that has the item there.
    void clickItem(QPoint at) {
        session.input().move(at);
        NotifierHost(session.bus())
            .call(tray.items.back(), QStringLiteral("org.kde.StatusNotifierItem"),
                  QStringLiteral("Activate"), {at.x(), at.y()});
    }

    FakeNotifierWatcher tray{session.bus()};
};

} // namespace

TEST_F(ProgramWithItsItem, OpensItsPanelOnTheDisplayOfTheClickWithTheZonesOfThatOne) {
    const QString title = session.startClient(CompositorClient::qt, start);
    const QRect& first = session.displays()[0];
    const QRect& second = session.displays()[1];
    const QRect thirdOfSecond = frameOf(ZoneLayout::thirds().zones[0], second);
    for (const auto& [display, filled] :
         {std::pair(second, thirdOfSecond), std::pair(first, zone(0))}) {
        const QPoint item(display.center().x() + 200, display.bottom() - 20);
        clickItem(item);
        ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
        const QRect panel = session.frame(panelTitle);
        EXPECT_NEAR(panel.center().x(), item.x(), 1);
        EXPECT_TRUE(panel.top() > display.top() && panel.top() < item.y() - 100);
        session.input().move(firstZoneInPanel());
        session.input().click();
        EXPECT_TRUE(endsIn(title, filled)) << session.describe();
        clickItem(item);
        ASSERT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
    }
}

TEST_P(ProgramOnTwoDisplays, ShowsTheZonesOfTheOneUnderThePointerAndEndsInThem) {
    // KWin by itself clears what lies bare on the first one only.
    static_cast<void>(session.startClient(CompositorClient::qt, session.displays()[1]));
    expectEachDisplaysOwnZones(session.startClient(CompositorClient::qt, start),
                               session.displays()[1], session.roundOff());
}

TEST_P(ProgramAtScale, ShowsTheZonesPixelByPixelAndEndsInThem) {
    const QString title = session.startClient(CompositorClient::qt, {100, 100, 400, 300});
    dragToFirstZone(title);
    EXPECT_TRUE(waitUntil([&] {
        return OverlayEdges(session.picture(), GetParam()).areCrispOn(Qt::black);
    })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(0), session.roundOff())) << session.describe();

    session.grab(title);
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(1), session.roundOff())) << session.describe();
}

} // namespace tilewright::testing
