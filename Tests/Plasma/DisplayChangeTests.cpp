// The program with its companion while displays go, come back, turn and change their scale.

#include "ProgramInPlasma.h"

#include <QDBusConnection>

namespace tilewright::testing {
namespace {

/// Counts how often KWin begins anew to paint.
class PaintingWatch final : public QObject {
    Q_OBJECT

public:
    explicit PaintingWatch(QDBusConnection bus) {
        EXPECT_TRUE(bus.connect(QStringLiteral("org.kde.KWin"), QStringLiteral("/Compositor"),
                                QStringLiteral("org.kde.kwin.Compositing"),
                                QStringLiteral("compositingToggled"), this,
                                SLOT(compositingToggled(bool))));
    }
    [[nodiscard]] int beginnings() const { return beginnings_; }

private Q_SLOTS:
    void compositingToggled(bool isOn) { beginnings_ += isOn ? 1 : 0; }

private:
    int beginnings_ = 0;
};

struct ProgramAmongChangingDisplays : ProgramInPlasma {
    ProgramAmongChangingDisplays()
        : ProgramInPlasma("control", {.scales = {1, 1}}) {}

    /// Has KWin do that to the second display, by Plasma's own tool, and waits until it has these
    /// frames.
    void change(const QString& what, const std::vector<QRect>& frames) {
        const int before = painting.beginnings();
        session.changeSecondDisplay(what, [&] { return session.currentDisplays() == frames; });
        if (session.generation() == 5)
            awaitCompanionAfter(before);
    }
    /// KWin 5 begins anew to paint a little after most changes, and the program forgets a drag in
    /// which it does.
    void awaitCompanionAfter(int beginnings) {
        static_cast<void>(waitUntil([&] { return painting.beginnings() > beginnings; },
                                    std::chrono::milliseconds(4000)));
        awaitCompanion();
    }
    void awaitCompanion() {
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It greets once it has heard of the effects, which KWin tells one after the other.
        session.tell(QStringLiteral("0"));
    }
    /// KWin 5 does not tell scripts.
    [[nodiscard]] bool isPrimary(const QRect& display) {
        return session.generation() == 5 ||
               session.frameOf(QStringLiteral(
                   "({frameGeometry: workspace.screenOrder[0].geometry})")) == display;
    }
    /// Has KWin begin anew to paint, as after another choice of how it does, and waits for that.
    void haveKwinBeginAnew() {
        const int before = painting.beginnings();
        const QString path = QStringLiteral("/Compositor");
        const QString interface = QStringLiteral("org.kde.kwin.Compositing");
        // Older ones wait for a signal instead, which newer ones do not hear.
        if (session.bus()
                .call(QDBusMessage::createMethodCall(QStringLiteral("org.kde.KWin"), path,
                                                     interface, QStringLiteral("reinitialize")))
                .type() != QDBusMessage::ReplyMessage)
            session.bus().send(
                QDBusMessage::createSignal(path, interface, QStringLiteral("reinit")));
        EXPECT_TRUE(waitUntil([&] { return painting.beginnings() > before; }))
            << session.describe();
    }
    [[nodiscard]] QRect third(const QRect& display, std::size_t index) {
        return frameOf(ZoneLayout::thirds().zones[index], display);
    }

    const PaintingWatch painting{session.bus()};
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
    // KWin 5 by itself clears what lies bare on the first one only.
    static_cast<void>(session.startClient(CompositorClient::qt, second));
    const QColor ground = session.pixel(session.frame(title).center());
    EXPECT_TRUE(waitUntil([&] { return session.pixel(third(second, 0).center()) == ground; }));
    expectEachDisplaysOwnZones(title, second);
}

TEST_F(ProgramAmongChangingDisplays, LeavesNothingBehindWhenTheOneUnderTheDragGoes) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    session.input().glide(third(second, 1).center());
    ASSERT_TRUE(waitUntil([&] { return isHighlighted(third(second, 1)); })) << session.describe();
    change(QStringLiteral("disable"), {first});
    // KWin 6.3 ends it then. Others go on with it; KWin 5 begins anew to paint in it.
    const bool goesOn = session.isDragging() && session.generation() > 5;
    session.input().glide(zone(0).center());
    if (goesOn)
        EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
    else
        EXPECT_TRUE(
            staysTrue([&] { return !isHighlighted(zone(0)); }, std::chrono::milliseconds(500)));
    drop();
    EXPECT_TRUE(!goesOn || endsIn(title, zone(0))) << session.describe();
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    session.place(title, start);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

TEST_F(ProgramAmongChangingDisplays, KeepsItsPanelAboveThePointerWhenItGrowsWithTheDisplays) {
    constexpr QPoint pointer(600, 1000);
    change(QStringLiteral("disable"), {first});
    session.input().move(pointer);
    openPanel();
    const QRect before = session.frame(panelTitle);
    change(QStringLiteral("enable"), {first, second});
    // It names them where there are several.
    EXPECT_TRUE(waitUntil([&] {
        const QRect frame = session.frame(panelTitle);
        return frame.height() > before.height() && frame.bottom() == before.bottom();
    })) << session.describe();
    session.input().tap(KernelKey::escape);
    EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
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

TEST_F(ProgramAmongChangingDisplays, DividesBothAsEverOnceTheUserHasMadeTheOtherThePrimaryOne) {
    const QString title = session.startClient(CompositorClient::qt, start);
    static_cast<void>(session.startClient(CompositorClient::qt, second));
    change(QStringLiteral("priority.1"), {first, second});
    ASSERT_TRUE(waitUntil([&] { return isPrimary(second); })) << session.describe();
    expectEachDisplaysOwnZones(title, second);
}

TEST_F(ProgramAmongChangingDisplays, HearsOfTheKeysHoweverOftenKWinBeginsAnewToPaintUnderADrag) {
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    for (int round = 0; round < 5; ++round) {
        session.input().glide({900, 500 + 10 * round}, 3);
        haveKwinBeginAnew();
        session.input().glide({800, 500 + 10 * round}, 3);
    }
    awaitCompanion();
    drop();
    session.place(title, start);
    dragToFirstZone(title);
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

} // namespace tilewright::testing

#include "DisplayChangeTests.moc"
