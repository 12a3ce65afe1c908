#include "SnapCases.h"

#include <Repetition.h>
#include <Waiting.h>

#include <algorithm>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {

SnapCases::SnapCases(DesktopSession& desktop, const QString& modifier,
                     std::function<bool()> restart)
    : desktop_(desktop)
    , inspector_(desktop.inspector())
    , program_(desktop, modifier)
    , script_(desktop, program_)
    , area_(workArea(inspector_))
    , restart_(std::move(restart)) {}

TestClient SnapCases::open(ClientKind kind, const QRect& area) const {
    const TestClient client = startClient(desktop_, kind, area);
    const auto isActive = [&] { return inspector_.activeWindow() == client.window; };
    // mutter and muffin keep a new window from the focus, and beneath, that they take for a
    // millisecond older than the last input.
    if (!waitUntil(isActive, std::chrono::seconds(5))) {
        tellRepetition("a window manager kept a new window from the focus");
        static_cast<void>(outputOf(u"wmctrl"_s, {u"-i"_s, u"-a"_s, QString::number(client.window)},
                                   desktop_.environment()));
    }
    EXPECT_TRUE(waitUntil(isActive)) << "the new window " << client.window
                                     << " does not become the active one" << desktop_.describe();
    EXPECT_TRUE(waitUntil([&] { return inspector_.outerFrame(client.window).width() > 100; }))
        << desktop_.describe();
    return client;
}

QRect SnapCases::frame(std::size_t zone) const {
    const auto& zones = ZoneLayout::bentoBox().zones;
    return zoneFrame(zones[zone % zones.size()], area_);
}

void SnapCases::dragAndDrop(ClientKind kind, const TestClient& client, KeyTiming timing,
                            QPoint target, const QRect& expected) {
    script_.run(client, timing, target);
    expectFills(inspector_, kind, client, expected);
    expectActive(client);
}

void SnapCases::expectActive(const TestClient& client) const {
    EXPECT_TRUE(waitUntil([&] { return inspector_.activeWindow() == client.window; }))
        << "the dragged window " << client.window << " is not the active one"
        << desktop_.describe();
}

void SnapCases::dropInAZone(ClientKind kind, KeyTiming timing, std::size_t zone) {
    dropInZonesInTurn(kind, timing, zone, 1);
}

void SnapCases::dropInZonesInTurn(ClientKind kind, KeyTiming timing, std::size_t first, int count) {
    SCOPED_TRACE(std::string("drop in a zone: ") + name(kind));
    const TestClient client = open(kind);
    for (std::size_t zone = first; zone < first + static_cast<std::size_t>(count); ++zone)
        dragAndDrop(kind, client, timing, frame(zone).center(), frame(zone));
    client.process->stop();
}

void SnapCases::releaseTheKeyFirst(ClientKind kind, std::initializer_list<KeyTiming> timings) {
    SCOPED_TRACE(std::string("the key is let go first: ") + name(kind));
    const TestClient client = open(kind);
    const QSize before = inspector_.outerFrame(client.window).size();
    for (const KeyTiming timing : timings) {
        script_.grab(client, timing);
        script_.dragTo(area_.center());
        script_.releaseKey();
        script_.expectOverlayGone();
        script_.releaseButton();
        expectActive(client);
    }
    // A drag of another window that does snap comes after it: what was to happen first has
    // happened.
    // Beside the first one, wherever that is by now: mutter may be a second behind what the user
    // does, and raises it for the press only then, in the midst of the next drag.
    const TestClient next = open(ClientKind::qt, {1000, 40, 640, 420});
    script_.run(next, KeyTiming::afterTheDragBegan, frame(0).center());
    expectFills(inspector_, ClientKind::qt, next, frame(0));
    EXPECT_EQ(inspector_.outerFrame(client.window).size(), before) << desktop_.describe();
    next.process->stop();
    client.process->stop();
}

void SnapCases::pressEscape(ClientKind kind, KeyTiming timing, std::size_t zone) {
    SCOPED_TRACE(std::string("Escape: ") + name(kind));
    const TestClient client = open(kind);
    const QSize before = inspector_.outerFrame(client.window).size();
    script_.grab(client, timing);
    script_.dragTo(frame(zone).center());
    desktop_.input().tapKey(keysym::escape);
    script_.expectOverlayGone();
    script_.releaseButton();
    script_.releaseKey();
    expectActive(client);
    // By the time that the overlay shows again, what was to happen at the release has happened.
    script_.grab(client, timing);
    EXPECT_EQ(inspector_.outerFrame(client.window).size(), before) << desktop_.describe();
    script_.dragTo(frame(zone).center());
    script_.drop();
    expectFills(inspector_, kind, client, frame(zone));
    client.process->stop();
}

