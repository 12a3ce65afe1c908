#include "X11FrameSetter.h"

#include "X11Log.h"
#include "X11Properties.h"

#include <algorithm>
#include <array>

namespace tilewright {
namespace {

/// How long the window manager gets for each step once it has come to it.
constexpr std::chrono::milliseconds patience{100};
/// How long it may be busy with other things before.
constexpr std::chrono::milliseconds busyPatience{3000};

/// How long a client may take to draw its shadow again after it was maximised.
constexpr std::chrono::milliseconds shadowPatience{1000};

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
    , surroundings_(std::move(surroundings))
    , frames_(
          loop, [this](xcb_window_t window) { return begin(window); },
          [this](xcb_window_t window, const WrittenFrame& frame) { finish(window, frame); }) {
    connect(&connection_, &X11Connection::eventsDispatched, this, &X11FrameSetter::lookAtChanged);
    connect(&windowManager_, &X11WindowManagerWatch::changed, this,
            &X11FrameSetter::windowManagerChanged);
    connect(&connection_, &X11Connection::answersAgain, this, &X11FrameSetter::answersAgain);
    windowManagerChanged();
}

X11FrameSetter::~X11FrameSetter() = default;

void X11FrameSetter::lookAhead() {
    lookedAhead();
    if (expected_)
        ahead_.emplace(look(*std::exchange(expected_, std::nullopt)));
}

void X11FrameSetter::lookedAhead() {
    if (ahead_)
        xcb_discard_reply(connection_.xcb(), ahead_->isManagerAlive.sequence);
    ahead_.reset();
}

X11FrameSetter::Look X11FrameSetter::look(xcb_window_t window) {
    if (ahead_ && ahead_->window.window() == window) {
        Look ahead = std::move(*ahead_);
        ahead_.reset();
        return ahead;
    }
    return {windowManager_.requestIsAlive(), X11WindowLook(connection_, window)};
}

AXError X11FrameSetter::begin(xcb_window_t window) {
    Look asked = look(window);
    X11WindowFacts facts = asked.window.take();
    const bool isManagerAlive = windowManager_.takeIsAlive(asked.isManagerAlive);
    AXError error = AXError::success;
    if (connection_.isStuck())
        facts.isUnknown = true;
    else if (!facts.exists)
        error = connection_.isAlive() ? AXError::invalidUIElement : AXError::cannotComplete;
    else if (!isManagerAlive)
        error = AXError::cannotComplete;
    else if (!facts.isManaged)
        error = AXError::attributeUnsupported;
    if (error == AXError::success) {
        Begun& begun = begun_[window];
        begun.facts = facts;
        begun.tiling = surroundings_.tiling();
    } else {
        qCDebug(x11FramesLog, "Window %ls cannot be moved: %s", qUtf16Printable(words(window)),
                !facts.exists     ? "it is gone"
                : !isManagerAlive ? "no window manager runs"
                                  : "the window manager does not manage it");
    }
    return error;
}

void X11FrameSetter::finish(xcb_window_t window, const WrittenFrame& frame) {
    const auto found = begun_.find(window);
    if (found == begun_.end())
        return;
    if (found->second.facts.isUnknown)
        found->second.facts = readWindowFacts(connection_, window);
    if (connection_.isStuck()) {
        found->second.facts.isUnknown = true;
        WrittenFrame& held = found->second.held.emplace(found->second.held.value_or(frame));
        held.position = frame.position ? frame.position : held.position;
        held.size = frame.size ? frame.size : held.size;
        return;
    }
    const Begun begun = found->second;
    begun_.erase(found);
    if (!begun.facts.exists || !begun.facts.isManaged)
        return;
    const X11Coordinates coordinates = surroundings_.coordinates();
    const QRect outer = begun.facts.outerFrame();
    const AXPoint position = frame.position.value_or(coordinates.toAX(outer.topLeft()));
    const AXSize size = frame.size.value_or(AXSize{double(outer.width()), double(outer.height())});
    start(window, coordinates.toPixels(position, size), begun);
}

void X11FrameSetter::start(xcb_window_t window, const QRect& goal, const Begun& begun) {
    if (running_.erase(window) != 0)
        qCDebug(x11FramesLog, "Window %ls: a newer frame takes the place of the one before",
                qUtf16Printable(words(window)));
    const X11WindowFacts& facts = begun.facts;
    qCDebug(x11FramesLog,
            "Window %ls is to fill %ls and fills %ls%s%s%s. Decorations: left %d, right %d, top "
            "%d, bottom %d. Shadow: left %d, right %d, top %d, bottom %d. Its client takes %dx%d "
            "to %dx%d in steps of %dx%d",
            qUtf16Printable(words(window)), qUtf16Printable(words(goal)),
            qUtf16Printable(words(facts.outerFrame())), facts.isMaximized ? ", maximised" : "",
            facts.isFullscreen ? ", fullscreen" : "", facts.isShaded ? ", shaded" : "",
            facts.decorations.left, facts.decorations.right, facts.decorations.top,
            facts.decorations.bottom, facts.shadow.left, facts.shadow.right, facts.shadow.top,
            facts.shadow.bottom, facts.limits.minimum.width(), facts.limits.minimum.height(),
            facts.limits.maximum.width(), facts.limits.maximum.height(),
            facts.limits.increment.width(), facts.limits.increment.height());
    Running running{X11FramePlacement(goal, manners_, begun.tiling), {}, {}, {}, {}, false};
    running.interest =
        selection_.select(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    running.listener = connection_.listen(
        X11EventFilter::window(window),
        [this, window](const xcb_generic_event_t& event) { windowEvent(window, event); });
    Running& entry = running_.emplace(window, std::move(running)).first->second;
    perform(window, entry.placement.begin(facts));
}

void X11FrameSetter::windowEvent(xcb_window_t window, const xcb_generic_event_t& event) {
    const auto found = running_.find(window);
    if (found == running_.end())
        return;
    switch (eventType(event)) {
    case XCB_DESTROY_NOTIFY:
        qCDebug(x11FramesLog, "Window %ls has gone meanwhile", qUtf16Printable(words(window)));
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
    std::vector<std::pair<xcb_window_t, WrittenFrame>> held;
    for (const auto& [window, begun] : begun_) {
        if (begun.held)
            held.emplace_back(window, *begun.held);
    }
    for (const auto& [window, frame] : held)
        finish(window, frame);
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
    if (!facts.exists || !facts.isManaged) {
        end(window);
        return;
    }
    const X11FramePlacement::Action action = found->second.placement.timePassed(facts);
    if (action.isFinished)
        tellOutcome(window, found->second.placement, facts);
    perform(window, action);
}

void X11FrameSetter::perform(xcb_window_t window, const X11FramePlacement::Action& action) {
    if (action.addsMaximized || action.removesMaximized || action.removesFullscreen ||
        action.removesShaded)
        qCDebug(x11FramesLog, "Window %ls: asked the window manager to%s%s%s%s",
                qUtf16Printable(words(window)),
                action.addsMaximized ? " maximise it for a moment," : "",
                action.removesMaximized ? " end maximised states" : "",
                action.removesFullscreen ? " end fullscreen" : "",
                action.removesShaded ? " unroll it" : "");
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
    if (action.request)
        request(window, *action.request, action.way);
    if (action.isFinished) {
        end(window);
    } else if (const auto found = running_.find(window); found != running_.end()) {
        if (action.startsWaiting)
            wait(window, found->second);
        else if (action.startsFollowing)
            found->second.timer = ScopedTimer(
                loop_.scheduleOnce(shadowPatience, [this, window] { timePassed(window); }));
    }
    connection_.flush();
}

void X11FrameSetter::request(xcb_window_t window, const QRect& frame, X11FramePlacement::Way way) {
    qCDebug(x11FramesLog,
            "Window %ls: asked the window manager%s for the %s %+d%+d and a client of %dx%d",
            qUtf16Printable(words(window)),
            way == X11FramePlacement::Way::hint ? "" : ", as clients ask,",
            way == X11FramePlacement::Way::hint ? "corner" : "place", frame.x(), frame.y(),
            frame.width(), frame.height());
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(frame.x()), static_cast<std::uint32_t>(frame.y()),
        static_cast<std::uint32_t>(frame.width()), static_cast<std::uint32_t>(frame.height())};
    if (way == X11FramePlacement::Way::configure) {
        xcb_configure_window(connection_.xcb(), window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
        return;
    }
    constexpr std::uint32_t northWest = XCB_GRAVITY_NORTH_WEST;
    constexpr std::uint32_t hasAll = 0xFU << 8U;
    sendToWindowManager(
        connection_, window, X11Atom::netMoveresizeWindow,
        {northWest | hasAll | (sourceIsUser << 12U), values[0], values[1], values[2], values[3]});
}

void X11FrameSetter::wait(xcb_window_t window, Running& running) {
    const bool hasFence = windowManager_.supports(X11Atom::netRequestFrameExtents);
    if (hasFence) {
        if (!running.fence)
            running.fence =
                std::make_unique<X11Fence>(connection_, [this, window] { fenceReached(window); });
        running.fence->send();
    }
    running.timer =
        ScopedTimer(loop_.scheduleOnce(hasFence && answersFences_ ? busyPatience : patience,
                                       [this, window] { timePassed(window); }));
}

void X11FrameSetter::fenceReached(xcb_window_t window) {
    answersFences_ = true;
    if (const auto found = running_.find(window); found != running_.end())
        found->second.timer =
            ScopedTimer(loop_.scheduleOnce(patience, [this, window] { timePassed(window); }));
}

void X11FrameSetter::windowManagerChanged() {
    qCDebug(x11FramesLog, "%s",
            !windowManager_.isRunning() ? "No window manager runs"
            : windowManager_.supports(X11Atom::netMoveresizeWindow)
                ? "A window manager runs; it announces that it moves windows when asked"
                : "A window manager runs; windows are moved as clients ask for it");
    // Another one has manners of its own. What runs keeps the old ones, and alone goes on learning
    // them.
    manners_ = std::make_shared<X11FramePlacement::Manners>();
    manners_->announcesHint = windowManager_.supports(X11Atom::netMoveresizeWindow);
    if (!manners_->announcesHint)
        manners_->way = X11FramePlacement::Way::configure;
    answersFences_ = false;
    trialFence_.reset();
    if (!windowManager_.supports(X11Atom::netRequestFrameExtents))
        return;
    // Some say that they answer fences and do not: it is tried before it matters.
    trialFence_ = std::make_unique<X11Fence>(connection_, [this] { answersFences_ = true; });
    trialFence_->send();
    connection_.flush();
}

void X11FrameSetter::changeState(xcb_window_t window, bool adds, X11Atom first,
                                 std::optional<X11Atom> second) {
    sendToWindowManager(connection_, window, X11Atom::netWmState,
                        {adds ? 1U : 0U, connection_.atom(first),
                         second ? connection_.atom(*second) : static_cast<xcb_atom_t>(XCB_NONE),
                         sourceIsUser, 0});
}

void X11FrameSetter::tellOutcome(xcb_window_t window, const X11FramePlacement& placement,
                                 const X11WindowFacts& facts) const {
    const QRect outer = facts.outerFrame();
    const char* what = "the window manager or the window refused the rest";
    if (outer == placement.goal())
        what = "as asked";
    else if (placement.isReached(facts))
        what = "as near as the window's own limits allow";
    qCDebug(x11FramesLog, "Window %ls fills %ls in the end, asked for %ls: %s",
            qUtf16Printable(words(window)), qUtf16Printable(words(outer)),
            qUtf16Printable(words(placement.goal())), what);
}

void X11FrameSetter::end(xcb_window_t window) {
    running_.erase(window);
}

} // namespace tilewright
