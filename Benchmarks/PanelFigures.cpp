// Measures how soon the panel of the real program shows after a click on its item, on an X server
// of its own, under openbox with xfce4-panel as the tray's host. See Documentation/performance.md.

#include "Samples.h"

#include <ProcessFigures.h>
#include <ShellDesktop.h>
#include <Waiting.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

constexpr int starts = 7;
constexpr int laterOpenings = 200;

void printMemory(int openings, pid_t program) {
    const ProcessFigures figures = processFigures(program);
    std::printf("after %3d openings: resident %.1f MiB, of it private %.1f MiB\n", openings,
                double(figures.residentKiB) / 1024, double(figures.privateKiB) / 1024);
}

/// Milliseconds from the click's release to the first of the panel's pixels on the server.
double clickToPanel(ShellDesktop& desktop, QPoint item, QPoint probe) {
    desktop.input().move(item);
    desktop.input().press();
    const QColor ground = desktop.inspector().pixel(probe);
    QElapsedTimer clock;
    clock.start();
    desktop.input().release();
    while (clock.elapsed() < 10'000 && desktop.inspector().pixel(probe) == ground) {
    }
    return double(clock.nsecsElapsed()) / 1e6;
}

void closePanel(ShellDesktop& desktop) {
    desktop.input().tapKey(keysym::escape);
    static_cast<void>(desktop.waitForPanel(false));
}

void measure() {
    ShellDesktop desktop;
    desktop.startTray(TrayHost::statusNotifier);
    std::vector<double> first;
    std::vector<double> later;
    QPoint probe;
    for (int start = 0; start <= starts; ++start) {
        Subprocess& program = desktop.startProgram();
        const QPoint item = desktop.item();
        if (start == 0) {
            // Only to learn where the panel will be.
            const QRect panel = desktop.openPanel();
            probe = panel.bottomLeft() + QPoint(8, -40);
        } else {
            first.push_back(clickToPanel(desktop, item, probe));
            static_cast<void>(desktop.waitForPanel());
        }
        closePanel(desktop);
        for (int opening = 1; start == starts && opening < laterOpenings; ++opening) {
            if (opening == 1 || opening == 50)
                printMemory(opening, program.pid());
            later.push_back(clickToPanel(desktop, item, probe));
            static_cast<void>(desktop.waitForPanel());
            closePanel(desktop);
        }
        if (start == starts)
            printMemory(laterOpenings, program.pid());
        program.stop();
        static_cast<void>(waitUntil([&] { return !desktop.showsItem(); }));
    }
    printTimes("click on the item to the panel, the first time", first);
    printTimes("click on the item to the panel, later", later);
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    tilewright::testing::measure();
    return 0;
}
