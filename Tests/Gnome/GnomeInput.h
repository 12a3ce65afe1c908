#pragma once

#include <CompositorInput.h>
#include <QDBusConnection>
#include <QString>
#include <functional>

namespace tilewright::testing {

/// A mouse and a keyboard in a session of GNOME Shell.
class GnomeInput final : public CompositorInput {
public:
    /// `pointer` answers where the shell has the pointer now, `reach` how many units of the stage
    /// the shell goes at a place for each that the mouse is moved by.
    GnomeInput(const QDBusConnection& bus, std::function<QPoint()> pointer,
               std::function<int(QPoint)> reach);
    ~GnomeInput() override;

    /// Moves the mouse by that, in points, and does not wait until the pointer is there.
    void step(QPoint by);

    void move(QPoint to) override;

private:
    void button(State state) override;
    void key(KernelKey key, State state) override;
    [[nodiscard]] QPoint place() const override { return pointer_(); }
    void call(const QString& method, const QVariantList& arguments = {});

    QDBusConnection bus_;
    QString session_;
    std::function<QPoint()> pointer_;
    std::function<int(QPoint)> reach_;
};

} // namespace tilewright::testing
