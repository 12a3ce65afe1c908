#include "ScreenWatch.h"

#include <LayerShell/WaylandListener.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <screen-copy-client.h>

namespace tilewright::testing {

ScreenWatch::ScreenWatch(const QString& socketPath, QPoint probe)
    : probe_(probe)
    , wayland_(socketPath) {
    if (!wayland_.screenCopies || !wayland_.output)
        qFatal("The compositor lets nobody look");
    ask();
    while (!hasLooked_)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    lastColor_ = color_;
}

void ScreenWatch::ask() {
    if (frame_)
        zwlr_screencopy_frame_v1_destroy(frame_);
    frame_ = zwlr_screencopy_manager_v1_capture_output_region(
        wayland_.screenCopies, 0, wayland_.output, probe_.x(), probe_.y(), 1, 1);
    static constexpr zwlr_screencopy_frame_v1_listener events{
        .buffer = wayland::Call<&ScreenWatch::offer>::on,
        .flags = wayland::ignore,
        .ready = wayland::Call<&ScreenWatch::take>::on,
        .failed = wayland::ignore,
        .damage = wayland::ignore,
    };
    zwlr_screencopy_frame_v1_add_listener(frame_, &events, this);
    wl_display_flush(wayland_.display);
}

void ScreenWatch::offer(std::uint32_t format, std::uint32_t width, std::uint32_t height,
                        std::uint32_t /*stride*/) {
    if (!picture_.buffer)
        picture_ = wayland_.makePicture(static_cast<int>(width), static_cast<int>(height), format);
    // The first copy is of what is there already, each later one of what has changed.
    isWaiting_ = hasLooked_;
    if (hasLooked_)
        zwlr_screencopy_frame_v1_copy_with_damage(frame_, picture_.buffer);
    else
        zwlr_screencopy_frame_v1_copy(frame_, picture_.buffer);
}

void ScreenWatch::take(std::uint32_t, std::uint32_t, std::uint32_t) {
    color_ = *picture_.pixels;
    hasLooked_ = true;
    isWaiting_ = false;
    ask();
}

void ScreenWatch::prepare() {
    do {
        while (!isWaiting_)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        // Perhaps it tells of something else that has changed meanwhile.
        wl_display_roundtrip(wayland_.display);
        wl_display_flush(wayland_.display);
    } while (!isWaiting_);
    lastColor_ = color_;
}

void ScreenWatch::waitForChange() {
    while (color_ == lastColor_)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    lastColor_ = color_;
}

} // namespace tilewright::testing
