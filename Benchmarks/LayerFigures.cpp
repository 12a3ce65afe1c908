// Measures the overlay as a layer surface on a headless sway, as somebody sees it who looks at the
// display from outside, beside a client that fills its surface with a colour. See
// Documentation/performance.md.

#include "BareLayer.h"
#include "Samples.h"
#include "ScreenWatch.h"

#include <LayerShell/LayerShellOverlaySurface.h>
#include <OverlayFixture.h>
#include <Platform/QtMainLoop.h>
#include <SwaySession.h>
#include <Waiting.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <cstdio>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr int rounds = 60;

template<class Action>
double until(ScreenWatch& watch, Action action) {
    watch.prepare();
    QElapsedTimer clock;
    clock.start();
    action();
    watch.waitForChange();
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// Mebibytes of memory of this process: all of it, and what it shares with the compositor.
void printMemory(const char* when) {
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return;
    double all = 0;
    double shared = 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        const double mebibytes = line.simplified().split(' ').value(1).toDouble() / 1024;
        if (line.startsWith("VmRSS"))
            all = mebibytes;
        else if (line.startsWith("RssShmem"))
            shared = mebibytes;
    }
    std::printf("%-44s resident %5.1f MiB, of it shared with the compositor %5.1f MiB\n", when, all,
                shared);
}

void measureBare(const SwaySession& sway, ScreenWatch& watch) {
    constexpr std::uint32_t grey = 0x80404040;
    constexpr std::uint32_t white = 0x80808080;
    BareLayer bare(sway.socketPath());
    std::vector<double> showings;
    std::vector<double> changes;
    for (int round = 0; round < rounds; ++round) {
        showings.push_back(until(watch, [&] { bare.show(grey); }));
        changes.push_back(until(watch, [&] { bare.fill(white); }));
        static_cast<void>(until(watch, [&] { bare.hide(); }));
    }
    printTimes("bare client: shown", showings);
    printTimes("bare client: another colour", changes);
}

void measureOverlay(const SwaySession& sway, ScreenWatch& watch) {
    FakeDesktop desktop;
    look::setPrefersReducedMotion(true);
    SnapOverlayModel model{makeLayout({makeZone(0, 0, 0.5, 1), makeZone(0.5, 0, 0.5, 0.5),
                                       makeZone(0.5, 0.5, 0.5, 0.5)}),
                           std::nullopt};
    const auto view = std::make_shared<SnapOverlayView>(model);
    QtMainLoop loop;
    FakeMainLoop time;
    WaylandConnection connection(loop, sway.socketPath());
    WaylandOutputs outputs(connection);
    const ScreenPtr screen = makeScreen({.localizedName = u"HEADLESS-1"_s});
    LayerShellOverlaySurface surface(
        connection, outputs, [&](const Screen& one) { return outputs.named(one.localizedName()); },
        time, view);
    if (!waitUntil([&] { return outputs.all().size() == 1; }))
        qFatal("There is no display");
    const auto highlight = [&](std::optional<QUuid> zone) {
        model.setHighlightedZoneID(zone);
        desktop.platform.fakeMainLoop.runPosted();
        time.runPosted();
    };
    std::vector<double> showings;
    std::vector<double> changes;
    printMemory("before the overlay was ever shown");
    surface.prepare(screen);
    printMemory("prepared, as a drag begins");
    for (int round = 0; round < rounds; ++round) {
        surface.setScreen(screen);
        showings.push_back(until(watch, [&] { surface.orderFront(); }));
        changes.push_back(until(watch, [&] { highlight(model.layout().zones.front().id); }));
        if (round == rounds - 1)
            printMemory("shown");
        static_cast<void>(until(watch, [&] { surface.orderOut(); }));
        highlight(std::nullopt);
    }
    printMemory("hidden a moment ago");
    time.advance(LayerShellOverlaySurface::pixelsKept);
    printMemory("hidden for a minute");
    surface.setScreen(screen);
    showings.push_back(until(watch, [&] { surface.orderFront(); }));
    printTimes("overlay: shown", showings);
    std::printf("%-44s       %6.1f ms\n", "overlay: shown unprepared after a minute",
                showings.back());
    printTimes("overlay: highlighted", changes);
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    using namespace tilewright::testing;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    for (const QSize size : {QSize(1920, 1080), QSize(3840, 2160)}) {
        std::printf("%d by %d\n", size.width(), size.height());
        SwaySession sway;
        sway.command(
            QStringLiteral("output HEADLESS-1 mode %1x%2").arg(size.width()).arg(size.height()));
        ScreenWatch watch(sway.socketPath(), {100, 100});
        measureOverlay(sway, watch);
        measureBare(sway, watch);
    }
    return 0;
}
