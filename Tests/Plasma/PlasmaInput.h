#pragma once

#include <QPoint>
#include <QString>
#include <memory>

struct wl_display;
struct org_kde_kwin_fake_input;

namespace tilewright::testing {

/// Keys, by their numbers in the kernel.
enum class KernelKey : unsigned {
    escape = 1,
    enter = 28,
    control = 29,
    shift = 42,
    alt = 56,
    meta = 125
};

/// A mouse and a keyboard in a session of KWin: what they do comes in where a real device's input
/// does. Each step returns once KWin has taken it. Only one of them at a time.
class PlasmaInput {
public:
    /// Joins the compositor at that socket, which has to let this process do so.
    explicit PlasmaInput(const QString& socketPath);
    PlasmaInput(const PlasmaInput&) = delete;
    PlasmaInput& operator=(const PlasmaInput&) = delete;
    ~PlasmaInput();

    /// Moves the pointer there in one step.
    void move(QPoint to);
    /// Moves it there in several steps.
    void glide(QPoint to, int steps = 8);
    void press();
    void release();
    void click();
    void pressKey(KernelKey key);
    void releaseKey(KernelKey key);
    void tap(KernelKey key);

private:
    void button(unsigned state);
    void key(KernelKey key, unsigned state);
    void send();

    wl_display* display_;
    org_kde_kwin_fake_input* input_ = nullptr;
    QPoint at_;
};

} // namespace tilewright::testing
