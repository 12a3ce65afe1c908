#pragma once

#include <chrono>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <xcb/xcb.h>

namespace tilewright {

/// Frees what xcb allocated.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply of the server; null when the request failed, was not answered in time, or the connection
/// is lost.
template<class T>
using X11Reply = std::unique_ptr<T, XcbFree>;

/// Stands for a reply that has been asked for and is not waited for. Once this is gone the reply's
/// handler is not called any more. May be destroyed in any handler, and after the connection.
class X11AwaitedReply {
public:
    X11AwaitedReply() = default;
    X11AwaitedReply(X11AwaitedReply&&) noexcept = default;
    X11AwaitedReply& operator=(X11AwaitedReply&& other) noexcept;
    ~X11AwaitedReply();

    /// Whether the handler has yet to be called.
    [[nodiscard]] bool isAwaited() const;
    /// Whether the server has answered, though the handler may have yet to be called.
    [[nodiscard]] bool isAnswered() const;
    /// Does without the reply.
    void reset();

private:
    friend class X11Replies;
    struct Entry;
    explicit X11AwaitedReply(std::shared_ptr<Entry> entry)
        : entry_(std::move(entry)) {}
    std::shared_ptr<Entry> entry_;
};

/// Takes the replies of an X connection: waits for one with a bound, and keeps those that are not
/// waited for until it is their turn. Taking replies may read events too, which the connection's
/// descriptor then does not tell of. Main thread only.
class X11Replies {
public:
    /// Takes over a reply of any kind.
    using Handler = std::function<void(X11Reply<void>)>;

    /// The connection has to outlive this.
    explicit X11Replies(xcb_connection_t* connection)
        : connection_(connection) {}

    /// Waits for a request's reply, which is null where the request failed; none where the server
    /// has not answered within the bound. What `send` left is sent as soon as that can be.
    [[nodiscard]] std::optional<X11Reply<void>> wait(unsigned int sequence,
                                                     std::chrono::milliseconds bound);

    /// Sends what is buffered. False, and nothing is sent, where the server has so much to read
    /// still that it would have to be waited for.
    bool send();

    /// Has the handler called when the turn of a request's reply comes, for as long as the answer
    /// is kept. To be called in the order of the requests.
    [[nodiscard]] X11AwaitedReply await(unsigned int sequence, Handler handler);
    /// Takes those awaited replies that have arrived.
    void takeArrived();
    /// Whether it is an awaited reply's turn, rather than that of the next event that is waiting
    /// (null where there is none).
    [[nodiscard]] bool isNext(const xcb_generic_event_t* event) const;
    /// Calls the handler of the reply whose turn it is.
    void handOver();

private:
    [[nodiscard]] bool waitForSocket(std::chrono::steady_clock::time_point deadline);

    xcb_connection_t* connection_;
    bool isAllSent_ = true;
    /// In the order of their requests, which is the order of their replies.
    std::deque<std::shared_ptr<X11AwaitedReply::Entry>> awaited_;
};

} // namespace tilewright
