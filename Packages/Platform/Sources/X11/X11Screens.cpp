#include "X11Screens.h"

#include "X11Log.h"
#include "X11Properties.h"
#include "X11WindowFacts.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <iterator>
#include <xcb/randr.h>

namespace tilewright {
namespace {

/// A burst is over when nothing has happened for so long, and announced after this much at most.
constexpr std::chrono::milliseconds rest{50};
constexpr std::chrono::milliseconds longestBurst{400};

/// In pixels. Window managers differ; the widest margin seen is half of this.
constexpr double tilingMargin = 50;

void tell(const std::vector<ScreenPtr>& screens, const std::vector<QRect>& visible) {
    qCDebug(x11DisplaysLog, "Displays now: %zu, the primary one first", screens.size());
    for (std::size_t i = 0; i < screens.size(); ++i) {
        const auto& values = static_cast<const X11Screen&>(*screens[i]).values();
        qCDebug(x11DisplaysLog, "Display %ls: %ls, free of panels %ls, known by its %s",
                qUtf16Printable(values.connector), qUtf16Printable(words(values.nativeFrame)),
                qUtf16Printable(words(visible[i])), values.persistentUUID ? "EDID" : "connector");
    }
}

double sharedArea(const AppKitRect& a, const AppKitRect& b) {
    const double width = std::min(a.maxX(), b.maxX()) - std::max(a.minX(), b.minX());
    const double height = std::min(a.maxY(), b.maxY()) - std::max(a.minY(), b.minY());
    return std::max(width, 0.0) * std::max(height, 0.0);
}

} // namespace

X11Screens::X11Screens(X11Connection& connection, X11EventSelection& selection,
                       X11WindowManagerWatch& windowManager, X11ActiveWindow& activeWindow,
                       MainLoop& loop)
    : connection_(connection)
    , selection_(selection)
    , windowManager_(windowManager)
    , activeWindow_(activeWindow)
    , loop_(loop)
    , rootInterest_(selection.select(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE |
                                                            XCB_EVENT_MASK_STRUCTURE_NOTIFY)) {
    watchRandr();
    listeners_.push_back(
        connection_.listen(X11EventFilter::window(connection_.root()),
                           [this](const xcb_generic_event_t& event) { rootEvent(event); }));
    connect(&windowManager_, &X11WindowManagerWatch::changed, this, &X11Screens::changeNoticed);
    connect(&connection_, &X11Connection::eventsDispatched, this, [this] {
        if (std::exchange(areClientsDirty_, false))
            lookAtClients();
    });
    connect(&connection_, &X11Connection::answersAgain, this, [this] {
        lookAtClients();
        refresh();
    });
    lookAtClients();
    refresh();
}

void X11Screens::watchRandr() {
    if (!connection_.randr().isPresent)
        return;
    xcb_randr_select_input(connection_.xcb(), connection_.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY |
                               XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
    for (const int offset : {XCB_RANDR_SCREEN_CHANGE_NOTIFY, XCB_RANDR_NOTIFY}) {
        listeners_.push_back(
            connection_.listen(X11EventFilter::type(static_cast<std::uint8_t>(
                                   connection_.randr().firstEvent + offset)),
                               [this](const xcb_generic_event_t&) { changeNoticed(); }));
    }
}

void X11Screens::rootEvent(const xcb_generic_event_t& event) {
    if (eventType(event) == XCB_CONFIGURE_NOTIFY) {
        changeNoticed();
        return;
    }
    if (eventType(event) != XCB_PROPERTY_NOTIFY)
        return;
    const xcb_atom_t property = eventAs<xcb_property_notify_event_t>(event).atom;
    if (property == connection_.atom(X11Atom::netClientList))
        areClientsDirty_ = true;
    else if (property == connection_.atom(X11Atom::netCurrentDesktop))
        changeNoticed();
    else if (property == connection_.atom(X11Atom::netWorkarea) ||
             property == connection_.atom(X11Atom::gtkWorkareas0) ||
             property == connection_.atom(X11Atom::gtkWorkareas1) ||
             property == connection_.atom(X11Atom::gtkWorkareas2) ||
             property == connection_.atom(X11Atom::gtkWorkareas3))
        workAreasChanged();
}

void X11Screens::workAreasChanged() {
    // A window that was none before may have become a panel: all are looked at as newcomers.
    std::erase_if(clients_, [](const auto& entry) { return !entry.second.isPanel; });
    areClientsDirty_ = true;
    changeNoticed();
}

void X11Screens::lookAtClients() {
    const auto list = takeItems(connection_, requestProperty(connection_, connection_.root(),
                                                             X11Atom::netClientList, 4096));
    if (connection_.isStuck())
        return;
    bool havePanelsChanged = false;
    std::erase_if(clients_, [&](const auto& entry) {
        if (std::find(list.begin(), list.end(), entry.first) != list.end())
            return false;
        havePanelsChanged = havePanelsChanged || entry.second.isPanel;
        return true;
    });
    struct Newcomer {
        xcb_window_t window;
        xcb_get_property_cookie_t type;
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };
    std::vector<Newcomer> newcomers;
    for (const xcb_window_t window : list) {
        if (!clients_.contains(window))
            newcomers.push_back(
                {window, requestProperty(connection_, window, X11Atom::netWmWindowType, 8),
                 requestProperty(connection_, window, X11Atom::netWmStrutPartial, 12),
                 requestProperty(connection_, window, X11Atom::netWmStrut, 4)});
    }
    for (const Newcomer& newcomer : newcomers) {
        const auto types = takeItems(connection_, newcomer.type);
        const bool isDock =
            std::find(types.begin(), types.end(), connection_.atom(X11Atom::netWmWindowTypeDock)) !=
            types.end();
        const bool hasPartial = !takeItems(connection_, newcomer.partial).empty();
        const bool hasWhole = !takeItems(connection_, newcomer.whole).empty();
        if (connection_.isStuck())
            return;
        Client& client = clients_[newcomer.window];
        client.isPanel = isDock || hasPartial || hasWhole;
        if (!client.isPanel)
            continue;
        // Only panels are watched: every other window's properties change all the time.
        havePanelsChanged = true;
        client.interest = selection_.select(newcomer.window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        client.listener = connection_.listen(
            X11EventFilter::window(newcomer.window), [this](const xcb_generic_event_t& event) {
                if (eventType(event) != XCB_PROPERTY_NOTIFY)
                    return;
                const xcb_atom_t atom = eventAs<xcb_property_notify_event_t>(event).atom;
                if (atom == connection_.atom(X11Atom::netWmStrutPartial) ||
                    atom == connection_.atom(X11Atom::netWmStrut))
                    changeNoticed();
            });
    }
    if (havePanelsChanged)
        changeNoticed();
}

void X11Screens::changeNoticed() {
    const auto settle = [this] {
        restTimer_.reset();
        burstTimer_.reset();
        refresh();
    };
    restTimer_ = ScopedTimer(loop_.scheduleOnce(rest, settle));
    if (!burstTimer_.isActive())
        burstTimer_ = ScopedTimer(loop_.scheduleOnce(longestBurst, settle));
}

QSize X11Screens::readScreenSize() {
    const auto geometry = connection_.reply<xcb_get_geometry_reply_t>(
        xcb_get_geometry(connection_.xcb(), connection_.root()));
    return geometry ? QSize(geometry->width, geometry->height) : QSize();
}

std::vector<X11Screens::Monitor> X11Screens::readMonitors() {
    std::vector<Monitor> monitors;
    xcb_connection_t* xcb = connection_.xcb();
    const auto reply = connection_.reply<xcb_randr_get_monitors_reply_t>(
        xcb_randr_get_monitors(xcb, connection_.root(), 1));
    if (!reply)
        return monitors;
    struct Question {
        xcb_get_atom_name_cookie_t monitorName;
        std::optional<xcb_randr_get_output_info_cookie_t> output;
        std::optional<xcb_randr_get_output_property_cookie_t> edid;
    };
    std::vector<Question> questions;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        const xcb_randr_monitor_info_t& info = *it.data;
        monitors.push_back(
            {QRect(info.x, info.y, info.width, info.height), info.primary != 0, {}, {}});
        Question question{xcb_get_atom_name(xcb, info.name), {}, {}};
        // Of several outputs that show the same, the first stands for all.
        if (xcb_randr_monitor_info_outputs_length(&info) > 0) {
            const xcb_randr_output_t output = *xcb_randr_monitor_info_outputs(&info);
            question.output = xcb_randr_get_output_info(xcb, output, XCB_CURRENT_TIME);
            question.edid =
                xcb_randr_get_output_property(xcb, output, connection_.atom(X11Atom::edid),
                                              XCB_GET_PROPERTY_TYPE_ANY, 0, 64, 0, 0);
        }
        questions.push_back(question);
    }
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        Monitor& monitor = monitors[i];
        if (const auto name =
                connection_.reply<xcb_get_atom_name_reply_t>(questions[i].monitorName))
            monitor.connector = QString::fromUtf8(xcb_get_atom_name_name(name.get()),
                                                  xcb_get_atom_name_name_length(name.get()));
        if (!questions[i].output)
            continue;
        if (const auto output =
                connection_.reply<xcb_randr_get_output_info_reply_t>(*questions[i].output)) {
            const auto* name = xcb_randr_get_output_info_name(output.get());
            monitor.connector =
                QString::fromUtf8(static_cast<const char*>(static_cast<const void*>(name)),
                                  xcb_randr_get_output_info_name_length(output.get()));
        }
        const auto edid =
            connection_.reply<xcb_randr_get_output_property_reply_t>(*questions[i].edid);
        if (edid && edid->format == 8) {
            const auto* bytes = xcb_randr_get_output_property_data(edid.get());
            monitor.edid =
                Edid::parse(QByteArray(static_cast<const char*>(static_cast<const void*>(bytes)),
                                       xcb_randr_get_output_property_data_length(edid.get())));
        }
    }
    return monitors;
}

X11WorkAreaHints X11Screens::readWorkAreas(QSize screen) {
    X11WorkAreaHints hints;
    const xcb_window_t root = connection_.root();
    const auto desktopCookie = requestProperty(connection_, root, X11Atom::netCurrentDesktop, 1);
    const auto togetherCookie = requestProperty(connection_, root, X11Atom::netWorkarea, 1024);
    std::vector<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> panelCookies;
    for (const auto& [window, client] : clients_) {
        if (client.isPanel)
            panelCookies.emplace_back(
                requestProperty(connection_, window, X11Atom::netWmStrutPartial, 12),
                requestProperty(connection_, window, X11Atom::netWmStrut, 4));
    }
    const auto desktop = takeItems(connection_, desktopCookie);
    const auto together = takeItems(connection_, togetherCookie);
    for (const auto& [partial, whole] : panelCookies) {
        const auto partialItems = takeItems(connection_, partial);
        const auto wholeItems = takeItems(connection_, whole);
        const auto struts = strutsFrom(partialItems, wholeItems, screen);
        hints.struts.insert(hints.struts.end(), struts.begin(), struts.end());
    }
    // A number that no window manager has would only leave an atom behind on the server.
    constexpr std::size_t mostDesktops = 256;
    const std::size_t current = desktop.empty() ? 0 : desktop[0];
    if (current >= mostDesktops)
        return hints;
    // Window managers leave these behind when they end: they count only while one vouches for them.
    if (windowManager_.supports(X11Atom::netWorkarea))
        hints.together = workAreaAt(together, current);
    if (windowManager_.supports(X11Atom::gtkWorkareas)) {
        const xcb_atom_t atom =
            connection_.intern("_GTK_WORKAREAS_D" + QByteArray::number(qulonglong(current)));
        const auto areas = takeItems(connection_, requestProperty(connection_, root, atom, 256));
        for (std::size_t i = 0; const auto area = workAreaAt(areas, i); ++i)
            hints.perMonitor.push_back(*area);
    }
    return hints;
}

void X11Screens::refresh() {
    const QSize screenSize = readScreenSize();
    std::vector<Monitor> found;
    if (connection_.randr().isAtLeast(1, 5))
        found = readMonitors();
    else
        found.push_back({QRect(QPoint(0, 0), screenSize), true, QStringLiteral("screen"), {}});
    const auto isPrimary = [](const Monitor& monitor) { return monitor.isPrimary; };
    std::vector<Monitor> monitors;
    std::copy_if(found.begin(), found.end(), std::back_inserter(monitors), isPrimary);
    std::remove_copy_if(found.begin(), found.end(), std::back_inserter(monitors), isPrimary);

    std::vector<QRect> areas;
    std::vector<DisplayKeys::Display> displays;
    for (const Monitor& monitor : monitors) {
        areas.push_back(monitor.area);
        displays.push_back({monitor.connector, monitor.edid});
    }
    const X11WorkAreaHints hints = readWorkAreas(screenSize);
    // The server does not answer: the last state stands until it does.
    if (screenSize.isEmpty() || connection_.isStuck())
        return;
    const auto visible = visibleAreas(areas, screenSize, hints);
    const auto keys = keys_.update(displays);
    coordinates_ = areas.empty() ? X11Coordinates() : X11Coordinates(areas.front());

    std::vector<ScreenPtr> screens;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const X11Screen::Values values{coordinates_.toAppKit(areas[i]),
                                       coordinates_.toAppKit(visible[i]),
                                       displayNumber(monitors[i].connector),
                                       keys[i],
                                       displayName(monitors[i].connector, monitors[i].edid),
                                       monitors[i].connector,
                                       areas[i]};
        const auto same = std::find_if(screens_.begin(), screens_.end(), [&](const ScreenPtr& old) {
            return static_cast<const X11Screen&>(*old).values() == values;
        });
        screens.push_back(same == screens_.end() ? std::make_shared<const X11Screen>(values)
                                                 : *same);
    }
    if (screens == screens_)
        return;
    screens_ = std::move(screens);
    tell(screens_, visible);
    Q_EMIT screensChanged();
}

