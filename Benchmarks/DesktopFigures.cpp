// Measures the real program on X servers of its own: DesktopFigures [idle|latencies|drops|drag].
// See Documentation/performance.md.

#include "BareDrop.h"
#include "FinalNotice.h"
#include "Samples.h"

#include <BareClient.h>
#include <DragScript.h>
#include <ProcessFigures.h>
#include <Waiting.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <array>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

/// Milliseconds until the condition holds, looking as fast as the server answers.
double millisecondsUntil(const QElapsedTimer& clock, const std::function<bool()>& condition) {
    while (clock.elapsed() < 5000 && !condition()) {
    }
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

bool isAmber(const QColor& colour) {
    return std::abs(colour.red() - 209) < 12 && std::abs(colour.green() - 140) < 12 &&
           std::abs(colour.blue() - 51) < 12;
}

/// Moves the pointer a thousand times a second for ten seconds.
void moveForTenSeconds(XInputInjector& input, QSize screen) {
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 10'000; ++i) {
        while (clock.nsecsElapsed() < qint64{i} * 1'000'000) {
        }
        const int phase = i % 2000;
        const int x = phase < 1000 ? phase : 2000 - phase;
        input.move({100 + x * (screen.width() - 200) / 1000, screen.height() / 3});
    }
}

void print(const char* what, double value, const char* unit) {
    std::printf("%-66s %9.2f %s\n", what, value, unit);
    std::fflush(stdout);
}

void measureLatencies() {
    DesktopSession desktop;
    desktop.startWindowManager(WindowManagerKind::openbox);
    RunningProgram program(desktop);
    XInspector& inspector = desktop.inspector();
    XInputInjector& input = desktop.input();
    const auto& zones = tilewright::ZoneLayout::bentoBox().zones;
    const QRect area = workArea(inspector);
    const QRect first = zoneFrame(zones[0], area);
    const QRect second = zoneFrame(zones[1], area);
    const auto border = [&](const QRect& zone) {
        // The tile's outermost pixel: the one that a plain tile's border has, too.
        return inspector.pixel({zone.left() + 4, zone.center().y()});
    };
    std::vector<double> shows;
    std::vector<double> moves;
    for (int i = 0; i < 60; ++i) {
        input.move(first.center());
        input.pressKey(program.key());
        input.press();
        // Motion is heard of only once the press has been.
        QThread::msleep(20);
        const QColor ground = border(first);
        QElapsedTimer clock;
        clock.start();
        input.move(first.center() + QPoint(3, 0));
        shows.push_back(millisecondsUntil(clock, [&] { return border(first) != ground; }));
        static_cast<void>(waitUntil([&] { return isAmber(border(first)); }));
        const QColor plain = border(second);
        clock.restart();
        input.move(second.center());
        moves.push_back(millisecondsUntil(clock, [&] { return border(second) != plain; }));
        input.releaseKey(program.key());
        input.release();
        static_cast<void>(waitUntil([&] { return !program.overlayShows(); }));
    }
    print("first dragged event to the overlay's pixel on the server, median", median(shows), "ms");
    print("pointer's move to the first pixel of the new highlight, median", median(moves), "ms");
}

/// What the hand does just before it lets go.
enum class Hand { rests, moves };

/// Moves the pointer to and fro by a point for as long as a highlight takes to come to rest, as
/// often as a mouse tells of itself.
void keepMoving(XInputInjector& input, QPoint around) {
    for (int step = 0; step < 25; ++step) {
        QThread::msleep(8);
        input.move(around + QPoint(step % 2, 0));
    }
}

/// Drags a window into two zones in turn and answers how long after the button's release it was
/// where it belongs, in milliseconds, median. `isReady` holds when the button may be let go.
double medianOfDrops(DesktopSession& desktop, const BareClient& client, Hand hand,
                     const std::array<QRect, 2>& zones, const std::function<bool()>& isReady,
                     const std::function<void(const QRect&)>& aim) {
    constexpr int rounds = 60;
    XInspector& inspector = desktop.inspector();
    XInputInjector& input = desktop.input();
    const quint32 key = keyFor(RunningProgram::defaultModifier());
    FinalNotice notice(desktop.display(), client.window());
    std::vector<double> drops;
    for (int round = 0; round < rounds; ++round) {
        const QRect zone = zones[static_cast<std::size_t>(round % 2)];
        const QRect outer = inspector.outerFrame(client.window());
        const QRect inner = inspector.clientFrame(client.window());
        aim(zone);
        const QPoint grip(outer.center().x(), (outer.top() + inner.top()) / 2);
        input.move(grip);
        input.pressKey(key);
        input.press();
        // Motion is heard of only once the press has been.
        QThread::msleep(20);
        input.move(grip + QPoint(3, 0));
        static_cast<void>(waitUntil(isReady));
        input.glide(grip + QPoint(3, 0), zone.center(), 8);
        if (hand == Hand::moves)
            keepMoving(input, zone.center());
        else
            QThread::msleep(200);
        notice.expect(zone.adjusted(inner.left() - outer.left(), inner.top() - outer.top(),
                                    inner.right() - outer.right(),
                                    inner.bottom() - outer.bottom()));
        const auto start = FinalNotice::Clock::now();
        input.release();
        if (!notice.wait()) {
            std::fprintf(stderr, "the window did not come to its zone\n");
            return 0;
        }
        // What still comes counts too: only then was it the final notice.
        QThread::msleep(30);
        drops.push_back(notice.since(start));
        input.releaseKey(key);
        QThread::msleep(150);
    }
    return median(drops);
}

