#include "X11FrameSetter.h"

#include "X11Properties.h"

#include <algorithm>

namespace tilewright {
namespace {

/// How long the window manager gets for each step once it has come to it.
constexpr std::chrono::milliseconds patience{100};
/// How long it may be busy with other things before.
constexpr std::chrono::milliseconds busyPatience{3000};

/// A request made in the user's name, as pagers make them: window managers honour those.
constexpr std::uint32_t sourceIsUser = 2;

} // namespace

X11FrameSetter::X11FrameSetter(X11Connection& connection, X11EventSelection& selection,
                               X11WindowManagerWatch& windowManager, MainLoop& loop,
                               Surroundings surroundings)
    : connection_(connection)
    , selection_(selection)
    , windowManager_(windowManager)
    , loop_(loop)
    , surroundings_(std::move(surroundings)) {
    connect(&connection_, &X11Connection::eventsDispatched, this, &X11FrameSetter::lookAtChanged);
    connect(&windowManager_, &X11WindowManagerWatch::changed, this,
            &X11FrameSetter::windowManagerChanged);
    connect(&connection_, &X11Connection::answersAgain, this, &X11FrameSetter::answersAgain);
    windowManagerChanged();
}

X11FrameSetter::~X11FrameSetter() = default;

AXError X11FrameSetter::setPosition(xcb_window_t window, AXPoint position) {
    AXError error = AXError::success;
    if (Pending* pending = pendingFor(window, error))
        pending->position = position;
    return error;
}

AXError X11FrameSetter::setSize(xcb_window_t window, AXSize size) {
    AXError error = AXError::success;
    if (Pending* pending = pendingFor(window, error)) {
        pending->size = size;
        // Nothing more is to be known: who writes the frame may have much else to do in this turn.
        if (pending->position)
            commit(window);
    }
    return error;
}

X11FrameSetter::Pending* X11FrameSetter::pendingFor(xcb_window_t window, AXError& error) {
    if (const auto found = pending_.find(window); found != pending_.end())
        return &found->second;
    const auto aliveCookie = windowManager_.requestIsAlive();
    X11WindowFacts facts = readWindowFacts(connection_, window);
    const bool isManagerAlive = windowManager_.takeIsAlive(aliveCookie);
    const bool isUnknown = connection_.isStuck();
    if (isUnknown)
        facts.isUnknown = true;
    else if (!facts.exists)
        error = connection_.isAlive() ? AXError::invalidUIElement : AXError::cannotComplete;
    else if (!isManagerAlive)
        error = AXError::cannotComplete;
    else if (!facts.isManaged)
        error = AXError::attributeUnsupported;
    if (error != AXError::success)
        return nullptr;
    loop_.post([this, window, life = std::weak_ptr<bool>(life_)] {
        if (!life.expired())
            commit(window);
    });
    return &pending_.emplace(window, Pending{facts, surroundings_.tiling(), {}, {}}).first->second;
}

void X11FrameSetter::commit(xcb_window_t window) {
    const auto found = pending_.find(window);
    if (found == pending_.end())
        return;
    if (found->second.facts.isUnknown)
        found->second.facts = readWindowFacts(connection_, window);
    if (connection_.isStuck()) {
        found->second.facts.isUnknown = true;
        return;
    }
    const Pending pending = found->second;
    pending_.erase(found);
    if (!pending.facts.exists || !pending.facts.isManaged)
        return;
    const X11Coordinates coordinates = surroundings_.coordinates();
    const QRect outer = pending.facts.outerFrame();
    const AXPoint position = pending.position.value_or(coordinates.toAX(outer.topLeft()));
    const AXSize size =
        pending.size.value_or(AXSize{double(outer.width()), double(outer.height())});
    start(window, coordinates.toPixels(position, size), pending);
}

void X11FrameSetter::start(xcb_window_t window, const QRect& goal, const Pending& pending) {
    running_.erase(window);
    Running running{X11FramePlacement(goal, habit_, pending.tiling), {}, {}, {}, {}, false};
    running.interest =
        selection_.select(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    running.listener = connection_.listen(
        X11EventFilter::window(window),
        [this, window](const xcb_generic_event_t& event) { windowEvent(window, event); });
    Running& entry = running_.emplace(window, std::move(running)).first->second;
    perform(window, entry.placement.begin(pending.facts));
}

void X11FrameSetter::windowEvent(xcb_window_t window, const xcb_generic_event_t& event) {
    const auto found = running_.find(window);
    if (found == running_.end())
        return;
    switch (eventType(event)) {
    case XCB_DESTROY_NOTIFY:
        end(window);
        break;
    case XCB_CONFIGURE_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        found->second.isDirty = true;
        break;
    case XCB_PROPERTY_NOTIFY: {
        const xcb_atom_t property = eventAs<xcb_property_notify_event_t>(event).atom;
        for (const X11Atom atom :
             {X11Atom::netWmState, X11Atom::netFrameExtents, X11Atom::gtkFrameExtents}) {
            if (property == connection_.atom(atom))
                found->second.isDirty = true;
        }
        break;
    }
    default:
        break;
    }
}

void X11FrameSetter::answersAgain() {
    std::vector<xcb_window_t> waiting;
    waiting.reserve(pending_.size());
    for (const auto& [window, pending] : pending_)
        waiting.push_back(window);
    for (const xcb_window_t window : waiting)
        commit(window);
    std::vector<xcb_window_t> overdue;
    for (auto& [window, running] : running_) {
        running.isDirty = true;
        if (std::exchange(running.isOverdue, false))
            overdue.push_back(window);
    }
    lookAtChanged();
    for (const xcb_window_t window : overdue)
        timePassed(window);
}

void X11FrameSetter::lookAtChanged() {
    std::vector<xcb_window_t> changed;
    for (auto& [window, running] : running_) {
        if (std::exchange(running.isDirty, false))
            changed.push_back(window);
    }
    for (const xcb_window_t window : changed) {
        const X11WindowFacts facts = readWindowFacts(connection_, window);
        const auto found = running_.find(window);
        if (found == running_.end() || facts.isUnknown)
            continue;
        if (facts.exists)
            perform(window, found->second.placement.windowChanged(facts));
        else
            end(window);
    }
}

void X11FrameSetter::timePassed(xcb_window_t window) {
    const X11WindowFacts facts = readWindowFacts(connection_, window);
    const auto found = running_.find(window);
    if (found == running_.end())
        return;
    if (connection_.isStuck()) {
        found->second.isOverdue = true;
        return;
    }
    if (facts.exists && facts.isManaged)
        perform(window, found->second.placement.timePassed(facts));
    else
        end(window);
}

void X11FrameSetter::perform(xcb_window_t window, const X11FramePlacement::Action& action) {
    if (action.addsMaximized)
        changeState(window, true, X11Atom::netWmStateMaximizedVert,
                    X11Atom::netWmStateMaximizedHorz);
    if (action.removesMaximized)
        changeState(window, false, X11Atom::netWmStateMaximizedVert,
                    X11Atom::netWmStateMaximizedHorz);
    if (action.removesFullscreen)
        changeState(window, false, X11Atom::netWmStateFullscreen);
    if (action.removesShaded)
        changeState(window, false, X11Atom::netWmStateShaded);
    if (action.request) {
        constexpr std::uint32_t northWest = XCB_GRAVITY_NORTH_WEST;
        constexpr std::uint32_t hasAll = 0xFU << 8U;
        const QRect& frame = *action.request;
        sendToWindowManager(
            connection_, window, X11Atom::netMoveresizeWindow,
            {northWest | hasAll | (sourceIsUser << 12U), static_cast<std::uint32_t>(frame.x()),
             static_cast<std::uint32_t>(frame.y()), static_cast<std::uint32_t>(frame.width()),
             static_cast<std::uint32_t>(frame.height())});
    }
    if (action.isFinished) {
        end(window);
    } else if (action.startsWaiting) {
        if (const auto found = running_.find(window); found != running_.end())
            wait(window, found->second);
    }
    connection_.flush();
}

void X11FrameSetter::wait(xcb_window_t window, Running& running) {
    const bool hasMarker = windowManager_.supports(X11Atom::netRequestFrameExtents);
    if (hasMarker) {
        if (!running.marker)
            running.marker =
                std::make_unique<X11Marker>(connection_, [this, window] { markerReached(window); });
        running.marker->send();
    }
    running.timer =
        ScopedTimer(loop_.scheduleOnce(hasMarker && answersMarkers_ ? busyPatience : patience,
                                       [this, window] { timePassed(window); }));
}

void X11FrameSetter::markerReached(xcb_window_t window) {
    answersMarkers_ = true;
    if (const auto found = running_.find(window); found != running_.end())
        found->second.timer =
            ScopedTimer(loop_.scheduleOnce(patience, [this, window] { timePassed(window); }));
}

void X11FrameSetter::windowManagerChanged() {
    // Another one has its own habits. What runs keeps, and alone goes on learning, the old ones.
    habit_ = std::make_shared<X11FramePlacement::Habit>();
    answersMarkers_ = false;
    trialMarker_.reset();
    if (!windowManager_.supports(X11Atom::netRequestFrameExtents))
        return;
    // Some say that they answer markers and do not: it is tried before it matters.
    trialMarker_ = std::make_unique<X11Marker>(connection_, [this] { answersMarkers_ = true; });
    trialMarker_->send();
    connection_.flush();
}

void X11FrameSetter::changeState(xcb_window_t window, bool adds, X11Atom first,
                                 std::optional<X11Atom> second) {
    sendToWindowManager(connection_, window, X11Atom::netWmState,
                        {adds ? 1U : 0U, connection_.atom(first),
                         second ? connection_.atom(*second) : static_cast<xcb_atom_t>(XCB_NONE),
                         sourceIsUser, 0});
}

void X11FrameSetter::end(xcb_window_t window) {
    running_.erase(window);
}

} // namespace tilewright
