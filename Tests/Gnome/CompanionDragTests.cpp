// Windows of all kinds dragged in GNOME Shell: what the companion tells of it, shows and does.

#include "CompanionBench.h"

#include <QEventLoop>
#include <QTimer>

namespace tilewright::testing {
namespace {

const QString dragBegin = QStringLiteral("DragBegin");
const QString dragMotion = QStringLiteral("DragMotion");
const QString dragEnd = QStringLiteral("DragEnd");

struct CompanionDrag : CompanionTest, ::testing::WithParamInterface<CompositorClient> {};

INSTANTIATE_TEST_SUITE_P(Of, CompanionDrag,
                         ::testing::Values(CompositorClient::qt, CompositorClient::gtk4,
                                           CompositorClient::xwayland),
                         [](const auto& client) { return std::string(name(client.param)); });

TEST_P(CompanionDrag, ShowsTheZonesExactlyAndEndsInTheZonesFrame) {
    greet();
    snapWithControl();
    const QString title = session.startClient(GetParam(), start);
    dragToLeftZone(title);

    const QImage picture = session.picture();
    EXPECT_EQ(picture.pixelColor(onLeftBorder).name(), border.name());
    EXPECT_TRUE(isNear(picture.pixelColor(inRightTile), plain));
    // Between the zones, and in the corner that the radius leaves free.
    EXPECT_EQ(picture.pixelColor(960, 1000).name(), ground.name());
    EXPECT_EQ(picture.pixelColor(8, 1071).name(), ground.name());
    EXPECT_EQ(picture.pixelColor(8, 1000).name(), border.name());
    EXPECT_EQ(picture.pixelColor(7, 1000).name(), ground.name());
    // The highlighted tile's border and its one line, and the other tile's border and two lines.
    EXPECT_EQ(picture.pixelColor(12, 1000).name(), QStringLiteral("#000000"));
    EXPECT_TRUE(isNear(picture.pixelColor(13, 1000), highlighted));
    const auto halfOver = [](QColor beneath, int grey) {
        return QColor((beneath.red() + grey) / 2, (beneath.green() + grey) / 2,
                      (beneath.blue() + grey) / 2);
    };
    EXPECT_TRUE(isNear(picture.pixelColor(971, 1000), halfOver(plain, 200)));
    EXPECT_TRUE(isNear(picture.pixelColor(972, 1000), halfOver(plain, 0)));
    EXPECT_TRUE(isNear(picture.pixelColor(973, 1000), plain));

    session.input().glide({1500, 500});
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(inRightTile); }));
    EXPECT_EQ(session.pixel({971, 1000}).name(), border.name()) << "the line makes room for it";
    EXPECT_EQ(session.pixel({972, 1000}).name(), QStringLiteral("#000000"));
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == rightZone; })) << session.describe();
    session.input().releaseKey(KernelKey::control);
    EXPECT_TRUE(isBare({100, 1000}));
    ASSERT_TRUE(program->waitFor(QStringLiteral("FrameSettled")));
    EXPECT_EQ(program->last(QStringLiteral("FrameSettled"))[QStringLiteral("frame")].toArray(),
              (QJsonArray{rightZone.x(), rightZone.y(), rightZone.width(), rightZone.height()}));
    EXPECT_EQ(session.frame(title), rightZone);
    const QJsonObject window = program->last(dragEnd)[QStringLiteral("window")].toObject();
    EXPECT_EQ(window[QStringLiteral("x11")].toBool(), GetParam() == CompositorClient::xwayland);
    EXPECT_FALSE(window[QStringLiteral("ours")].toBool());
}

TEST_P(CompanionDrag, OfAMaximizedWindowEndsInTheZonesFrame) {
    greet();
    snapWithControl();
    const QString title = session.startClient(GetParam(), start);
    // The X server's clients get it a little later than they are given it.
    ASSERT_TRUE(waitUntil([&] { return isInFront(title); })) << session.describe();
    session.tell(QStringLiteral("global.display.focus_window.maximize("
                                "imports.gi.Meta.MaximizeFlags.BOTH)"));
    ASSERT_TRUE(waitUntil([&] { return session.frame(title).width() == 1920; }))
        << text(session.frame(title)) << session.describe();
    dragToLeftZone(title);
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == leftZone; })) << session.describe();
    session.input().releaseKey(KernelKey::control);
}

} // namespace

TEST_F(CompanionTest, TellsAKeyThatGoesDownOrUpWhileThePointerRests) {
    greet();
    const QString title = session.startClient(CompositorClient::qt, start);
    session.grab(title);
    const std::pair<KernelKey, int> keys[] = {
        {KernelKey::shift, 1}, {KernelKey::control, 2}, {KernelKey::alt, 4}, {KernelKey::super, 8}};
    for (const auto& [key, bit] : keys) {
        session.input().pressKey(key);
        EXPECT_TRUE(waitUntil([&, bit = bit] {
            return program->last(dragMotion)[QStringLiteral("keys")].toInt() == bit;
        })) << bit;
        session.input().releaseKey(key);
        EXPECT_TRUE(waitUntil(
            [&] { return program->last(dragMotion)[QStringLiteral("keys")].toInt() == 0; }));
    }
    session.input().release();
}

TEST_F(CompanionTest, LeavesAWindowInTheHandThatHasTakenIt) {
    greet();
    const QString title = session.startClient(CompositorClient::qt, start);
    ASSERT_TRUE(waitUntil([&] { return isInFront(title); })) << session.describe();
    const QJsonValue window = session.ask(QStringLiteral("global.display.focus_window.get_id()"));
    session.grab(title);
    session.input().glide({1000, 600});
    // Asked for by a program that was slow: the user has the window again.
    program->command({{QStringLiteral("c"), QStringLiteral("frame")},
                      {QStringLiteral("window"), window},
                      {QStringLiteral("frame"), QJsonArray{8, 40, 944, 1032}}});
    program->command({{QStringLiteral("c"), QStringLiteral("pointer")}});
    ASSERT_TRUE(program->waitFor(QStringLiteral("Pointer")));
    // Its client would answer a little later.
    EXPECT_TRUE(staysTrue([&] { return session.frame(title).size() == start.size(); },
                          std::chrono::milliseconds(500)));
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
}

