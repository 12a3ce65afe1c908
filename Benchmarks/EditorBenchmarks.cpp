// The layout editor: the rules of dragging, the search for room, and repainting during a drag.

#include "FakePlatform.h"

#include <TilewrightUI/FreeSlot.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/ZoneEditorGeometry.h>

#include <QApplication>
#include <QMouseEvent>
#include <benchmark/benchmark.h>
#include <cmath>
#include <random>

namespace {

using namespace tilewright;
using Corner = ZoneEditorGeometry::Corner;

Zone zoneAt(double x, double y, double width, double height) {
    return {QUuid::createUuid(), QStringLiteral("Zone"), x, y, width, height};
}

/// Neighbours scattered over the canvas, the same in every run.
std::vector<Zone> scattered(std::size_t count) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> fraction(0, 1);
    std::vector<Zone> zones;
    for (std::size_t index = 0; index < count; ++index) {
        zones.push_back(zoneAt(fraction(random) * 0.9, fraction(random) * 0.9,
                               0.05 + fraction(random) * 0.05, 0.05 + fraction(random) * 0.05));
    }
    return zones;
}

void moved(benchmark::State& state) {
    ZoneEditorGeometry geometry;
    geometry.others = scattered(static_cast<std::size_t>(state.range(0)));
    const Zone start = zoneAt(0.3, 0.3, 0.2, 0.2);
    double dx = 0;
    for (auto _ : state) {
        dx = dx > 0.4 ? -0.4 : dx + 0.001;
        benchmark::DoNotOptimize(geometry.moved(start, dx, -dx / 2));
    }
}
BENCHMARK(moved)->Arg(3)->Arg(50)->Arg(200);

void resized(benchmark::State& state) {
    ZoneEditorGeometry geometry;
    geometry.others = scattered(static_cast<std::size_t>(state.range(0)));
    const Zone start = zoneAt(0.3, 0.3, 0.2, 0.2);
    double dx = 0;
    for (auto _ : state) {
        dx = dx > 0.4 ? -0.4 : dx + 0.001;
        benchmark::DoNotOptimize(geometry.resized(start, Corner::bottomRight, dx, -dx / 2));
    }
}
BENCHMARK(resized)->Arg(3)->Arg(50)->Arg(200);

void freeSlotOn(benchmark::State& state, const std::vector<Zone>& zones) {
    for (auto _ : state)
        benchmark::DoNotOptimize(freeSlot(zones));
}
BENCHMARK_CAPTURE(freeSlotOn, empty, std::vector<Zone>{});
BENCHMARK_CAPTURE(freeSlotOn, crowded, scattered(50));
// Full, and by many zones: every position is looked at, and most zones before one overlaps it.
BENCHMARK_CAPTURE(freeSlotOn, full, [] {
    std::vector<Zone> zones;
    for (int row = 0; row < 20; ++row) {
        for (int column = 0; column < 10; ++column)
            zones.push_back(zoneAt(column * 0.1, row * 0.05, 0.1, 0.05));
    }
    return zones;
}());

/// One step of a drag with 200 zones: the pointer's event, the rules, and painting what changed.
void repaintDuringDrag(benchmark::State& state) {
    testing::FakeDesktop desktop;
    LayoutEditorView view;
    view.resize(520, 400);
    view.model().loadForEditing({QUuid::createUuid(),
                                 QStringLiteral("Many"),
                                 {},
                                 false,
                                 scattered(static_cast<std::size_t>(state.range(0)))});
    view.model().setSnapToEdges(false);
    view.show();
    desktop.platform.fakeMainLoop.runPosted();
    QApplication::processEvents();

    LayoutEditorCanvas& canvas = view.canvas();
    const std::size_t last = view.model().zones().size() - 1;
    const QPointF start = canvas.tile(last).zoneFrame().center();
    const auto send = [&](QEvent::Type type, QPointF at) {
        QMouseEvent event(type, at, canvas.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&canvas, &event);
    };
    send(QEvent::MouseButtonPress, start);
    double angle = 0;
    for (auto _ : state) {
        angle += 0.1;
        send(QEvent::MouseMove, start + QPointF(60 * std::cos(angle), 60 * std::sin(angle)));
        desktop.platform.fakeMainLoop.runPosted();
        QApplication::processEvents();
    }
    state.counters["dragging"] = canvas.isDragging() ? 1 : 0;
}
BENCHMARK(repaintDuringDrag)->Arg(3)->Arg(200)->Unit(benchmark::kMillisecond);

/// Everything painted afresh, as after a change of the window's size.
void repaintAll(benchmark::State& state) {
    testing::FakeDesktop desktop;
    LayoutEditorView view;
    view.resize(520, 400);
    view.model().loadForEditing({QUuid::createUuid(),
                                 QStringLiteral("Many"),
                                 {},
                                 false,
                                 scattered(static_cast<std::size_t>(state.range(0)))});
    view.show();
    desktop.platform.fakeMainLoop.runPosted();
    QApplication::processEvents();
    for (auto _ : state)
        view.repaint();
}
BENCHMARK(repaintAll)->Arg(200)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
