// The program with its companion while displays go, come back, turn and change their scale.

#include "ProgramInPlasma.h"

namespace tilewright::testing {
namespace {

struct ProgramAmongChangingDisplays : ProgramInPlasma {
    ProgramAmongChangingDisplays()
        : ProgramInPlasma("control", {.scales = {1, 1}}) {}

    /// Has KWin do that to the second display, by Plasma's own tool, and waits until it has these
    /// frames.
    void change(const QString& what, const std::vector<QRect>& frames) {
        Subprocess& tool =
            session.start(QStringLiteral("kscreen-doctor"),
                          {QStringLiteral("output.%1.%2").arg(session.secondConnector(), what)},
                          {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")},
                           {QStringLiteral("KSCREEN_BACKEND_INPROCESS"), QStringLiteral("1")}});
        EXPECT_TRUE(tool.waitForEnd()) << session.describe();
        EXPECT_TRUE(waitUntil([&] { return session.currentDisplays() == frames; }))
            << what.toStdString() << session.describe();
    }
    [[nodiscard]] QRect third(const QRect& display, std::size_t index) {
        return frameOf(ZoneLayout::thirds().zones[index], display);
    }

    const QRect first = session.displays()[0];
    const QRect second = session.displays()[1];
};

} // namespace

TEST_F(ProgramAmongChangingDisplays, KeepsTheLayoutOfADisplayThatGoesAndComesBack) {
    const QString title = session.startClient(CompositorClient::qt, start);
    change(QStringLiteral("disable"), {first});
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
    change(QStringLiteral("enable"), {first, second});
    expectEachDisplaysOwnZones(title, second);
}

TEST_F(ProgramAmongChangingDisplays, LeavesNothingBehindWhenTheOneUnderTheDragGoes) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    session.input().glide(third(second, 1).center());
    ASSERT_TRUE(waitUntil([&] { return isHighlighted(third(second, 1)); })) << session.describe();
    change(QStringLiteral("disable"), {first});
    // KWin has ended it.
    EXPECT_FALSE(session.isDragging());
    session.input().glide(zone(0).center());
    EXPECT_TRUE(staysTrue([&] { return !isHighlighted(zone(0)); }, std::chrono::milliseconds(500)));
    drop();
    session.place(title, start);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

TEST_F(ProgramAmongChangingDisplays, DividesADisplayAsItIsAfterATurnOrAnotherScale) {
    const QString title = session.startClient(CompositorClient::qt, start);
    const auto dropsIntoMiddleThirdOf = [&](const QRect& display) {
        dragToFirstZone(title);
        session.input().glide(third(display, 1).center());
        session.input().glide(third(display, 1).center() + QPoint(6, 0), 3);
        drop();
        EXPECT_TRUE(endsIn(title, third(display, 1), 1)) << session.describe();
        session.place(title, start);
    };
    const QRect turned(second.topLeft(), second.size().transposed());
    change(QStringLiteral("rotation.left"), {first, turned});
    dropsIntoMiddleThirdOf(turned);
    change(QStringLiteral("rotation.none"), {first, second});
    const QRect scaled(second.topLeft(), second.size() / 2);
    change(QStringLiteral("scale.2"), {first, scaled});
    dropsIntoMiddleThirdOf(scaled);
    change(QStringLiteral("scale.1"), {first, second});
    dropsIntoMiddleThirdOf(second);
}

} // namespace tilewright::testing
