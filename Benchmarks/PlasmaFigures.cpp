// Measures the program in sessions of KWin as its user meets it, beside clients and scripts that do
// as little as can be done: PlasmaFigures [overlay|drops|idle|memory]. KWin's display is a window
// of an X server, where its pixels are looked at. See Documentation/performance.md.

#include "BareLayer.h"
#include "FrameWatch.h"
#include "Samples.h"

#include <ProcessFigures.h>
#include <ProgramInPlasma.h>

#include <QCoreApplication>
#include <array>
#include <cstdio>
#include <functional>

namespace tilewright::testing {
namespace {

constexpr int rounds = 40;
constexpr unsigned long settlingSeconds = 35;
constexpr unsigned long idleSeconds = 60;
/// A little more than what the overlay's pixels are kept for.
constexpr unsigned long forgettingSeconds = 65;

PlasmaDisplays displayOf(QSize pixels) {
    return {.scales = {1}, .pixels = pixels, .seen = PlasmaDisplays::Seen::onXServer};
}

/// Turns the event loop for so long, so that what has changed comes to rest.
void rest(std::chrono::milliseconds duration) {
    static_cast<void>(staysTrue([] { return true; }, duration));
}

/// A session with the program in it.
struct Bench : ProgramInPlasma {
    explicit Bench(QSize pixels)
        : ProgramInPlasma("control", displayOf(pixels)) {
        // What lies bare KWin does not clear of what was there before.
        static_cast<void>(session.startClient(CompositorClient::qt, QRect(QPoint(0, 0), pixels)));
    }
    void TestBody() override {}

