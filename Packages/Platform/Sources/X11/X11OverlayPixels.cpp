#include "X11OverlayPixels.h"

#include <algorithm>
#include <sys/socket.h>
#include <utility>
#include <xcb/shm.h>

namespace tilewright {

namespace {

/// In bytes. The server wants whole words.
std::size_t lineLength(QSize size, QImage::Format format) {
    const auto bits = static_cast<std::size_t>(size.width()) *
                      static_cast<std::size_t>(QImage::toPixelFormat(format).bitsPerPixel());
    return (bits + 31) / 32 * 4;
}

std::size_t bytesFor(QSize size, std::uint8_t depth) {
    return lineLength(size, X11OverlayPixels::imageFormat(depth)) *
           static_cast<std::size_t>(size.height());
}

/// Whether the connection is one over which the server can be handed a file. Over another kind the
/// attempt would end the connection.
bool canHandOverFiles(xcb_connection_t* connection) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    return getsockname(xcb_get_file_descriptor(connection),
                       static_cast<sockaddr*>(static_cast<void*>(&address)), &length) == 0 &&
           address.ss_family == AF_UNIX;
}

} // namespace

X11OverlayPixels::X11OverlayPixels(X11Connection& connection, QSize size, std::uint8_t depth)
    : connection_(connection)
    , size_(size)
    , depth_(depth)
    , memory_(bytesFor(size, depth))
    , pixmap_(xcb_generate_id(connection.xcb()))
    , context_(xcb_generate_id(connection.xcb())) {
    xcb_connection_t* server = connection_.xcb();
    xcb_create_pixmap(server, depth_, pixmap_, connection_.root(),
                      static_cast<std::uint16_t>(size.width()),
                      static_cast<std::uint16_t>(size.height()));
    xcb_create_gc(server, context_, pixmap_, 0, nullptr);
    share();
}

X11OverlayPixels::~X11OverlayPixels() {
    xcb_connection_t* server = connection_.xcb();
    if (segment_ != XCB_NONE)
        xcb_shm_detach(server, segment_);
    xcb_free_gc(server, context_);
    xcb_free_pixmap(server, pixmap_);
}

QImage::Format X11OverlayPixels::imageFormat(std::uint8_t depth) {
    switch (depth) {
    case 32:
        return QImage::Format_ARGB32_Premultiplied;
    case 24:
        return QImage::Format_RGB32;
    case 16:
        return QImage::Format_RGB16;
    default:
        return QImage::Format_Invalid;
    }
}

void X11OverlayPixels::share() {
    if (!memory_.data() || !connection_.shm().isAtLeast(1, 2) ||
        !canHandOverFiles(connection_.xcb()))
        return;
    FileDescriptor file = memory_.file().duplicate();
    if (!file.isOpen())
        return;
    const std::uint32_t segment = xcb_generate_id(connection_.xcb());
    // Not every relay between here and the server hands files on.
    const auto attached = xcb_shm_attach_fd_checked(connection_.xcb(), segment, file.release(), 1);
    if (connection_.check(attached) == X11Outcome::done)
        segment_ = segment;
    else
        xcb_shm_detach(connection_.xcb(), segment);
}

QImage X11OverlayPixels::image() const {
    const QImage::Format format = imageFormat(depth_);
    if (!memory_.data())
        return {};
    return {memory_.data(), size_.width(), size_.height(),
            static_cast<qsizetype>(lineLength(size_, format)), format};
}

void X11OverlayPixels::send(const QRegion& region) {
    if (!memory_.data())
        return;
    const QRect all(QPoint(), size_);
    // What no pixel has been sent of is anything at all.
    const bool isFirst = !std::exchange(hasSent_, true);
    for (const QRect& rect : isFirst ? QRegion(all) : region& all) {
        if (segment_ != XCB_NONE)
            sendShared(rect);
        else
            sendCopy(rect);
    }
    if (segment_ == XCB_NONE)
        return;
    answer_ = connection_.whenAnswered<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus(connection_.xcb()), [this](const auto&) {
            // A copy: the callee may send more, or end this.
            if (const auto then = whenRead_)
                then();
        });
}

void X11OverlayPixels::sendShared(const QRect& rect) const {
    xcb_shm_put_image(
        connection_.xcb(), pixmap_, context_, static_cast<std::uint16_t>(size_.width()),
        static_cast<std::uint16_t>(size_.height()), static_cast<std::uint16_t>(rect.x()),
        static_cast<std::uint16_t>(rect.y()), static_cast<std::uint16_t>(rect.width()),
        static_cast<std::uint16_t>(rect.height()), static_cast<std::int16_t>(rect.x()),
        static_cast<std::int16_t>(rect.y()), depth_, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
}

void X11OverlayPixels::sendCopy(const QRect& rect) const {
    // Leaves room for the request's own words.
    constexpr std::size_t header = 64;
    const std::size_t most =
        std::size_t{xcb_get_maximum_request_length(connection_.xcb())} * 4 - header;
    const std::size_t line = lineLength(rect.size(), imageFormat(depth_));
    const int lines = std::max(1, static_cast<int>(most / line));
    for (int top = rect.top(); top <= rect.bottom(); top += lines) {
        const QRect strip(rect.left(), top, rect.width(), std::min(lines, rect.bottom() + 1 - top));
        const QImage copy = image().copy(strip);
        xcb_put_image(connection_.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, context_,
                      static_cast<std::uint16_t>(strip.width()),
                      static_cast<std::uint16_t>(strip.height()),
                      static_cast<std::int16_t>(strip.x()), static_cast<std::int16_t>(strip.y()), 0,
                      depth_, static_cast<std::uint32_t>(copy.sizeInBytes()), copy.constBits());
    }
}

} // namespace tilewright
