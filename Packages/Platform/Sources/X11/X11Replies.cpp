#include "X11Replies.h"

#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <xcb/xcbext.h>

namespace tilewright {

struct X11AwaitedReply::Entry {
    unsigned int sequence;
    X11Replies::Handler handler;
    X11Reply<void> answer;
    bool isAnswered = false;
    bool isWanted = true;
};

X11AwaitedReply& X11AwaitedReply::operator=(X11AwaitedReply&& other) noexcept {
    if (this != &other) {
        reset();
        entry_ = std::move(other.entry_);
    }
    return *this;
}

X11AwaitedReply::~X11AwaitedReply() {
    reset();
}

bool X11AwaitedReply::isAwaited() const {
    return entry_ && entry_->isWanted;
}

bool X11AwaitedReply::isAnswered() const {
    return entry_ && entry_->isAnswered;
}

void X11AwaitedReply::reset() {
    // The queue drops the entry, and the reply, when its turn comes.
    if (entry_)
        entry_->isWanted = false;
    entry_.reset();
}

bool X11Replies::send() {
    // A client may hold the server, which reads nothing of others meanwhile; xcb would wait for as
    // long as that takes.
    pollfd descriptor{xcb_get_file_descriptor(connection_), POLLOUT, 0};
    isAllSent_ = poll(&descriptor, 1, 0) != 0;
    if (isAllSent_)
        xcb_flush(connection_);
    return isAllSent_;
}

std::optional<X11Reply<void>> X11Replies::wait(unsigned int sequence,
                                               std::chrono::milliseconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    while (xcb_poll_for_reply(connection_, sequence, &answer, &error) == 0) {
        if (!waitForSocket(deadline)) {
            xcb_discard_reply(connection_, sequence);
            return std::nullopt;
        }
    }
    std::free(error);
    return X11Reply<void>(answer);
}

bool X11Replies::waitForSocket(std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        const auto wanted = static_cast<short>(isAllSent_ ? POLLIN : POLLIN | POLLOUT);
        pollfd descriptor{xcb_get_file_descriptor(connection_), wanted, 0};
        const int ready = poll(&descriptor, 1, static_cast<int>(left.count()));
        if (!isAllSent_ && (descriptor.revents & POLLOUT) != 0)
            send();
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
    }
}

X11AwaitedReply X11Replies::await(unsigned int sequence, Handler handler) {
    auto entry = std::make_shared<X11AwaitedReply::Entry>();
    entry->sequence = sequence;
    entry->handler = std::move(handler);
    awaited_.push_back(entry);
    return X11AwaitedReply(std::move(entry));
}

void X11Replies::takeArrived() {
    for (const auto& entry : awaited_) {
        if (entry->isAnswered)
            continue;
        void* answer = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(connection_, entry->sequence, &answer, &error) == 0)
            break;
        std::free(error);
        entry->answer.reset(answer);
        entry->isAnswered = true;
    }
}

bool X11Replies::isNext(const xcb_generic_event_t* event) const {
    if (awaited_.empty() || !awaited_.front()->isAnswered)
        return false;
    if (!event)
        return true;
    // An event bears the number of the request that the server had done last.
    const auto lead = static_cast<std::int32_t>(event->full_sequence - awaited_.front()->sequence);
    return lead >= 0;
}

void X11Replies::handOver() {
    const std::shared_ptr<X11AwaitedReply::Entry> entry = std::move(awaited_.front());
    awaited_.pop_front();
    if (std::exchange(entry->isWanted, false))
        entry->handler(std::move(entry->answer));
}

} // namespace tilewright