    /// Where a zone's border is, and no window that is dragged from its middle.
    [[nodiscard]] QPoint borderOf(std::size_t index) {
        return zone(index).bottomLeft() + QPoint(5, -60);
    }
    void endProgram() {
        program->signal(SIGTERM);
        static_cast<void>(program->waitForEnd());
    }
};

/// Milliseconds from an action until a pixel has another colour.
double untilChange(PlasmaSession& session, QPoint at, const std::function<void()>& action) {
    const QColor before = session.pixel(at);
    QElapsedTimer clock;
    clock.start();
    action();
    constexpr int tooLong = 5000;
    while (session.pixel(at) == before) {
        if (clock.elapsed() > tooLong)
            qFatal("Nothing has changed: %s", session.describe().c_str());
        QCoreApplication::processEvents();
        // Two processors have to do for the compositor and its X server, too.
        constexpr unsigned long pauseMicroseconds = 100;
        QThread::usleep(pauseMicroseconds);
    }
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

void measureOverlay(Bench& bench) {
    PlasmaSession& session = bench.session;
    CompositorInput& input = session.input();
    const QPoint first = bench.borderOf(0);
    const QPoint second = bench.borderOf(1);
    const QString title = session.startClient(CompositorClient::qt, Bench::start);
    std::vector<double> showings;
    std::vector<double> changes;
    for (int round = 0; round < rounds; ++round) {
        // Until a fade has ended, and the compositor has gone to sleep.
        constexpr std::chrono::milliseconds calm{400};
        session.grab(title);
        input.glide(bench.zone(0).center());
        rest(calm);
        // Only now: the client below may have painted nothing yet before.
        const QColor ground = session.pixel(first);
        showings.push_back(untilChange(session, first, [&] {
            input.pressKey(KernelKey::control);
            // KWin 5 tells of keys with the pointer's motions.
            if (session.generation() == 5)
                input.glide(bench.zone(0).center() + QPoint(6, 0), 3);
        }));
        rest(calm);
        changes.push_back(
            untilChange(session, second, [&] { input.move(bench.zone(1).center()); }));
        rest(calm);
        input.tap(KernelKey::escape);
        input.release();
        input.releaseKey(KernelKey::control);
        if (!waitUntil([&] { return session.pixel(first) == ground; }))
            qFatal("The overlay stays");
    }
    printTimes("key to the overlay's first pixel", showings);
    printTimes("pointer's move to the next highlight's first pixel", changes);
}

void measureBareLayer(PlasmaSession& session) {
    constexpr std::uint32_t grey = 0x80404040;
    constexpr std::uint32_t white = 0x80808080;
    constexpr QPoint probe(5, 500);
    BareLayer bare(session.socketPath());
    std::vector<double> told;
    std::vector<double> showings;
    std::vector<double> changes;
    std::vector<double> changesInDrags;
    const auto hide = [&] {
        static_cast<void>(untilChange(session, probe, [&] { bare.hide(); }));
        constexpr std::chrono::milliseconds calm{400};
        rest(calm);
    };
    for (int round = 0; round < rounds; ++round) {
        showings.push_back(untilChange(session, probe, [&] { bare.show(grey); }));
        rest(std::chrono::milliseconds(400));
        changes.push_back(untilChange(session, probe, [&] { bare.fill(white); }));
        hide();
    }
    // With a move, the compositor begins to draw the window before it hears of another colour.
    constexpr QPoint elsewhere(1200, 500);
    session.grab(session.startClient(CompositorClient::qt, Bench::start));
    for (int round = 0; round < rounds; ++round) {
        session.input().glide(elsewhere);
        static_cast<void>(untilChange(session, probe, [&] { bare.show(grey); }));
        rest(std::chrono::milliseconds(400));
        changesInDrags.push_back(untilChange(session, probe, [&] {
            session.input().move(elsewhere + QPoint(0, 60));
            bare.fill(white);
        }));
        hide();
    }
    session.input().release();
    for (int round = 0; round < rounds && bare.showAtControl(grey); ++round) {
        told.push_back(
            untilChange(session, probe, [&] { session.input().pressKey(KernelKey::control); }));
        session.input().releaseKey(KernelKey::control);
        hide();
    }
    printTimes("bare client: key to its first pixel", told);
    printTimes("bare client: its own wish to its first pixel", showings);
    printTimes("bare client: another colour", changes);
    printTimes("bare client: another colour as a window moves", changesInDrags);
}

void measureOverlays(QSize pixels) {
    std::printf("overlay, %d by %d\n", pixels.width(), pixels.height());
    std::fflush(stdout);
    Bench bench(pixels);
    measureOverlay(bench);
    bench.endProgram();
    measureBareLayer(bench.session);
}

/// Drops a window into two zones in turn.
std::vector<double> dropTimes(Bench& bench, const QString& title, bool isSnapped) {
    PlasmaSession& session = bench.session;
    CompositorInput& input = session.input();
    FrameWatch watch(session, title);
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const QRect target = bench.zone(static_cast<std::size_t>(round % 2));
        session.grab(title);
        input.glide(target.center());
        if (isSnapped) {
            input.pressKey(KernelKey::control);
            input.glide(target.center() + QPoint(6, 0), 3);
            if (!waitUntil([&] { return bench.isHighlighted(target); }))
                qFatal("There is no overlay");
        }
        rest(std::chrono::milliseconds(300));
        watch.start();
        input.release();
        const std::optional<double> time = watch.untilFinal(target);
        if (!time)
            qFatal("The window did not come to its zone");
        times.push_back(*time);
        if (isSnapped)
            input.releaseKey(KernelKey::control);
    }
    return times;
}

/// A script inside KWin that gives the window the frames of two zones in turn, whenever it is
/// dropped: nobody is asked.
void placeBarely(Bench& bench, const QString& title) {
    const auto frame = [&](std::size_t index) {
        const QRect zone = bench.zone(index);
        return QStringLiteral("{x: %1, y: %2, width: %3, height: %4}")
            .arg(zone.x())
            .arg(zone.y())
            .arg(zone.width())
            .arg(zone.height());
    };
    static_cast<void>(bench.session.begin(
        QStringLiteral("const w = find('%1'), frames = [%2, %3]; let n = 0;"
                       "(w.interactiveMoveResizeFinished || w.clientFinishUserMovedResized)"
                       ".connect(() => { w.frameGeometry = frames[n++ % 2]; })")
            .arg(title, frame(0), frame(1))));
}

void measureDrops(CompositorClient client) {
    Bench bench({1920, 1080});
    const QString title = bench.session.startClient(client, Bench::start);
    const std::string window = std::string(name(client)) + " window";
    printTimes(("release to the final frame, " + window).c_str(), dropTimes(bench, title, true));
    bench.endProgram();
    placeBarely(bench, title);
    printTimes(("the same by a script in KWin alone, " + window).c_str(),
               dropTimes(bench, title, false));
}

/// Sleeps through the idle time; how often these processes woke up in it.
std::vector<long> wakeUps(const std::vector<pid_t>& processes) {
    QThread::sleep(settlingSeconds);
    std::vector<ProcessFigures> before;
    for (const pid_t process : processes)
        before.push_back(processFigures(process));
    QThread::sleep(idleSeconds);
    std::vector<long> counts;
    for (std::size_t i = 0; i < processes.size(); ++i)
        counts.push_back(processFigures(processes[i]).voluntarySwitches -
                         before[i].voluntarySwitches);
    return counts;
}

void measureIdle() {
    {
        PlasmaSession session(displayOf({1920, 1080}));
        std::printf("wake-ups in %lu idle seconds: KWin without the program %ld\n", idleSeconds,
                    wakeUps({session.kwinPid()}).front());
        std::fflush(stdout);
    }
    Bench bench({1920, 1080});
    const std::vector<long> counts = wakeUps({bench.session.kwinPid(), bench.program->pid()});
    std::printf("wake-ups in %lu idle seconds: KWin with it %ld, the program %ld\n", idleSeconds,
                counts[0], counts[1]);
    std::fflush(stdout);
}

void printMemory(const char* when, pid_t process) {
    const ProcessFigures figures = processFigures(process);
    std::printf("%-34s resident %6.1f MiB, of it private %6.1f MiB, shared pixels %6.1f MiB\n",
                when, double(figures.residentKiB) / 1024, double(figures.privateKiB) / 1024,
                double(figures.sharedMemoryKiB) / 1024);
    std::fflush(stdout);
}

void measureMemory(QSize pixels) {
    std::printf("memory, %d by %d\n", pixels.width(), pixels.height());
    Bench bench(pixels);
    QThread::sleep(settlingSeconds);
    printMemory("at rest, before any drag", bench.program->pid());
    const QString title = bench.session.startClient(CompositorClient::qt, Bench::start);
    bench.dragToFirstZone(title);
    bench.session.input().glide(bench.zone(1).center());
    rest(std::chrono::milliseconds(1000));
    printMemory("the overlay shown", bench.program->pid());
    bench.drop();
    rest(std::chrono::milliseconds(1000));
    printMemory("hidden a moment ago", bench.program->pid());
    QThread::sleep(forgettingSeconds);
    printMemory("hidden for a minute", bench.program->pid());
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    const std::string wanted = argc > 1 ? argv[1] : "";
    const auto isWanted = [&](const char* part) { return wanted.empty() || wanted == part; };
    using namespace tilewright::testing;
    constexpr std::array sizes{QSize(1920, 1080), QSize(3840, 2160)};
    if (isWanted("overlay"))
        std::for_each(sizes.begin(), sizes.end(), measureOverlays);
    if (isWanted("drops")) {
        measureDrops(CompositorClient::qt);
        measureDrops(CompositorClient::xwayland);
    }
    if (isWanted("idle"))
        measureIdle();
    if (isWanted("memory"))
        std::for_each(sizes.begin(), sizes.end(), measureMemory);
    return 0;
}