bool X11Screens::isNearAnEdge(QPoint place) const {
    const AppKitPoint point = coordinates_.toAppKit(place);
    return std::none_of(screens_.begin(), screens_.end(), [point](const ScreenPtr& screen) {
        const AppKitRect area = screen->visibleFrame();
        return AppKitRect{area.x + tilingMargin, area.y + tilingMargin,
                          std::max(area.width - 2 * tilingMargin, 0.0),
                          std::max(area.height - 2 * tilingMargin, 0.0)}
            .contains(point);
    });
}

ScreenPtr X11Screens::main() const {
    if (screens_.empty())
        return nullptr;
    if (const auto window = activeWindow_.lastActive()) {
        const X11WindowFacts facts = readWindowFacts(connection_, *window);
        const AppKitPoint centre = coordinates_.toAppKit(facts.outerFrame().center());
        for (const ScreenPtr& screen : screens_) {
            if (facts.exists && screen->frame().contains(centre))
                return screen;
        }
    }
    return screens_.front();
}

QtSpace X11Screens::qtSpace(const Screen& screen) const {
    // Qt need not know every monitor: the screen counts that has the most of it.
    std::optional<QtSpace> best;
    double most = 0;
    const QList<QScreen*> candidates = QGuiApplication::screens();
    for (QScreen* candidate : candidates) {
        // Its corner is where it is on the X screen, whatever the scale.
        const QRect geometry = candidate->geometry();
        const AppKitRect corner = coordinates_.toAppKit(QRect(geometry.topLeft(), QSize(0, 0)));
        const QtSpace space(candidate, {corner.x, corner.y}, {geometry.x(), geometry.y()},
                            candidate->devicePixelRatio());
        const double shared = sharedArea(space.toAppKit(QtRect::of(geometry)), screen.frame());
        if (best && shared <= most)
            continue;
        best = space;
        most = shared;
    }
    return best.value_or(QtSpace());
}

QRect X11Screens::nativeFrame(const Screen& screen) {
    const auto* own = dynamic_cast<const X11Screen*>(&screen);
    return own ? own->values().nativeFrame : QRect();
}

} // namespace tilewright
