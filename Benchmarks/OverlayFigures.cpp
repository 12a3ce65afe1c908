// Measures how soon the real program's overlay shows, beside a bare client that only maps a window,
// on X servers of their own: OverlayFigures [rounds [part of the name
// of a desktop]]. See Documentation/performance.md.

#include "BareOverlay.h"
#include "Samples.h"

#include <DragScript.h>
#include <Waiting.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string_view>

namespace tilewright::testing {
namespace {

/// Longer than the program keeps the pixels of an overlay that it has hidden.
constexpr unsigned long restingMilliseconds = 16'000;

struct Desktop {
    const char* name;
    WindowManagerKind windowManager;
    Compositing compositing;
};

/// Drags from the middle of a zone, and looks at a pixel of that zone's border until it changes.
class Watch {
public:
    explicit Watch(DesktopSession& desktop)
        : desktop_(desktop)
        , zone_(zoneFrame(ZoneLayout::bentoBox().zones[0], workArea(desktop.inspector()))) {}

    /// Milliseconds from the first move on, looking as fast as the server answers. `prepare` is
    /// done before the button's press, `end` before its release.
    double measure(unsigned long rest, const std::function<void()>& prepare,
                   const std::function<void()>& end) {
        XInputInjector& input = desktop_.input();
        input.move(zone_.center());
        QThread::msleep(rest);
        prepare();
        input.press();
        // Motion is heard of only once the press has been.
        QThread::msleep(20);
        const QColor ground = border();
        QElapsedTimer clock;
        clock.start();
        input.move(zone_.center() + QPoint(3, 0));
        while (clock.elapsed() < 5000 && border() == ground) {
        }
        const double milliseconds = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        // Until what is shown has come to rest.
        QThread::msleep(200);
        end();
        input.release();
        static_cast<void>(waitUntil([&] { return border() == ground; }));
        return milliseconds;
    }

private:
    /// The tile's outermost pixel: the one that a plain tile's border has, too.
    [[nodiscard]] QColor border() const {
        return desktop_.inspector().pixel({zone_.left() + 4, zone_.center().y()});
    }

    DesktopSession& desktop_;
    const QRect zone_;
};

/// The median of some rounds; the first one, in which everything is loaded, is left out.
double medianOf(int rounds, const std::function<double()>& measure) {
    measure();
    std::vector<double> values;
    for (int i = 0; i < rounds; ++i)
        values.push_back(measure());
    return median(values);
}

void measure(const Desktop& kind, int rounds) {
    constexpr unsigned long shortRest = 50;
    DesktopSession desktop;
    desktop.startWindowManager(kind.windowManager, kind.compositing);
    Watch watch(desktop);
    const auto measureBare = [&](unsigned long rest, int times) {
        BareOverlay bare(desktop.display().toLatin1().constData(),
                         kind.compositing == Compositing::on);
        return medianOf(times, [&] {
            return watch.measure(
                rest, [&] { bare.arm(); }, [&] { bare.hide(); });
        });
    };
    const int fewRounds = std::max(1, rounds / 4);
    const double bareBefore = measureBare(shortRest, rounds);
    const double bareRested = measureBare(restingMilliseconds, fewRounds);
    RunningProgram program(desktop);
    const auto measureProgram = [&](unsigned long rest, int times) {
        return medianOf(times, [&] {
            return watch.measure(
                rest, [&] { desktop.input().pressKey(program.key()); },
                [&] { desktop.input().releaseKey(program.key()); });
        });
    };
    const double soon = measureProgram(shortRest, rounds);
    const double rested = measureProgram(restingMilliseconds, fewRounds);
    program.process().signal(SIGTERM);
    static_cast<void>(program.process().waitForEnd());
    const double bareAfter = measureBare(shortRest, rounds);
    std::printf("%-22s shortly after another: bare client %5.2f and %5.2f ms, overlay %5.2f ms; "
                "after a rest: %5.2f ms, %5.2f ms\n",
                kind.name, bareBefore, bareAfter, soon, bareRested, rested);
    std::fflush(stdout);
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    using namespace tilewright::testing;
    constexpr int usualRounds = 40;
    const int rounds = argc > 1 ? std::max(4, std::atoi(argv[1])) : usualRounds;
    std::printf("first dragged event to the first pixel on the screen, medians\n");
    const Desktop desktops[]{
        {"openbox, nothing blends", WindowManagerKind::openbox, Compositing::off},
        {"openbox and picom", WindowManagerKind::openbox, Compositing::on},
        {"xfwm4, compositing", WindowManagerKind::xfwm4, Compositing::on}};
    for (const Desktop& desktop : desktops) {
        if (argc < 3 || std::string_view(desktop.name).find(argv[2]) != std::string_view::npos)
            measure(desktop, rounds);
    }
    return 0;
}
