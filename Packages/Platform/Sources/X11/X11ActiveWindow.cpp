#include "X11ActiveWindow.h"

#include "X11Properties.h"
#include "X11WindowFacts.h"

#include <QCoreApplication>
#include <algorithm>

namespace tilewright {
namespace {
constexpr std::size_t longestMemory = 32;
} // namespace

X11ActiveWindow::X11ActiveWindow(X11Connection& connection, X11EventSelection& selection)
    : connection_(connection)
    , rootInterest_(selection.select(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE)) {
    rootListener_ = connection_.listen(X11EventFilter::window(connection_.root()),
                                       [this](const xcb_generic_event_t& event) {
                                           if (eventType(event) == XCB_PROPERTY_NOTIFY &&
                                               eventAs<xcb_property_notify_event_t>(event).atom ==
                                                   connection_.atom(X11Atom::netActiveWindow))
                                               activeChanged();
                                       });
    QObject::connect(&connection_, &X11Connection::answersAgain, &context_,
                     [this] { activeChanged(); });
    announced_ = noteActive(requestActive());
}

xcb_get_property_cookie_t X11ActiveWindow::requestActive() const {
    return requestProperty(connection_, connection_.root(), X11Atom::netActiveWindow, 2);
}

xcb_window_t X11ActiveWindow::noteActive(xcb_get_property_cookie_t cookie) {
    // Some window managers append a second value; the first is the window.
    const auto active = takeItems(connection_, cookie);
    if (active.empty() || active[0] == XCB_NONE)
        return XCB_NONE;
    note(active[0]);
    return active[0];
}

void X11ActiveWindow::activeChanged() {
    const xcb_window_t active = noteActive(requestActive());
    // Between two windows there may be none for a moment.
    if (active == XCB_NONE || std::exchange(announced_, active) == active)
        return;
    if (onChange_)
        onChange_();
}

void X11ActiveWindow::note(xcb_window_t window) {
    if (!visits_.empty() && visits_.front().window == window)
        return;
    const X11WindowFacts facts = readWindowFacts(connection_, window);
    if (!facts.isApplicationWindow)
        return;
    const bool isOwn = facts.processID == QCoreApplication::applicationPid();
    if (isOwn && facts.skipsTaskbar)
        return;
    std::erase_if(visits_, [&](const Visit& visit) { return visit.window == window; });
    visits_.push_front({window, facts.processID});
    if (visits_.size() > longestMemory)
        visits_.pop_back();
}

bool X11ActiveWindow::takeExists(xcb_get_property_cookie_t state) const {
    const auto items = takeItems(connection_, state);
    return !items.empty() && items[0] != 0;
}

std::optional<xcb_window_t> X11ActiveWindow::lastActive() {
    // The property may have changed before its event is dispatched: read it again.
    const auto activeCookie = requestActive();
    const auto stateCookie =
        requestProperty(connection_, visits_.empty() ? connection_.root() : visits_.front().window,
                        X11Atom::wmState, 2);
    const xcb_window_t before =
        visits_.empty() ? static_cast<xcb_window_t>(XCB_NONE) : visits_.front().window;
    noteActive(activeCookie);
    const bool isThere = takeExists(stateCookie);
    if (isThere && !visits_.empty() && visits_.front().window == before)
        return before;
    while (!visits_.empty()) {
        const xcb_window_t window = visits_.front().window;
        // A window that the server could not tell of is not gone for that.
        if (connection_.isStuck())
            return window;
        if (takeExists(requestProperty(connection_, window, X11Atom::wmState, 2)))
            return window;
        visits_.pop_front();
    }
    return std::nullopt;
}

std::optional<xcb_window_t> X11ActiveWindow::lastActiveOf(qint64 process) {
    for (const Visit& visit : visits_) {
        if (visit.process == process &&
            takeExists(requestProperty(connection_, visit.window, X11Atom::wmState, 2)))
            return visit.window;
    }
    return std::nullopt;
}

} // namespace tilewright
