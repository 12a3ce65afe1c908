// How long it takes to find the zone under the pointer, as on every motion of a drag.

#include <WindowManager/ZoneLayout.h>

#include <benchmark/benchmark.h>
#include <cmath>
#include <random>

using namespace tilewright;

namespace {

/// A layout whose zones tile the display in equal columns and rows.
ZoneLayout gridOf(int side) {
    ZoneLayout layout{
        QUuid::createUuid(), QStringLiteral("Grid"), QStringLiteral("square"), false, {}};
    const double size = 1.0 / side;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column)
            layout.zones.push_back({QUuid::createUuid(), QStringLiteral("Zone"), column * size,
                                    row * size, size, size});
    }
    return layout;
}

std::vector<NormalizedPoint> somePoints() {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> fraction(0, 1);
    std::vector<NormalizedPoint> points(1024);
    for (NormalizedPoint& point : points)
        point = {fraction(random), fraction(random)};
    return points;
}

void hitTest(benchmark::State& state) {
    const ZoneLayout layout = gridOf(static_cast<int>(std::sqrt(state.range(0))));
    const auto points = somePoints();
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(layout.zoneAtNormalized(points[next]));
        next = (next + 1) % points.size();
    }
}

} // namespace

BENCHMARK(hitTest)->Arg(4)->Arg(100)->Arg(10000);
