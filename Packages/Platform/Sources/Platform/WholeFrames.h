#pragma once

#include "Accessibility.h"
#include "Lifetime.h"
#include "MainLoop.h"

#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace tilewright {

/// What was written of a window's frame, in Accessibility points; none where nothing was.
struct WrittenFrame {
    std::optional<AXPoint> position;
    std::optional<AXSize> size;

    friend bool operator==(const WrittenFrame&, const WrittenFrame&) = default;
};

/// Makes whole frames of the single writes of positions and sizes: those made to one window within
/// one turn of the event loop are one frame. It is complete with a size that follows a position,
/// else at the turn's end; what is written after that is another one. Windows do not disturb each
/// other. `Window` is how a backend names a window, an ordered value. Main thread only.
template<class Window>
class WholeFrames {
public:
    /// Asked at the first write of each frame: whether the window's frame can be set at all. An
    /// error is that write's answer, and nothing of it is kept.
    using Begin = std::function<AXError(const Window&)>;
    /// Called once for each complete frame, with the last of what was written. May write again.
    using Finish = std::function<void(const Window&, const WrittenFrame&)>;

    /// The loop has to outlive this.
    WholeFrames(MainLoop& loop, Begin begin, Finish finish)
        : loop_(loop)
        , begin_(std::move(begin))
        , finish_(std::move(finish)) {}
    WholeFrames(const WholeFrames&) = delete;

    /// Notes where a window's corner is to be. `begin` answers, `success` without asking where the
    /// frame has begun before.
    AXError setPosition(const Window& window, AXPoint position) {
        WrittenFrame* frame = nullptr;
        const AXError error = frameOf(window, frame);
        if (frame)
            frame->position = position;
        return error;
    }
    /// Notes how large a window is to be. Answers like `setPosition`.
    AXError setSize(const Window& window, AXSize size) {
        WrittenFrame* frame = nullptr;
        const AXError error = frameOf(window, frame);
        if (frame) {
            frame->size = size;
            // Both are known: finish now, not at the end of the turn.
            if (frame->position)
                finish(window);
        }
        return error;
    }

    /// Whether a frame has begun and is not complete, of any window.
    [[nodiscard]] bool isAnyUnfinished() const { return !frames_.empty(); }

private:
    AXError frameOf(const Window& window, WrittenFrame*& frame) {
        auto found = frames_.find(window);
        if (found == frames_.end()) {
            if (const AXError error = begin_(window); error != AXError::success)
                return error;
            found = frames_.emplace(window, WrittenFrame{}).first;
            loop_.post(life_.guard([this, window] { finish(window); }));
        }
        frame = &found->second;
        return AXError::success;
    }
    void finish(const Window& window) {
        if (const auto frame = frames_.extract(window))
            finish_(frame.key(), frame.mapped());
    }

    MainLoop& loop_;
    const Begin begin_;
    const Finish finish_;
    std::map<Window, WrittenFrame> frames_;
    Lifetime life_;
};

} // namespace tilewright
