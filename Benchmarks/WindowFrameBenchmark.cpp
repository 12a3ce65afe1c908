// From the call to the window's final ConfigureNotify, beside a bare program that does the same
// necessary reads in one round trip and sends the single request. Both in turn, in one run.

#include <BareClient.h>
#include <WindowManager/WindowManager.h>
#include <WindowManager/ZoneLayout.h>
#include <X11/X11Properties.h>
#include <X11TestPlatform.h>

#include <QApplication>
#include <algorithm>
#include <cstdio>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

using Clock = std::chrono::steady_clock;

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

/// Turns the loop until the window's own notice of its new left edge is in; the time since `start`.
double untilConfigured(xcb_connection_t* watcher, int left, Clock::time_point start) {
    for (;;) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(watcher)) {
            const X11Reply<xcb_generic_event_t> owned(event);
            // Only the notices that window managers send carry places on the screen.
            if (event->response_type == (XCB_CONFIGURE_NOTIFY | 0x80) &&
                eventAs<xcb_configure_notify_event_t>(*event).x == left)
                return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
        }
        QCoreApplication::processEvents();
        if (Clock::now() - start > std::chrono::seconds(5))
            return -1;
    }
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
    const auto element =
        AccessibilityElement(platform.accessibility().elementAtPosition({500, 300}).value.value());
    const auto bare = X11Connection::open(desktop.display());
    xcb_connection_t* watcher = xcb_connect(desktop.display().toLatin1().constData(), nullptr);
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(watcher, client.window(), XCB_CW_EVENT_MASK, &mask);
    xcb_flush(watcher);

    const Screen& screen = *platform.screens().all().front();
    const X11WindowFacts facts = readWindowFacts(*bare, client.window());
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> roundTrips;
    for (int round = 0; round < 200; ++round) {
        const Zone& zone = ZoneLayout::halves().zones[static_cast<std::size_t>(round % 2)];
        const ZoneRect rect = zone.axRect(screen);
        const int left = int(rect.x) + facts.decorations.left;
        const bool isOurs = round / 2 % 2 == 0;
        const auto start = Clock::now();
        if (isOurs) {
            int trips = 0;
            std::uint64_t read = ~std::uint64_t{0};
            platform.connection().setWaitObserver([&] {
                // A wait that needs no reading is served by an earlier round trip.
                const std::uint64_t now = xcb_total_read(platform.connection().xcb());
                trips += now != read ? 1 : 0;
                read = now;
            });
            WindowManager::shared().snap(element, zone, screen);
            platform.connection().setWaitObserver({});
            roundTrips.push_back(trips);
            ours.push_back(untilConfigured(watcher, left, start));
            while (platform.desktop().frameSetter().isBusy())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        } else {
            const X11WindowFacts now = readWindowFacts(*bare, client.window());
            const QSize size = now.clientSize(QSize(int(rect.width), int(rect.height)));
            sendToWindowManager(*bare, client.window(), X11Atom::netMoveresizeWindow,
                                {1U | (0xFU << 8U) | (2U << 12U), std::uint32_t(rect.x),
                                 std::uint32_t(rect.y), std::uint32_t(size.width()),
                                 std::uint32_t(size.height())});
            bare->flush();
            theirs.push_back(untilConfigured(watcher, left, start));
        }
    }
    std::printf(
        "call to final ConfigureNotify, medians of %zu: %.0f us, bare %.0f us, ratio %.2f\n",
        ours.size(), median(ours), median(theirs), median(ours) / median(theirs));
    std::printf("round trips of a snap within the call, median: %.0f\n", median(roundTrips));
    xcb_disconnect(watcher);
    return 0;
}