void SnapCases::closeWhileDragged(ClientKind kind, KeyTiming timing, QPoint from) {
    const TestClient client = open(kind, {from, QSize(640, 420)});
    script_.grab(client, timing);
    script_.dragTo(area_.center());
    client.process->stop();
    EXPECT_TRUE(waitUntil([&] { return !inspector_.exists(client.window); }))
        << desktop_.describe();
    script_.drop();
    EXPECT_TRUE(program_.isRunning()) << desktop_.describe();
    EXPECT_TRUE(waitUntil([&] {
        const auto list = inspector_.property(inspector_.root(), "_NET_CLIENT_LIST");
        return std::find(list.begin(), list.end(), client.window) == list.end() ||
               !desktop_.windowManager().isRunning();
    })) << desktop_.describe();
}

bool SnapCases::movesThereAndBack(const TestClient& client) const {
    const QRect before = inspector_.outerFrame(client.window);
    for (const QPoint& place : {before.topLeft() - QPoint(30, 30), before.topLeft()}) {
        static_cast<void>(outputOf(u"wmctrl"_s,
                                   {u"-i"_s, u"-r"_s, QString::number(client.window), u"-e"_s,
                                    u"0,%1,%2,-1,-1"_s.arg(place.x()).arg(place.y())},
                                   desktop_.environment()));
        EXPECT_TRUE(waitUntil([&] {
            return inspector_.outerFrame(client.window).topLeft() == place ||
                   !desktop_.windowManager().isRunning();
        })) << desktop_.describe();
    }
    return desktop_.windowManager().isRunning();
}

void SnapCases::closeInMidDrag(ClientKind kind, KeyTiming timing, std::size_t zone, QPoint from,
                               QPoint nextFrom) {
    SCOPED_TRACE(std::string("the window closes: ") + name(kind));
    // Not where the button is let go: muffin goes on with the drag of a window that is gone, on the
    // one that it finds there.
    const QRect besides{1300, 600, 400, 300};
    TestClient other = open(ClientKind::qt, besides);
    QRect untouched = inspector_.outerFrame(other.window);
    closeWhileDragged(kind, timing, from);
    // It ends as late as it hears of its error, when something next is asked of it.
    for (int again = 0; again < 3 && restart_ && !movesThereAndBack(other); ++again) {
        tellRepetition("a window manager ended when a window closed that it moved");
        other.process->stop();
        ASSERT_TRUE(restart_());
        other = open(ClientKind::qt, besides);
        untouched = inspector_.outerFrame(other.window);
        closeWhileDragged(kind, timing, from);
    }
    // A drag that does snap comes after it: what was to happen first has happened.
    const TestClient next = open(ClientKind::qt, {nextFrom, QSize(640, 420)});
    dragAndDrop(ClientKind::qt, next, KeyTiming::beforeThePress, frame(zone).center(), frame(zone));
    EXPECT_EQ(inspector_.outerFrame(other.window), untouched) << desktop_.describe();
    next.process->stop();
    other.process->stop();
}

void SnapCases::maximise(const TestClient& client) const {
    const QStringList arguments{QStringLiteral("-i"), QStringLiteral("-r"),
                                QString::number(client.window), QStringLiteral("-b"),
                                QStringLiteral("add,maximized_vert,maximized_horz")};
    static_cast<void>(outputOf(QStringLiteral("wmctrl"), arguments, desktop_.environment()));
    EXPECT_TRUE(waitUntil([&] {
        return inspector_.hasAtom(client.window, "_NET_WM_STATE", "_NET_WM_STATE_MAXIMIZED_HORZ") &&
               inspector_.outerFrame(client.window).width() >= area_.width() - 20;
    })) << "it is not maximised"
        << desktop_.describe();
}

void SnapCases::pullOffMaximised(ClientKind kind, KeyTiming timing, std::size_t zone) {
    SCOPED_TRACE(std::string("pulled off: ") + name(kind));
    const TestClient client = open(kind);
    maximise(client);
    dragAndDrop(kind, client, timing, frame(zone).center(), frame(zone));
    client.process->stop();
}

void SnapCases::pullOffMaximisedAboveAnother(ClientKind kind, std::size_t zone) {
    SCOPED_TRACE(std::string("pulled off above another: ") + name(kind));
    // Beneath the place that the maximised window is taken by.
    const TestClient other = open(ClientKind::qt, {500, 0, 500, 400});
    const TestClient client = open(kind, {1200, 500, 500, 400});
    const QRect untouched = inspector_.outerFrame(other.window);
    maximise(client);
    dragAndDrop(kind, client, KeyTiming::inMidDrag, frame(zone).center(), frame(zone));
    EXPECT_EQ(inspector_.outerFrame(other.window), untouched) << desktop_.describe();
    client.process->stop();
    other.process->stop();
}

void SnapCases::dropAtTheEdges(ClientKind kind, KeyTiming timing) {
    SCOPED_TRACE(std::string("at the screen's edges: ") + name(kind));
    const TestClient client = open(kind);
    const auto drop = [&](QPoint target, std::size_t zone) {
        script_.run(client, timing, target);
        expectFills(inspector_, kind, client, frame(zone));
        expectActive(client);
    };
    drop({area_.left(), area_.center().y()}, 0);
    drop(area_.bottomRight(), 3);
    drop({area_.center().x(), area_.top()}, 0);
    drop({area_.right(), area_.top() + area_.height() / 4}, 1);
    client.process->stop();
}

} // namespace tilewright::testing
