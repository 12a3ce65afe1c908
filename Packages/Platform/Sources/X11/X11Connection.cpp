#include "X11Connection.h"

#include "XcbXkb.h"

#include <QAbstractEventDispatcher>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

namespace tilewright {
namespace {

/// How long a reply is waited for while the server owes an earlier one.
constexpr std::chrono::milliseconds stuckBound{5};

constexpr std::array<const char*, static_cast<std::size_t>(X11Atom::count)> atomNames{
#define TILEWRIGHT_X11_ATOM_TEXT(name, text) text,
    TILEWRIGHT_X11_ATOMS(TILEWRIGHT_X11_ATOM_TEXT)
#undef TILEWRIGHT_X11_ATOM_TEXT
};

/// The window that a core event is about; none for events about something else.
xcb_window_t windowOf(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_PROPERTY_NOTIFY:
        return eventAs<xcb_property_notify_event_t>(event).window;
    case XCB_CONFIGURE_NOTIFY:
        return eventAs<xcb_configure_notify_event_t>(event).window;
    case XCB_DESTROY_NOTIFY:
        return eventAs<xcb_destroy_notify_event_t>(event).window;
    case XCB_CREATE_NOTIFY:
        return eventAs<xcb_create_notify_event_t>(event).window;
    case XCB_MAP_NOTIFY:
        return eventAs<xcb_map_notify_event_t>(event).window;
    case XCB_UNMAP_NOTIFY:
        return eventAs<xcb_unmap_notify_event_t>(event).window;
    case XCB_REPARENT_NOTIFY:
        return eventAs<xcb_reparent_notify_event_t>(event).window;
    case XCB_GRAVITY_NOTIFY:
        return eventAs<xcb_gravity_notify_event_t>(event).window;
    case XCB_CLIENT_MESSAGE:
        return eventAs<xcb_client_message_event_t>(event).window;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return eventAs<xcb_focus_in_event_t>(event).event;
    default:
        return XCB_NONE;
    }
}

X11Extension presence(xcb_connection_t* connection, xcb_extension_t& id) {
    X11Extension extension;
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(connection, &id);
    if (data && data->present) {
        extension.isPresent = true;
        extension.majorOpcode = data->major_opcode;
        extension.firstEvent = data->first_event;
    }
    return extension;
}

const xcb_screen_t* screenAt(xcb_connection_t* connection, int number) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; xcb_screen_next(&screens), --number) {
        if (number == 0)
            return screens.data;
    }
    return nullptr;
}

template<class Reply>
void setVersion(X11Extension& extension, const X11Reply<Reply>& reply) {
    if (!reply) {
        extension.isPresent = false;
        return;
    }
    extension.majorVersion = reply->major_version;
    extension.minorVersion = reply->minor_version;
}

} // namespace

struct X11Listener::Entry {
    X11EventFilter filter;
    X11Connection::EventHandler handler;
    bool isActive = true;
};

X11Listener& X11Listener::operator=(X11Listener&& other) noexcept {
    if (this != &other) {
        reset();
        entry_ = std::move(other.entry_);
    }
    return *this;
}

X11Listener::~X11Listener() {
    reset();
}

void X11Listener::reset() {
    // The connection drops the entry when it next goes through its listeners. The handler stays:
    // it may be running right now.
    if (entry_)
        entry_->isActive = false;
    entry_.reset();
}

bool X11EventFilter::matches(const xcb_generic_event_t& event) const {
    switch (kind) {
    case Kind::type:
        return eventType(event) == number;
    case Kind::generic: {
        if (eventType(event) != XCB_GE_GENERIC)
            return false;
        const auto& generic = eventAs<xcb_ge_generic_event_t>(event);
        return generic.extension == number && generic.event_type == genericNumber;
    }
    case Kind::window:
        return windowOf(event) == aboutWindow;
    }
    return false;
}

std::unique_ptr<X11Connection> X11Connection::open(const QString& displayName) {
    int screenNumber = 0;
    const QByteArray name = displayName.toLocal8Bit();
    xcb_connection_t* connection =
        xcb_connect(name.isEmpty() ? nullptr : name.constData(), &screenNumber);
    if (xcb_connection_has_error(connection) != 0 || !screenAt(connection, screenNumber)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screenNumber));
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection)
    , replies_(connection)
    , screenNumber_(screenNumber)
    , screen_(screenAt(connection, screenNumber))
    , stash_(xcb_get_setup(connection)->resource_id_base,
             xcb_get_setup(connection)->resource_id_mask) {
    queryServer();
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                  QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &X11Connection::dispatchEvents);
    writable_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                  QSocketNotifier::Write);
    writable_->setEnabled(false);
    connect(writable_.get(), &QSocketNotifier::activated, this, &X11Connection::flush);
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance()) {
        // Not dispatched on the spot: a loop about to block has already looked at its timers.
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            stashQueuedEvents();
            flush();
            if (stash_.isEmpty())
                flood_.noteCalm();
        });
    }
}

