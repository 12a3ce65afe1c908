#include "OverlayBuffers.h"

#include "WaylandListener.h"
#include "WaylandProtocols.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tilewright {

namespace {

constexpr int bytesPerPixel = 4;
/// Larger than any view.
constexpr QRect everything(0, 0, 1 << 24, 1 << 24);

/// None for what is too large to be told of.
std::size_t bytesFor(QSize pixels) {
    const qint64 bytes = qint64{pixels.width()} * pixels.height() * bytesPerPixel;
    return bytes > std::numeric_limits<std::int32_t>::max() ? 0 : static_cast<std::size_t>(bytes);
}

} // namespace

OverlayBuffer::OverlayBuffer(const WaylandConnection& connection, QSize pixels,
                             std::function<void()> released)
    : stale(everything)
    , pixels_(pixels)
    , released_(std::move(released))
    , memory_(bytesFor(pixels)) {
    if (!memory_.data())
        return;
    const auto pool = connection.own(wl_shm_create_pool(connection.globals().sharedMemory.get(),
                                                        memory_.file().number(),
                                                        static_cast<std::int32_t>(memory_.size())));
    buffer_ = connection.own(wl_shm_pool_create_buffer(
        pool.get(), 0, pixels.width(), pixels.height(), pixels.width() * bytesPerPixel,
        // In the bytes' order of the machine, as QImage's.
        WL_SHM_FORMAT_ARGB8888));
    static constexpr wl_buffer_listener events{
        .release = wayland::Call<&OverlayBuffer::release>::on,
    };
    wl_buffer_add_listener(buffer_.get(), &events, this);
}

QImage OverlayBuffer::image() const {
    return {memory_.data(), pixels_.width(), pixels_.height(), pixels_.width() * bytesPerPixel,
            QImage::Format_ARGB32_Premultiplied};
}

void OverlayBuffer::release() {
    isBusy_ = false;
    released_();
}

OverlayBuffers::OverlayBuffers(const WaylandConnection& connection, QSize pixels,
                               std::function<void()> released)
    : connection_(connection)
    , pixels_(pixels)
    , released_(std::move(released)) {}

OverlayBuffer* OverlayBuffers::acquire() {
    const auto free = std::find_if(buffers_.begin(), buffers_.end(),
                                   [](const auto& buffer) { return !buffer->isBusy(); });
    if (free != buffers_.end())
        return free->get();
    if (buffers_.size() < most) {
        auto buffer = std::make_unique<OverlayBuffer>(connection_, pixels_, [this] {
            if (std::exchange(isAwaited_, false))
                released_();
        });
        if (buffer->isValid())
            return buffers_.emplace_back(std::move(buffer)).get();
    }
    isAwaited_ = true;
    return nullptr;
}

void OverlayBuffers::noteShown(const OverlayBuffer& shown, const QRegion& changed) {
    for (const auto& buffer : buffers_)
        buffer->stale = buffer.get() == &shown ? QRegion() : buffer->stale + changed;
}

} // namespace tilewright
