#pragma once

#include "WaylandConnection.h"

#include <FreeDesktop/SharedMemory.h>

#include <QImage>
#include <QRegion>
#include <QSize>
#include <functional>
#include <memory>
#include <vector>

namespace tilewright {

/// A picture that a compositor can be given to show.
class OverlayBuffer {
public:
    /// `released` is called when the compositor has come to need the picture no longer.
    OverlayBuffer(const WaylandConnection& connection, QSize pixels,
                  std::function<void()> released);

    /// Whether there was memory for it.
    [[nodiscard]] bool isValid() const { return buffer_ != nullptr; }
    /// Whether the compositor may be reading it. Painting into it then would show half a picture.
    [[nodiscard]] bool isBusy() const { return isBusy_; }
    /// To be called when it is given to the compositor.
    void setBusy() { isBusy_ = true; }
    [[nodiscard]] wl_buffer& object() const { return *buffer_; }
    /// The pixels themselves, transparent at first. Valid for as long as the buffer.
    [[nodiscard]] QImage image() const;

    /// What differs from what was shown last, in the view's coordinates.
    QRegion stale;

private:
    void release();

    const QSize pixels_;
    std::function<void()> released_;
    SharedMemory memory_;
    WaylandObject<wl_buffer> buffer_;
    bool isBusy_ = false;
};

/// The pictures of one size between which an overlay changes. One is enough for compositors that
/// copy what they are given; more are made as they turn out to be needed.
class OverlayBuffers {
public:
    /// `released` is called when one becomes free after none was.
    OverlayBuffers(const WaylandConnection& connection, QSize pixels,
                   std::function<void()> released);

    [[nodiscard]] QSize pixels() const { return pixels_; }
    /// One that the compositor does not need now; null while it needs all that there may be.
    [[nodiscard]] OverlayBuffer* acquire();
    /// Notes that a part of what is shown was painted anew in one of them.
    void noteShown(const OverlayBuffer& shown, const QRegion& changed);

    /// How many there are. For tests and measurements.
    [[nodiscard]] std::size_t count() const { return buffers_.size(); }

private:
    static constexpr std::size_t most = 3;

    const WaylandConnection& connection_;
    const QSize pixels_;
    std::function<void()> released_;
    std::vector<std::unique_ptr<OverlayBuffer>> buffers_;
    bool isAwaited_ = false;
};

} // namespace tilewright
