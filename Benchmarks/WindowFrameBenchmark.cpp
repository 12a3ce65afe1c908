// From the call to the window's final ConfigureNotify, beside a bare program that does the same
// necessary reads in one round trip and sends the single request, on a connection of its own and
// without any of this program's code. Both in turn, in one run.

#include "BareFrameRequest.h"
#include "FinalNotice.h"
#include "Samples.h"

#include <BareClient.h>
#include <WindowManager/WindowManager.h>
#include <WindowManager/ZoneLayout.h>
#include <X11TestPlatform.h>

#include <QApplication>
#include <QTimer>
#include <array>
#include <cstdio>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

/// Turns the loop until the notice has come; false if it does not.
bool turnUntil(const FinalNotice& notice) {
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(std::chrono::seconds(5));
    while (!notice.hasCome() && deadline.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return notice.hasCome();
}

/// Lets everybody come to rest, so that neither program pays for the other's work.
void rest(X11TestPlatform& platform) {
    while (platform.desktop().frameSetter().isBusy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    bool isOver = false;
    QTimer::singleShot(std::chrono::milliseconds(25), [&] { isOver = true; });
    while (!isOver)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Sets a window to two zones in turn, by either program, and prints what it took.
bool compare(const char* what, const std::array<Zone, 2>& zones, const DesktopSession& desktop,
             X11TestPlatform& platform, const BareClient& client) {
    const QRect area = readWindowFacts(platform.connection(), client.window()).client;
    const AccessibilityElement element =
        platform.accessibility
            .elementAtPosition({double(area.center().x()), double(area.center().y())})
            .value.value();
    BareFrameRequest bare(desktop.display().toLatin1().constData(), client.window());
    FinalNotice notice(desktop.display(), client.window());
    const Screen& screen = *platform.screens.all().front();
    const X11WindowFacts facts = readWindowFacts(platform.connection(), client.window());
    WindowManager::shared().snap(element, zones[1], screen);
    rest(platform);

    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> roundTrips;
    constexpr int rounds = 400;
    for (int round = 0; round < rounds; ++round) {
        const Zone& zone = zones[static_cast<std::size_t>(round % 2)];
        const ZoneRect rect = zone.axRect(screen);
        const QRect outer = QRectF(rect.x, rect.y, rect.width, rect.height).toRect();
        notice.expect(QRect(outer.topLeft() + QPoint(facts.decorations.left, facts.decorations.top),
                            facts.clientSize(outer.size())));
        // Each of the two sets the window to either zone equally often.
        const bool isOurs = round % 4 == 0 || round % 4 == 3;
        const std::uint64_t tripsBefore = platform.connection().roundTrips();
        const auto start = FinalNotice::Clock::now();
        if (isOurs) {
            WindowManager::shared().snap(element, zone, screen);
            roundTrips.push_back(double(platform.connection().roundTrips() - tripsBefore));
        } else if (!bare.set({outer.x(), outer.y(), outer.width(), outer.height()})) {
            std::fprintf(stderr, "the bare program may not set the window\n");
            return false;
        }
        if (!turnUntil(notice)) {
            std::fprintf(stderr, "the window did not come to its frame\n");
            return false;
        }
        // What still comes counts too: only then was it the final notice.
        rest(platform);
        (isOurs ? ours : theirs).push_back(notice.since(start));
    }
    std::printf("%s, call to final ConfigureNotify, medians of %zu: %.3f ms, bare %.3f ms, ratio "
                "%.2f; round trips within the call: %.0f\n",
                what, ours.size(), median(ours), median(theirs), median(ours) / median(theirs),
                median(roundTrips));
    return true;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    DesktopSession desktop;
    if (!desktop.startWindowManager(WindowManagerKind::openbox))
        return 1;
    X11TestPlatform platform(desktop.display());
    const BareClient client(desktop.display(), QRect(300, 200, 500, 300));
    const ZoneLayout halves = ZoneLayout::halves();
    const ZoneLayout thirds = ZoneLayout::thirds();
    return compare("moved", {halves.zones[0], halves.zones[1]}, desktop, platform, client) &&
                   compare("moved and resized", {thirds.zones[0], halves.zones[1]}, desktop,
                           platform, client)
               ? 0
               : 1;
}
