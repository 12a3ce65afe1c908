#pragma once

#include <CompositorInput.h>
#include <QString>

struct wl_display;
struct org_kde_kwin_fake_input;

namespace tilewright::testing {

/// A mouse and a keyboard in a session of KWin. Each step returns once KWin has taken it.
class PlasmaInput final : public CompositorInput {
public:
    /// Joins the compositor at that socket, which has to let this process do so.
    explicit PlasmaInput(const QString& socketPath);
    ~PlasmaInput() override;

    void move(QPoint to) override;

private:
    void button(State state) override;
    void key(KernelKey key, State state) override;
    [[nodiscard]] QPoint place() const override { return at_; }
    void send();

    wl_display* display_;
    org_kde_kwin_fake_input* input_ = nullptr;
    QPoint at_;
};

} // namespace tilewright::testing
