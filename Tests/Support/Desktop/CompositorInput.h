#pragma once

#include <QPoint>

namespace tilewright::testing {

/// Keys, by their numbers in the kernel.
enum class KernelKey : unsigned {
    escape = 1,
    tab = 15,
    enter = 28,
    control = 29,
    shift = 42,
    alt = 56,
    space = 57,
    left = 105,
    right = 106,
    super = 125
};

/// A mouse and a keyboard in a session of a compositor: what they do comes in where a real device's
/// input does. Only one of them at a time.
class CompositorInput {
public:
    CompositorInput() = default;
    CompositorInput(const CompositorInput&) = delete;
    CompositorInput& operator=(const CompositorInput&) = delete;
    virtual ~CompositorInput() = default;

    /// Moves the pointer there in one step; it is there then.
    virtual void move(QPoint to) = 0;
    /// Moves it there in several steps.
    void glide(QPoint to, int steps = 8);
    virtual void press() = 0;
    virtual void release() = 0;
    void click();
    virtual void pressKey(KernelKey key) = 0;
    virtual void releaseKey(KernelKey key) = 0;
    void tap(KernelKey key);

private:
    /// Where the pointer is now.
    [[nodiscard]] virtual QPoint place() const = 0;
};

} // namespace tilewright::testing