void measureDrops(const char* what, Hand hand, const std::array<Zone, 2>& zones) {
    DesktopSession desktop;
    desktop.startWindowManager(WindowManagerKind::openbox);
    const BareClient client(desktop.display(), QRect(300, 200, 500, 300));
    const QRect area = workArea(desktop.inspector());
    const std::array<QRect, 2> frames{zoneFrame(zones[0], area), zoneFrame(zones[1], area)};
    double bare = 0;
    {
        BareDrop drop(desktop.display().toLatin1().constData(), client.window());
        bare = medianOfDrops(
            desktop, client, hand, frames, [] { return true; },
            [&](const QRect& zone) {
                drop.aim({zone.x(), zone.y(), zone.width(), zone.height()});
            });
    }
    RunningProgram program(desktop);
    const double own = medianOfDrops(
        desktop, client, hand, frames, [&] { return program.overlayShows(); }, [](const QRect&) {});
    std::printf("release to the window's final frame, %s, medians: %.2f ms, bare program %.2f ms, "
                "ratio %.2f\n",
                what, own, bare, own / bare);
    std::fflush(stdout);
}

void measureDrag(QSize size) {
    DesktopSession desktop(XServer::virtualScreen(size));
    desktop.startWindowManager(WindowManagerKind::openbox);
    RunningProgram program(desktop);
    desktop.input().move({size.width() / 2, size.height() / 2});
    desktop.input().pressKey(program.key());
    desktop.input().press();
    QThread::msleep(50);
    const ProcessFigures before = processFigures(program.pid());
    moveForTenSeconds(desktop.input(), size);
    const ProcessFigures after = processFigures(program.pid());
    const std::string what = "processor time of a ten-second drag, 1,000 events/s, " +
                             std::to_string(size.width()) + "x" + std::to_string(size.height());
    print(what.c_str(), double(after.cpuMicroseconds - before.cpuMicroseconds) / 1e6, "s");
    desktop.input().releaseKey(program.key());
    desktop.input().release();
}

void measureIdle() {
    DesktopSession desktop;
    desktop.startWindowManager(WindowManagerKind::openbox);
    RunningProgram program(desktop);
    QThread::msleep(2000);
    const ProcessFigures before = processFigures(program.pid());
    moveForTenSeconds(desktop.input(), desktop.inspector().screenSize());
    const ProcessFigures after = processFigures(program.pid());
    print("wake-ups in ten seconds of moving without a button",
          double(after.voluntarySwitches - before.voluntarySwitches), "");
    print("processor time in these ten seconds",
          double(after.cpuMicroseconds - before.cpuMicroseconds) / 1e3, "ms");
    print("resident memory at rest", double(after.residentKiB) / 1024, "MiB");
    print("of it private", double(after.privateKiB) / 1024, "MiB");
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    const std::string wanted = argc > 1 ? argv[1] : "";
    const auto isWanted = [&](const char* part) { return wanted.empty() || wanted == part; };
    using namespace tilewright::testing;
    if (isWanted("idle"))
        measureIdle();
    if (isWanted("latencies"))
        measureLatencies();
    if (isWanted("drops")) {
        const auto& zones = tilewright::ZoneLayout::bentoBox().zones;
        measureDrops("moved", Hand::rests, {zones[2], zones[3]});
        measureDrops("moved and resized", Hand::rests, {zones[0], zones[1]});
        measureDrops("moved, the hand still moving", Hand::moves, {zones[2], zones[3]});
        measureDrops("moved and resized, the hand still moving", Hand::moves, {zones[0], zones[1]});
    }
    if (isWanted("drag")) {
        measureDrag({1920, 1080});
        measureDrag({3840, 2160});
    }
    return 0;
}
