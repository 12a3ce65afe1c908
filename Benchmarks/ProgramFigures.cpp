// Measures the whole program as its user meets it, on an X server of its own, under openbox with
// tint2 as the tray's host: how soon its item shows, what it holds in memory, how often it wakes
// while nobody uses it. Takes about a minute and a half. See Documentation/performance.md.

#include "Samples.h"

#include <ProcessFigures.h>
#include <ShellUser.h>
#include <TestClients.h>
#include <Waiting.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <cstdio>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

constexpr int starts = 9;
/// Qt's picture cache empties itself once, half a minute after the item was drawn.
constexpr unsigned long settlingSeconds = 35;
constexpr unsigned long idleSeconds = 60;
/// More than it takes until what the settings used is given back.
constexpr unsigned long givingBackSeconds = 5;

void printMemory(const char* when, pid_t program) {
    const ProcessFigures figures = processFigures(program);
    std::printf("memory %-40s resident %5.1f MiB, of it private %5.1f MiB, the program's own %.1f "
                "MiB\n",
                when, double(figures.residentKiB) / 1024, double(figures.privateKiB) / 1024,
                double(figures.anonymousKiB) / 1024);
    std::fflush(stdout);
}

void measure() {
    ShellDesktop desktop;
    desktop.startTray(TrayHost::systemTray);
    std::vector<double> times;
    times.reserve(starts);
    for (int start = 0; start < starts; ++start) {
        QElapsedTimer clock;
        clock.start();
        Subprocess& program = desktop.startProgram();
        while (clock.elapsed() < 20'000 && !desktop.showsItem()) {
        }
        times.push_back(double(clock.nsecsElapsed()) / 1e6);
        program.stop();
        static_cast<void>(waitUntil([&] { return !desktop.showsItem(); }));
    }
    std::printf("start to the item on the bar: median %.0f ms, longest %.0f ms, of %d\n",
                median(times), percentile(times, 1), starts);

    Subprocess& program = desktop.startProgram();
    static_cast<void>(desktop.item());
    QThread::sleep(settlingSeconds);
    printMemory("at rest, nothing opened yet:", program.pid());
    const ProcessFigures before = processFigures(program.pid());
    QThread::sleep(idleSeconds);
    const ProcessFigures after = processFigures(program.pid());
    std::printf("wake-ups in %lu idle seconds: %ld, processor time %.1f ms\n", idleSeconds,
                after.voluntarySwitches - before.voluntarySwitches,
                double(after.cpuMicroseconds - before.cpuMicroseconds) / 1e3);
    const TestClient other = startClient(desktop.session(), ClientKind::qt, {300, 200, 400, 300});
    printMemory("beside another program of Qt's:", program.pid());
    other.process->stop();
    const QRect panel = desktop.openPanel();
    printMemory("with the panel open:", program.pid());
    desktop.input().click(ShellDesktop::settingsButton(panel));
    static_cast<void>(waitUntil([&] { return desktop.settingsWindow().has_value(); }));
    QThread::sleep(1);
    printMemory("with the settings open:", program.pid());
    ShellUser(desktop).closeSettings();
    QThread::sleep(givingBackSeconds);
    printMemory("after the settings were closed:", program.pid());
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    tilewright::testing::measure();
    return 0;
}
