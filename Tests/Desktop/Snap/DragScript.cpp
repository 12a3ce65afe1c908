#include "DragScript.h"

#include <Repetition.h>
#include <SizeRules.h>
#include <Waiting.h>

#include <cmath>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

std::string text(const QRect& rectangle) {
    return std::to_string(rectangle.width()) + "x" + std::to_string(rectangle.height()) + " at " +
           std::to_string(rectangle.x()) + "," + std::to_string(rectangle.y());
}

} // namespace

DragScript::Grip DragScript::gripOf(const TestClient& client) const {
    const XInspector& inspector = desktop_.inspector();
    QRect outer;
    QRect inner;
    // The two belong together only where the window has not moved between them.
    EXPECT_TRUE(waitUntil([&] {
        outer = inspector.outerFrame(client.window);
        inner = inspector.clientFrame(client.window);
        return outer == inspector.outerFrame(client.window);
    }));
    const int bar = inner.y() - outer.y();
    // A window without the window manager's bar draws its own.
    const bool isOwn = bar <= 4;
    Grip grip{{0, outer.y() + (isOwn ? 20 : bar / 2)},
              isOwn ? Bar::ofTheClient : Bar::ofTheWindowManager};
    // From 0.4 on pekwm's bar is no wider than the title in it.
    for (const int along : {outer.width() / 3, 80}) {
        grip.place.setX(outer.x() + along);
        if (inspector.toplevelAt(grip.place) == inspector.toplevelOf(client.window))
            break;
    }
    return grip;
}

void DragScript::grab(const TestClient& client, KeyTiming timing) {
    XInputInjector& input = desktop_.input();
    const XInspector& inspector = desktop_.inspector();
    // A window manager is some time about a new window.
    EXPECT_TRUE(waitUntil([&] {
        const QRect frame = inspector.outerFrame(client.window);
        return frame.width() > 100 && inspector.isMapped(client.window);
    })) << desktop_.describe();
    Grip grip;
    // A client that draws its own bar tells the server a moment after it was resized where it takes
    // the mouse: until then a press goes to the desktop beneath, which takes the focus away. And a
    // window may be on its way back from a drag that was called off.
    EXPECT_TRUE(waitUntil([&] {
        grip = gripOf(client);
        return inspector.toplevelAt(grip.place) == inspector.toplevelOf(client.window);
    })) << "another window is at "
        << grip.place.x() << "," << grip.place.y() << desktop_.describe();
    const QPoint from = grip.place;
    const QRect before = inspector.outerFrame(client.window);
    input.move(from);
    if (timing == KeyTiming::beforeThePress)
        program_.pressKey();
    const QPoint here = from + QPoint(24, 12);
    if (timing == KeyTiming::inMidDrag) {
        takeHold(client, from, here);
    } else {
        input.press();
        input.glide(from, here, 6);
    }
    if (timing != KeyTiming::beforeThePress)
        program_.pressKey();
    isKeyDown_ = true;
    // The window is captured at the first move that the program hears of: still above the window,
    // even where the window manager leaves it in its place.
    place_ = here;
    const auto overlayShows = [&] {
        input.move(here + QPoint(2, 0));
        input.move(here);
        return program_.overlayShows();
    };
    bool shows = waitUntil(overlayShows, std::chrono::seconds(3));
    if (!shows) {
        wakeSleeper(from);
        shows = waitUntil(overlayShows);
    }
    EXPECT_TRUE(shows) << "the overlay does not show" << desktop_.describe();
    // It is the client that asks the window manager for the move then, when it has read what the
    // mouse did: were it slower than the whole drag, it would ask when the button is up again, and
    // the window manager would go on moving the window without an end.
    if (grip.bar == Bar::ofTheClient) {
        // Some move it by what the mouse has done since the request, not since the press. Some do
        // not move it at all, such as a maximised one: nothing is late there.
        constexpr std::chrono::milliseconds longEnough(1500);
        bool isFarther = false;
        static_cast<void>(waitUntil(
            [&] {
                isFarther = !isFarther;
                input.move(isFarther ? here + QPoint(20, 8) : here);
                return inspector.outerFrame(client.window) != before;
            },
            longEnough));
        input.move(here);
    }
}

