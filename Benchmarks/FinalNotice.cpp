#include "FinalNotice.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <array>
#include <cstdlib>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

FinalNotice::FinalNotice(const QString& display, std::uint32_t window)
    : connection_(xcb_connect(display.toLatin1().constData(), nullptr))
    , stop_(eventfd(0, EFD_CLOEXEC)) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_);
    thread_ = std::thread([this] { listen(); });
}

FinalNotice::~FinalNotice() {
    static_cast<void>(eventfd_write(stop_, 1));
    thread_.join();
    close(stop_);
    xcb_disconnect(connection_);
}

void FinalNotice::expect(const QRect& client) {
    const std::lock_guard lock(mutex_);
    isResized_ = client.size() != wanted_.size();
    wanted_ = client;
    seen_.reset();
}

bool FinalNotice::hasCome() const {
    const std::lock_guard lock(mutex_);
    return seen_.has_value();
}

bool FinalNotice::wait() const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(5), [this] { return seen_.has_value(); });
}

double FinalNotice::since(Clock::time_point start) const {
    const std::lock_guard lock(mutex_);
    return std::chrono::duration<double, std::milli>(*seen_ - start).count();
}

void FinalNotice::listen() {
    std::array<pollfd, 2> sources{pollfd{xcb_get_file_descriptor(connection_), POLLIN, 0},
                                  pollfd{stop_, POLLIN, 0}};
    while (true) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            look(*event);
            std::free(event);
        }
        if (poll(sources.data(), sources.size(), -1) < 0 || sources[1].revents != 0 ||
            xcb_connection_has_error(connection_) != 0)
            return;
    }
}

void FinalNotice::look(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY)
        return;
    const auto now = Clock::now();
    const auto& notice = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    const QRect told(notice.x, notice.y, notice.width, notice.height);
    // Only the notices that window managers send carry places on the screen; those of the server
    // tell of a new size.
    const bool isSent = (event.response_type & 0x80) != 0;
    {
        const std::lock_guard lock(mutex_);
        if (seen_ || (isSent ? told == wanted_ : isResized_ && told.size() == wanted_.size()))
            seen_ = now;
        if (!seen_)
            return;
    }
    changed_.notify_all();
    if (QCoreApplication* application = QCoreApplication::instance()) {
        if (QAbstractEventDispatcher* dispatcher =
                QAbstractEventDispatcher::instance(application->thread()))
            dispatcher->wakeUp();
    }
}
