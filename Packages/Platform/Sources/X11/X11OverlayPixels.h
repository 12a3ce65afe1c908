#pragma once

#include "X11Connection.h"

#include <FreeDesktop/SharedMemory.h>

#include <QImage>
#include <QRegion>
#include <memory>

namespace tilewright {

/// A picture that is painted here and kept by the X server, as a pixmap. The server reads what has
/// been painted from memory that it shares with this program; one that cannot share any, on another
/// machine say, is sent it. Main thread only; the connection has to outlive it.
class X11OverlayPixels {
public:
    /// A transparent picture. Its depth is one of `imageFormat`'s.
    X11OverlayPixels(X11Connection& connection, QSize size, std::uint8_t depth);
    ~X11OverlayPixels();
    X11OverlayPixels(const X11OverlayPixels&) = delete;
    X11OverlayPixels& operator=(const X11OverlayPixels&) = delete;

    /// How pixels of this depth lie in memory; invalid where nothing here can paint such.
    [[nodiscard]] static QImage::Format imageFormat(std::uint8_t depth);

    [[nodiscard]] QSize size() const { return size_; }
    /// The pixels to paint; null without the memory for them.
    [[nodiscard]] QImage image() const;
    /// What the server has of them.
    [[nodiscard]] xcb_pixmap_t pixmap() const { return pixmap_; }
    /// Has the server take over a region, in pixels; the first time, everything.
    void send(const QRegion& region);
    /// Whether the server may not have read yet what was sent last: painting now might show half
    /// of it. `then` is called once it has, unless it is replaced by a later one's.
    [[nodiscard]] bool isBeingRead() const { return answer_.isAwaited(); }
    void whenRead(std::function<void()> then) { whenRead_ = std::move(then); }

private:
    /// Has the server share the memory, where it can.
    void share();
    void sendShared(const QRect& rect) const;
    void sendCopy(const QRect& rect) const;

    X11Connection& connection_;
    const QSize size_;
    const std::uint8_t depth_;
    SharedMemory memory_;
    xcb_pixmap_t pixmap_;
    xcb_gcontext_t context_;
    /// What the server calls the memory; none where it does not share it.
    std::uint32_t segment_ = XCB_NONE;
    bool hasSent_ = false;
    X11AwaitedReply answer_;
    std::function<void()> whenRead_;
};

} // namespace tilewright