void DragScript::takeHold(const TestClient& client, QPoint from, QPoint here) {
    XInputInjector& input = desktop_.input();
    // mutter and muffin miss a press where the mouse has not been seen to rest on the bar before.
    std::chrono::milliseconds rest{100};
    EXPECT_TRUE(waitUntil([&] {
        input.move(from);
        const QRect before = desktop_.inspector().outerFrame(client.window);
        static_cast<void>(staysTrue(
            [&] { return desktop_.inspector().outerFrame(client.window) == before; }, rest));
        input.press();
        if (follows(client, here) || (wakeSleeper(from) && follows(client, here)))
            return true;
        tellRepetition("a window manager missed a press on a title bar");
        input.release();
        rest *= 2;
        return false;
    })) << "it does not follow the mouse"
        << desktop_.describe();
    input.move(here);
}

bool DragScript::wakeSleeper(QPoint pressedAt) {
    if (desktop_.input().position() != pressedAt || !desktop_.wakeWindowManager())
        return false;
    tellRepetition("a window manager slept with a press unread");
    return true;
}

bool DragScript::follows(const TestClient& client, QPoint here) {
    bool isFarther = false;
    for (int times = 0; times < 3; ++times) {
        const QRect before = desktop_.inspector().outerFrame(client.window);
        const bool hasMoved = waitUntil(
            [&] {
                isFarther = !isFarther;
                desktop_.input().move(isFarther ? here + QPoint(20, 8) : here);
                return desktop_.inspector().outerFrame(client.window) != before;
            },
            std::chrono::seconds(1));
        if (!hasMoved)
            return false;
    }
    return true;
}

void DragScript::dragTo(QPoint target, int steps) {
    desktop_.input().glide(place_, target, steps);
    place_ = target;
}

void DragScript::releaseButton() {
    desktop_.input().release();
}

void DragScript::releaseKey() {
    if (isKeyDown_)
        program_.releaseKey();
    isKeyDown_ = false;
}

void DragScript::expectOverlayGone() {
    EXPECT_TRUE(waitUntil([&] { return !program_.overlayShows(); }))
        << "the overlay stays" << desktop_.describe();
}

void DragScript::drop() {
    releaseButton();
    releaseKey();
    expectOverlayGone();
}

void DragScript::run(const TestClient& client, KeyTiming timing, QPoint target) {
    grab(client, timing);
    dragTo(target);
    drop();
}

QRect workArea(const XInspector& inspector) {
    const QRect screen(QPoint(), inspector.screenSize());
    const auto area = inspector.property(inspector.root(), "_NET_WORKAREA");
    if (area.size() < 4)
        return screen;
    return screen & QRect(int(area[0]), int(area[1]), int(area[2]), int(area[3]));
}

QRect zoneFrame(const Zone& zone, const QRect& area) {
    const auto edge = [](double value) { return static_cast<int>(std::lround(value)); };
    const int left = edge(area.x() + zone.x * area.width());
    const int top = edge(area.y() + zone.y * area.height());
    const int right = edge(area.x() + (zone.x + zone.width) * area.width());
    const int bottom = edge(area.y() + (zone.y + zone.height) * area.height());
    return {left, top, right - left, bottom - top};
}

void expectFills(const XInspector& inspector, ClientKind kind, const TestClient& client,
                 const QRect& frame) {
    const QSize slack = SizeRules::of(inspector, client.window).increment;
    if (kind == ClientKind::xterm)
        EXPECT_GT(slack.height(), 1) << "the terminal tells of no cells";
    else
        EXPECT_EQ(slack, QSize(1, 1)) << name(kind);
    EXPECT_TRUE(waitUntil([&] {
        const QRect now = inspector.outerFrame(client.window);
        const QSize short_ = frame.size() - now.size();
        return now.topLeft() == frame.topLeft() && short_.width() >= 0 && short_.height() >= 0 &&
               short_.width() < slack.width() && short_.height() < slack.height();
    })) << name(kind)
        << ": asked for " << text(frame) << ", is " << text(inspector.outerFrame(client.window))
        << "; " << inspector.describe();
}

} // namespace tilewright::testing
