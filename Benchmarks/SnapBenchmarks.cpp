// What a drag costs: a dragged event in the controller, and the overlay's repainting of a changed
// highlight, up to and including Qt's own buffer. No desktop takes part.

#include <FakePlatform.h>
#include <Tilewright/SnapController.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/SnapOverlayModel.h>
#include <TilewrightUI/SnapOverlayView.h>
#include <WindowManager/LayoutStore.h>

#include <QApplication>
#include <QImage>
#include <array>
#include <benchmark/benchmark.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

/// A view of a layout, shown and painted, with its first zone highlighted.
class ShownOverlay {
public:
    ShownOverlay(const ZoneLayout& layout, const QSize& size)
        : model(layout, layout.zones.front().id)
        , view(model) {
        view.setAttribute(Qt::WA_TranslucentBackground);
        view.resize(size);
        view.show();
        QCoreApplication::processEvents();
        settle();
    }

    /// Repaints what is to be repainted.
    void paint() {
        desktop.platform.fakeMainLoop.runPosted();
        QCoreApplication::sendPostedEvents();
    }
    void settle() {
        desktop.platform.fakeMainLoop.advance(HighlightFade::duration);
        paint();
    }

    FakeDesktop desktop;
    SnapOverlayModel model;
    SnapOverlayView view;
};

QSize sizeOf(const benchmark::State& state) {
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

const ZoneLayout& layoutOf(const benchmark::State& state) {
    return state.range(2) == 0 ? ZoneLayout::bentoBox() : ZoneLayout::halves();
}

/// From the model's change to the painted first frame: the two largest tiles of the layout.
void changeHighlight(benchmark::State& state) {
    const ZoneLayout& layout = layoutOf(state);
    ShownOverlay overlay(layout, sizeOf(state));
    std::size_t highlighted = 0;
    for (auto _ : state) {
        highlighted = 1 - highlighted;
        overlay.model.setHighlightedZoneID(layout.zones[highlighted].id);
        overlay.paint();
        state.PauseTiming();
        overlay.settle();
        state.ResumeTiming();
    }
}

/// One further frame of the same fade.
void paintFadeFrame(benchmark::State& state) {
    const ZoneLayout& layout = layoutOf(state);
    ShownOverlay overlay(layout, sizeOf(state));
    std::size_t highlighted = 0;
    for (auto _ : state) {
        state.PauseTiming();
        highlighted = 1 - highlighted;
        overlay.settle();
        overlay.model.setHighlightedZoneID(layout.zones[highlighted].id);
        overlay.paint();
        state.ResumeTiming();
        overlay.desktop.platform.fakeMainLoop.advance(HighlightFade::frame);
        overlay.paint();
    }
}

/// The whole overlay, as when it is first shown.
void paintAll(benchmark::State& state) {
    ShownOverlay overlay(layoutOf(state), sizeOf(state));
    for (auto _ : state) {
        overlay.view.repaint();
    }
}

/// For comparison: writing each of a buffer's pixels once, which is the least any repaint of all of
/// it can do.
void fillBuffer(benchmark::State& state) {
    QImage image(sizeOf(state), QImage::Format_ARGB32_Premultiplied);
    quint32 color = 0x40404040;
    for (auto _ : state) {
        image.fill(color);
        benchmark::DoNotOptimize(image.constBits());
        ++color;
    }
}

enum class Drag { withoutModifier, withinAZone, fromZoneToZone };

/// One dragged event, from the monitor's handler to the published highlight.
void handleDraggedEvent(benchmark::State& state) {
    const auto drag = static_cast<Drag>(state.range(0));
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    platform.fakeAccessibility.recordsCalls = false;
    platform.fakeScreens.setScreens({makeScreen()});
    SnapController::shared().start();
    const auto handler = platform.fakeEventMonitors.monitors.begin()->second.handler;
    if (drag != Drag::withoutModifier)
        handler({EventType::flagsChanged, {ModifierFlag::control}});
    const std::array<AppKitPoint, 2> places{{{200, 450}, {1300, 800}}};
    std::size_t place = 0;
    for (auto _ : state) {
        if (drag == Drag::fromZoneToZone)
            place = 1 - place;
        platform.fakePointer.at = places.at(place);
        handler({EventType::leftMouseDragged, {}});
    }
    handler({EventType::leftMouseUp, {}});
}

void sizesAndLayouts(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"width", "height", "halves"});
    for (const int halves : {0, 1}) {
        benchmark->Args({1920, 1080, halves});
        benchmark->Args({3840, 2160, halves});
    }
    benchmark->Unit(benchmark::kMillisecond);
}

BENCHMARK(changeHighlight)->Apply(sizesAndLayouts);
BENCHMARK(paintFadeFrame)->Apply(sizesAndLayouts);
BENCHMARK(paintAll)->Apply(sizesAndLayouts);
BENCHMARK(fillBuffer)
    ->ArgNames({"width", "height"})
    ->Args({1920, 1080})
    ->Args({3840, 2160})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(handleDraggedEvent)->ArgName("drag")->Arg(0)->Arg(1)->Arg(2);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    look::setPrefersReducedMotion(false);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
