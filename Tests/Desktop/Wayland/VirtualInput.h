#pragma once

#include <CompositorInput.h>
#include <QSize>
#include <QString>

struct wl_display;
struct zwlr_virtual_pointer_v1;
struct zwp_virtual_keyboard_v1;

namespace tilewright::testing {

/// A mouse and a keyboard in a session of a compositor made with wlroots, for as long as this
/// lives. Each step returns once the compositor has taken it. Modifier keys do not count as held.
class VirtualInput final : public CompositorInput {
public:
    /// Joins the compositor at that socket, whose only display has this size in its own units.
    /// Fails the running test where it takes no such input.
    VirtualInput(const QString& socketPath, QSize display);
    ~VirtualInput() override;

    void move(QPoint to) override;

private:
    void button(State state) override;
    void key(KernelKey key, State state) override;
    [[nodiscard]] QPoint place() const override { return at_; }
    void describeKeys();
    void send();

    wl_display* display_;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr;
    const QSize size_;
    QPoint at_;
};

} // namespace tilewright::testing