X11Connection::~X11Connection() {
    notifier_.reset();
    writable_.reset();
    xcb_disconnect(connection_);
}

template<class Reply, class Cookie>
X11Reply<Reply> X11Connection::firstReply(Cookie cookie) {
    // Connecting has waited for the server without a bound; what these answers say is taken for
    // good, so that none of them may be missed.
    xcb_generic_error_t* error = nullptr;
    void* answer = xcb_wait_for_reply(connection_, cookie.sequence, &error);
    std::free(error);
    return X11Reply<Reply>(static_cast<Reply*>(answer));
}

void X11Connection::queryServer() {
    for (xcb_extension_t* id :
         {&xcb_randr_id, &xcb_shape_id, &xcb_shm_id, &xcb_xfixes_id, &xcb_input_id, &xcb_xkb_id})
        xcb_prefetch_extension_data(connection_, id);
    const QByteArray compositorName = "_NET_WM_CM_S" + QByteArray::number(screenNumber_);
    const auto compositorCookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(compositorName.size()),
                        compositorName.constData());
    std::array<xcb_intern_atom_cookie_t, atomNames.size()> atomCookies{};
    for (std::size_t i = 0; i < atomNames.size(); ++i) {
        const auto length = static_cast<std::uint16_t>(std::strlen(atomNames[i]));
        atomCookies[i] = xcb_intern_atom(connection_, 0, length, atomNames[i]);
    }
    for (std::size_t i = 0; i < atomNames.size(); ++i) {
        if (const auto answer = firstReply<xcb_intern_atom_reply_t>(atomCookies[i]))
            atoms_[i] = answer->atom;
    }
    if (const auto answer = firstReply<xcb_intern_atom_reply_t>(compositorCookie))
        compositorSelection_ = answer->atom;

    randr_ = presence(connection_, xcb_randr_id);
    shape_ = presence(connection_, xcb_shape_id);
    shm_ = presence(connection_, xcb_shm_id);
    xfixes_ = presence(connection_, xcb_xfixes_id);
    if (xfixes_.isPresent)
        stash_.setSelectionNotice(
            static_cast<std::uint8_t>(xfixes_.firstEvent + XCB_XFIXES_SELECTION_NOTIFY));
    xinput_ = presence(connection_, xcb_input_id);
    xkb_ = presence(connection_, xcb_xkb_id);
    stash_.setInputNotices(xinput_.majorOpcode, xkb_.firstEvent);
    // An absent extension's request would break the connection.
    const auto randr = randr_.isPresent ? xcb_randr_query_version(connection_, 1, 5)
                                        : xcb_randr_query_version_cookie_t{};
    const auto shape = shape_.isPresent ? xcb_shape_query_version(connection_)
                                        : xcb_shape_query_version_cookie_t{};
    const auto shm =
        shm_.isPresent ? xcb_shm_query_version(connection_) : xcb_shm_query_version_cookie_t{};
    const auto xfixes = xfixes_.isPresent ? xcb_xfixes_query_version(connection_, 5, 0)
                                          : xcb_xfixes_query_version_cookie_t{};
    const auto xinput = xinput_.isPresent ? xcb_input_xi_query_version(connection_, 2, 2)
                                          : xcb_input_xi_query_version_cookie_t{};
    const auto xkb = xkb_.isPresent ? xcb_xkb_use_extension(connection_, 1, 0)
                                    : xcb_xkb_use_extension_cookie_t{};
    if (randr_.isPresent)
        setVersion(randr_, firstReply<xcb_randr_query_version_reply_t>(randr));
    if (shape_.isPresent)
        setVersion(shape_, firstReply<xcb_shape_query_version_reply_t>(shape));
    if (shm_.isPresent)
        setVersion(shm_, firstReply<xcb_shm_query_version_reply_t>(shm));
    if (xfixes_.isPresent)
        setVersion(xfixes_, firstReply<xcb_xfixes_query_version_reply_t>(xfixes));
    if (xinput_.isPresent)
        setVersion(xinput_, firstReply<xcb_input_xi_query_version_reply_t>(xinput));
    if (xkb_.isPresent) {
        const auto answer = firstReply<xcb_xkb_use_extension_reply_t>(xkb);
        xkb_.isPresent = answer && answer->supported;
        xkb_.majorVersion = answer ? answer->serverMajor : 0;
        xkb_.minorVersion = answer ? answer->serverMinor : 0;
    }
}

xcb_atom_t X11Connection::intern(const QByteArray& name) {
    const auto answer = reply<xcb_intern_atom_reply_t>(
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.constData()));
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool X11Connection::isAlive() const {
    return !isLost_ && xcb_connection_has_error(connection_) == 0;
}

