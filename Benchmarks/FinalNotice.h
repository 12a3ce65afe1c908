#pragma once

#include <QRect>
#include <QString>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <xcb/xcb.h>

/// Looks out for the notice that a window is where it was asked to be, in a thread and on a
/// connection of its own: what the measured program does meanwhile does not delay it.
class FinalNotice {
public:
    using Clock = std::chrono::steady_clock;

    FinalNotice(const QString& display, std::uint32_t window);
    FinalNotice(const FinalNotice&) = delete;
    FinalNotice& operator=(const FinalNotice&) = delete;
    ~FinalNotice();

    /// The client's area that is to come next, in pixels of the X screen.
    void expect(const QRect& client);
    /// Whether the notice has come.
    [[nodiscard]] bool hasCome() const;
    /// Waits for it; false if it does not come within five seconds.
    [[nodiscard]] bool wait() const;
    /// Milliseconds from `start` to the last notice of any kind so far.
    [[nodiscard]] double since(Clock::time_point start) const;

private:
    void listen();
    void look(const xcb_generic_event_t& event);

    xcb_connection_t* connection_;
    int stop_;
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    QRect wanted_;
    bool isResized_ = true;
    std::optional<Clock::time_point> seen_;
    std::thread thread_;
};
