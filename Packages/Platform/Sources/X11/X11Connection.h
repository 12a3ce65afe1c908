#pragma once

#include "X11Atoms.h"
#include "X11EventQueue.h"
#include "X11Flood.h"
#include "X11Replies.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

namespace tilewright {

/// What has come of a request that has no reply.
enum class X11Outcome {
    done,
    failed,
    /// The server has not answered in time, and may yet do it.
    unknown,
};

/// What the server said of one of its extensions.
struct X11Extension {
    bool isPresent = false;
    std::uint8_t majorOpcode = 0;
    std::uint8_t firstEvent = 0;
    std::uint32_t majorVersion = 0;
    std::uint32_t minorVersion = 0;

    /// Whether the extension exists in this version or a later one.
    [[nodiscard]] bool isAtLeast(std::uint32_t major, std::uint32_t minor) const {
        return isPresent &&
               (majorVersion > major || (majorVersion == major && minorVersion >= minor));
    }
};

/// Which events a listener hears.
struct X11EventFilter {
    /// Events with this number (of the core protocol, or an extension's first event plus an
    /// offset), whatever window they are about.
    [[nodiscard]] static X11EventFilter type(std::uint8_t number) {
        return {Kind::type, number, 0, XCB_NONE};
    }
    /// Generic events of an extension, given by its major opcode, with this number.
    [[nodiscard]] static X11EventFilter generic(std::uint8_t extension, std::uint16_t number) {
        return {Kind::generic, extension, number, XCB_NONE};
    }
    /// Core events about a window, whatever window they were delivered to.
    [[nodiscard]] static X11EventFilter window(xcb_window_t window) {
        return {Kind::window, 0, 0, window};
    }

    enum class Kind { type, generic, window };
    Kind kind;
    std::uint8_t number;
    std::uint16_t genericNumber;
    xcb_window_t aboutWindow;

    [[nodiscard]] bool matches(const xcb_generic_event_t& event) const;
};

class X11Connection;

/// Keeps an event listener alive; the listener hears nothing more once this is gone. May be
/// destroyed in any handler, the listener's own included, and after the connection.
class X11Listener {
public:
    X11Listener() = default;
    X11Listener(X11Listener&&) noexcept = default;
    X11Listener& operator=(X11Listener&& other) noexcept;
    ~X11Listener();

    /// Whether this stands for a listener.
    [[nodiscard]] bool isActive() const { return entry_ != nullptr; }
    /// Stops listening.
    void reset();

private:
    friend class X11Connection;
    struct Entry;
    explicit X11Listener(std::shared_ptr<Entry> entry)
        : entry_(std::move(entry)) {}
    std::shared_ptr<Entry> entry_;
};

/// This program's own connection to an X server, apart from Qt's.
///
/// Events are handed to listeners from the event loop, never from within a request. Requests fail
/// by answering nothing: no error of the server ends the process. Waiting has a bound, so that a
/// client that holds the server for itself, or a server that has stopped, cannot stop this program.
/// Main thread only; outlives whatever uses it.
class X11Connection final : public QObject {
    Q_OBJECT

public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// How long a reply is waited for at most; much shorter while the server is found stuck.
    static constexpr std::chrono::milliseconds replyBound{500};

    /// Connects to the named display, to the one of the environment when the name is empty; null
    /// when there is no such server.
    [[nodiscard]] static std::unique_ptr<X11Connection> open(const QString& displayName = {});
    ~X11Connection() override;

    [[nodiscard]] xcb_connection_t* xcb() const { return connection_; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] int screenNumber() const { return screenNumber_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] xcb_atom_t atom(X11Atom name) const {
        return atoms_[static_cast<std::size_t>(name)];
    }
    /// Interns an atom whose name is known at run time only; none on failure.
    [[nodiscard]] xcb_atom_t intern(const QByteArray& name);
    /// The selection whose owner composites this connection's screen.
    [[nodiscard]] xcb_atom_t compositorSelection() const { return compositorSelection_; }

    [[nodiscard]] const X11Extension& randr() const { return randr_; }
    [[nodiscard]] const X11Extension& shape() const { return shape_; }
    [[nodiscard]] const X11Extension& shm() const { return shm_; }
    [[nodiscard]] const X11Extension& xfixes() const { return xfixes_; }
    [[nodiscard]] const X11Extension& xinput() const { return xinput_; }
    [[nodiscard]] const X11Extension& xkb() const { return xkb_; }

    /// Whether the server owes an answer that was waited for in vain. What is read meanwhile says
    /// nothing: whoever keeps a state leaves it as it is and reads again upon `answersAgain`.
    [[nodiscard]] bool isStuck() const { return isStuck_; }
    /// Whether the server is still there.
    [[nodiscard]] bool isAlive() const;

