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
    /// The left button, as the others below.
    void press() { button(State::down); }
    void release() { button(State::up); }
    void click();
    void pressKey(KernelKey key) { this->key(key, State::down); }
    void releaseKey(KernelKey key) { this->key(key, State::up); }
    void tap(KernelKey key);

protected:
    /// As input devices tell it.
    enum class State : unsigned { up = 0, down = 1 };
    /// The kernel's number of the left button.
    static constexpr int leftButton = 0x110;

private:
    virtual void button(State state) = 0;
    virtual void key(KernelKey key, State state) = 0;
    /// Where the pointer is now.
    [[nodiscard]] virtual QPoint place() const = 0;
};

} // namespace tilewright::testing