TEST_F(CompanionTest, TellsThatEscapeCancelsADragAndShowsNothingMore) {
    greet();
    snapWithControl();
    const QString title = session.startClient(CompositorClient::gtk4, start);
    dragToLeftZone(title);
    session.input().tap(KernelKey::escape);
    ASSERT_TRUE(program->waitFor(dragEnd));
    EXPECT_TRUE(program->last(dragEnd)[QStringLiteral("cancelled")].toBool());
    EXPECT_TRUE(waitUntil([&] { return isBare(inLeftTile); }));
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == start; }));
    session.input().release();
    session.input().releaseKey(KernelKey::control);
    EXPECT_EQ(program->count(dragBegin), 1);
}

TEST_F(CompanionTest, DoesNotHoldUpADragForAProgramThatHangsAndTellsItTheNewestAfterwards) {
    greet();
    snapWithControl();
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToLeftZone(title);
    program->isHung = true;
    program->forgetCalls();
    session.input().glide({1200, 700}, 20);
    // The window goes along, and next to nothing has been asked of who does not answer.
    EXPECT_TRUE(waitUntil([&] { return session.frame(title).contains(1200, 710); }));
    EXPECT_LE(program->count(dragMotion), 2);
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    EXPECT_TRUE(waitUntil([&] { return isBare(inLeftTile); }));
    program->isHung = false;
    EXPECT_TRUE(program->waitFor(dragEnd));
    EXPECT_EQ(program->last(dragEnd)[QStringLiteral("pointer")].toArray(), (QJsonArray{1200, 700}));
    session.input().releaseKey(KernelKey::control);
}

TEST_F(CompanionTest, DoesNotHoldUpADragForAProgramThatFloodsItAndListensToItLessOften) {
    constexpr std::chrono::seconds floodTime(2);
    constexpr int mostPollsASecond = 100;
    greet();
    snapWithControl();
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToLeftZone(title);
    // The less there is to do, the more often it could ask for more.
    program->flood = {QJsonObject{{QStringLiteral("c"), QStringLiteral("unknown")}}};
    program->command(overlay(1));
    const int before = program->polls();
    // Looking at something meanwhile would slow the flood down.
    QEventLoop loop;
    QTimer::singleShot(floodTime, &loop, &QEventLoop::quit);
    loop.exec();
    // Looked at first: a question to the shell takes time, in which more come.
    const int polls = program->polls() - before;
    EXPECT_TRUE(session.isDragging());
    EXPECT_GT(polls, mostPollsASecond / 2) << "it is no flood";
    // A second's ration may be used at its end and the next one's at its beginning; the one poll
    // beyond it is what the pause comes after.
    EXPECT_LE(polls, 3 * (mostPollsASecond + 1));
    session.input().glide({1200, 700}, 20);
    EXPECT_TRUE(waitUntil([&] { return session.frame(title).contains(1200, 710); }));
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == rightZone; })) << session.describe();
    EXPECT_TRUE(waitUntil([&] { return isBare({100, 1000}); }));
    session.input().releaseKey(KernelKey::control);
}

TEST_F(CompanionTest, ShowsWhatAProgramSaysThatWasSlowButMovesNothingForIt) {
    // Longer than an answer is waited for.
    constexpr std::chrono::milliseconds tooLong(1400);
    greet();
    snapWithControl();
    const QString title = session.startClient(CompositorClient::qt, start);
    session.grab(title);
    session.input().glide({700, 500});
    program->isHung = true;
    session.input().pressKey(KernelKey::control);
    ASSERT_TRUE(
        waitUntil([&] { return program->last(dragMotion)[QStringLiteral("keys")].toInt() == 2; }));
    EXPECT_TRUE(staysTrue([&] { return isBare(inLeftTile); }, tooLong));
    program->goOn();
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(inLeftTile); })) << session.describe();

    program->isHung = true;
    session.input().release();
    ASSERT_TRUE(program->waitFor(dragEnd));
    EXPECT_TRUE(staysTrue([&] { return session.frame(title).size() == start.size(); }, tooLong));
    program->goOn();
    EXPECT_TRUE(staysTrue([&] { return session.frame(title).size() == start.size(); },
                          std::chrono::milliseconds(400)));
    EXPECT_TRUE(isBare(inLeftTile));
    session.input().releaseKey(KernelKey::control);
}

TEST_F(CompanionTest, TakesEverythingAwayWhenTheProgramGoesInMidDrag) {
    greet();
    snapWithControl();
    program->command({{QStringLiteral("c"), QStringLiteral("item")},
                      {QStringLiteral("shown"), true},
                      {QStringLiteral("icon"), QStringLiteral("tilewright-symbolic")},
                      {QStringLiteral("name"), QStringLiteral("Tilewright")}});
    ASSERT_TRUE(waitUntil([&] { return hasItem(); }));
    const int actors = actorsOnStage();
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToLeftZone(title);
    program.reset();
    EXPECT_TRUE(waitUntil([&] { return isBare(inLeftTile); }));
    EXPECT_FALSE(hasItem());
    EXPECT_EQ(actorsOnStage(), actors);
    session.input().glide({1000, 600});
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    session.input().releaseKey(KernelKey::control);
    // A program that comes again is greeted again.
    greet();
}

} // namespace tilewright::testing