X11Outcome X11Connection::check(xcb_void_cookie_t cookie, std::chrono::milliseconds bound) {
    // Without a reply of its own, only a later request's reply tells that the request is done.
    const bool isDone = waitForReply(xcb_get_input_focus(connection_).sequence, bound) != nullptr;
    void* nothing = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (!isDone || xcb_poll_for_reply(connection_, cookie.sequence, &nothing, &error) == 0) {
        xcb_discard_reply(connection_, cookie.sequence);
        return isAlive() ? X11Outcome::unknown : X11Outcome::failed;
    }
    std::free(nothing);
    const bool succeeded = error == nullptr;
    std::free(error);
    return succeeded ? X11Outcome::done : X11Outcome::failed;
}

void X11Connection::flush() {
    writable_->setEnabled(!replies_.send());
}

X11Reply<void> X11Connection::waitForReply(unsigned int sequence, std::chrono::milliseconds bound) {
    if (waitObserver_)
        waitObserver_();
    // Requests that were made together leave together, with the first that is waited for.
    const std::uint64_t writtenBefore = xcb_total_written(connection_);
    flush();
    if (xcb_total_written(connection_) != writtenBefore)
        ++roundTrips_;
    std::optional<X11Reply<void>> answer = replies_.wait(sequence, std::min(patience(), bound));
    if (!answer)
        noticeStuck();
    // Reading the reply may have read events too; the descriptor does not tell of those.
    stashQueuedEvents();
    return answer ? std::move(*answer) : nullptr;
}

std::chrono::milliseconds X11Connection::patience() {
    if (!isStuck_)
        return replyBound;
    // It may have caught up without the event loop having come round to saying so.
    takeAnswers();
    return catchingUp_.isAnswered() ? replyBound : stuckBound;
}

void X11Connection::noticeStuck() {
    if (std::exchange(isStuck_, true))
        return;
    catchingUp_ = whenAnswered<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection_),
                                                            [this](const auto& answer) {
                                                                isStuck_ = false;
                                                                if (answer)
                                                                    Q_EMIT answersAgain();
                                                            });
}

X11Listener X11Connection::listen(const X11EventFilter& filter, EventHandler handler) {
    auto entry = std::make_shared<X11Listener::Entry>();
    entry->filter = filter;
    entry->handler = std::move(handler);
    listeners_.push_back(entry);
    return X11Listener(std::move(entry));
}

X11AwaitedReply X11Connection::await(unsigned int sequence, X11Replies::Handler handler) {
    X11AwaitedReply reply = replies_.await(sequence, std::move(handler));
    flush();
    return reply;
}

void X11Connection::takeAnswers() {
    ++moment_;
    replies_.takeArrived();
    // Looking for a reply may read events too; the descriptor does not tell of those.
    while (xcb_generic_event_t* event = xcb_poll_for_queued_event(connection_))
        stash_.push(X11EventQueue::Event(event));
}

bool X11Connection::isAnswerNext() const {
    return replies_.isNext(stash_.front());
}

void X11Connection::stashQueuedEvents() {
    takeAnswers();
    if (!stash_.isEmpty() || isAnswerNext())
        scheduleDispatch();
    noticeLoss();
}

void X11Connection::scheduleDispatch() {
    if (isDispatchScheduled_)
        return;
    isDispatchScheduled_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isDispatchScheduled_ = false;
            dispatchEvents();
        },
        Qt::QueuedConnection);
}

void X11Connection::dispatchEvents() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_))
        stash_.push(X11EventQueue::Event(event));
    takeAnswers();
    std::uint64_t dispatched = 0;
    for (;;) {
        if (isAnswerNext()) {
            replies_.handOver();
        } else if (!stash_.isEmpty()) {
            const X11EventQueue::Event event = stash_.take();
            dispatch(*event);
            ++dispatched;
        } else {
            break;
        }
    }
    if (dispatched > 0)
        Q_EMIT eventsDispatched();
    flood_.note(stash_.leftOut() - std::exchange(leftOutBefore_, stash_.leftOut()));
    flood_.noteTogether(dispatched);
    noticeLoss();
}

void X11Connection::dispatch(const xcb_generic_event_t& event) {
    // Errors of unchecked requests arrive here as well: a window that has vanished costs nothing.
    if (eventType(event) == 0)
        return;
    ++dispatchDepth_;
    // By index and with a shared entry: handlers add and remove listeners.
    const std::size_t count = listeners_.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::shared_ptr<X11Listener::Entry> entry = listeners_[i];
        if (entry->isActive && entry->filter.matches(event))
            entry->handler(event);
    }
    if (--dispatchDepth_ == 0)
        std::erase_if(listeners_, [](const auto& entry) { return !entry->isActive; });
}

void X11Connection::noticeLoss() {
    if (isLost_ || xcb_connection_has_error(connection_) == 0)
        return;
    isLost_ = true;
    notifier_->setEnabled(false);
    writable_->setEnabled(false);
    // Not from within a request: whoever made it deals with its failure first.
    QMetaObject::invokeMethod(this, &X11Connection::connectionLost, Qt::QueuedConnection);
}

} // namespace tilewright
