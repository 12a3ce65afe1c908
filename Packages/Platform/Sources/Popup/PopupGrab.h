#pragma once

#include <Platform/MainLoop.h>

#include <QPointer>
#include <QWindow>
#include <chrono>

namespace tilewright {

/// The keyboard and the pointer, held for a popup however late another client lets go of them.
class PopupGrab {
public:
    /// The loop has to outlive the grab.
    explicit PopupGrab(MainLoop& loop)
        : loop_(loop) {}
    PopupGrab(const PopupGrab&) = delete;
    PopupGrab& operator=(const PopupGrab&) = delete;
    ~PopupGrab() { release(); }

    /// Asks for both for a window that has just been shown, and again until both are granted.
    void take(QWindow& window);
    /// Gives back what is held, and asks no more.
    void release();
    /// Whether both are held.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

private:
    void ask();

    MainLoop& loop_;
    QPointer<QWindow> window_;
    bool isHeld_ = false;
    /// How long it waits before it asks once more.
    std::chrono::milliseconds wait_{};
    ScopedTimer timer_;
};

} // namespace tilewright