    /// Waits for a request's reply, `replyBound` at most. `Cookie` is the request's cookie. Issue
    /// requests that do not depend on each other first and wait for them afterwards: that is one
    /// round trip.
    template<class Reply, class Cookie>
    [[nodiscard]] X11Reply<Reply> reply(Cookie cookie) {
        return as<Reply>(waitForReply(cookie.sequence));
    }
    /// Hands over a request's reply from the event loop, however long the server takes: after the
    /// events that the server sent before it, and before those that it sent after it. Null when the
    /// request failed or the connection is lost. `Cookie` is the request's cookie.
    template<class Reply, class Cookie>
    [[nodiscard]] X11AwaitedReply whenAnswered(Cookie cookie,
                                               std::function<void(X11Reply<Reply>)> handler) {
        return await(cookie.sequence, [handler = std::move(handler)](X11Reply<void> answer) {
            handler(as<Reply>(std::move(answer)));
        });
    }
    /// Waits for the outcome of a checked request without a reply, as long as for a reply or as the
    /// bound allows.
    [[nodiscard]] X11Outcome check(xcb_void_cookie_t cookie,
                                   std::chrono::milliseconds bound = replyBound);
    /// Another number whenever something may have come from the server, and at each turn of the
    /// event loop: what was read last is the newest there is for as long as this stays the same.
    [[nodiscard]] std::uint64_t moment() const { return moment_; }
    /// Sends what is buffered, later where the server reads nothing now. The event loop does so too
    /// before it blocks.
    void flush();

    /// Calls `handler` for each event that the filter lets through, in the order of their arrival,
    /// for as long as the answer is kept. Says nothing to the server: which events it sends is
    /// another matter (`X11EventSelection`).
    [[nodiscard]] X11Listener listen(const X11EventFilter& filter, EventHandler handler);
    /// Hands out the events that have arrived. The event loop does this by itself.
    void dispatchEvents();

    /// How often this connection has sent requests and then waited for their answers. Waiting for
    /// what an earlier wait has fetched does not count. For tests and measurements.
    [[nodiscard]] std::uint64_t roundTrips() const { return roundTrips_; }
    /// How many events were left out for later ones that say the same. For tests.
    [[nodiscard]] std::uint64_t eventsLeftOut() const { return stash_.leftOut(); }
    /// Called each time before this connection waits for the server. For tests and measurements.
    void setWaitObserver(std::function<void()> observer) { waitObserver_ = std::move(observer); }

Q_SIGNALS:
    /// The events that had arrived together have all been handed out: the moment to act once upon
    /// a burst.
    void eventsDispatched();
    /// The server has come to answer again after it had been found stuck. Sent from the event loop.
    void answersAgain();
    /// The server is gone. Sent once; all requests fail from now on.
    void connectionLost();

private:
    X11Connection(xcb_connection_t* connection, int screenNumber);

    void queryServer();
    template<class Reply>
    [[nodiscard]] static X11Reply<Reply> as(X11Reply<void> answer) {
        return X11Reply<Reply>(static_cast<Reply*>(answer.release()));
    }
    [[nodiscard]] X11Reply<void> waitForReply(unsigned int sequence,
                                              std::chrono::milliseconds bound = replyBound);
    [[nodiscard]] std::chrono::milliseconds patience();
    [[nodiscard]] X11AwaitedReply await(unsigned int sequence, X11Replies::Handler handler);
    void takeAnswers();
    [[nodiscard]] bool isAnswerNext() const;
    void noticeStuck();
    template<class Reply, class Cookie>
    [[nodiscard]] X11Reply<Reply> firstReply(Cookie cookie);
    void stashQueuedEvents();
    void scheduleDispatch();
    void dispatch(const xcb_generic_event_t& event);
    void noticeLoss();

    xcb_connection_t* connection_;
    X11Replies replies_;
    int screenNumber_;
    const xcb_screen_t* screen_ = nullptr;
    X11AtomTable atoms_{};
    xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
    X11Extension randr_;
    X11Extension shape_;
    X11Extension shm_;
    X11Extension xfixes_;
    X11Extension xinput_;
    X11Extension xkb_;
    std::unique_ptr<QSocketNotifier> notifier_;
    /// Tells when what could not be sent can be.
    std::unique_ptr<QSocketNotifier> writable_;
    X11EventQueue stash_;
    X11Flood flood_;
    std::vector<std::shared_ptr<X11Listener::Entry>> listeners_;
    std::function<void()> waitObserver_;
    std::uint64_t roundTrips_ = 0;
    std::uint64_t moment_ = 0;
    std::uint64_t leftOutBefore_ = 0;
    int dispatchDepth_ = 0;
    bool isDispatchScheduled_ = false;
    bool isStuck_ = false;
    /// Comes when the server has caught up with what it owes.
    X11AwaitedReply catchingUp_;
    bool isLost_ = false;
};

/// The event's number without the mark of a sent event; 0 for an error.
[[nodiscard]] inline std::uint8_t eventType(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f;
}

/// The event as what its number says it is.
template<class Event>
[[nodiscard]] const Event& eventAs(const xcb_generic_event_t& event) {
    return *static_cast<const Event*>(static_cast<const void*>(&event));
}

} // namespace tilewright
