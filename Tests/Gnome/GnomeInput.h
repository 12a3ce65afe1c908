#pragma once

#include <CompositorInput.h>
#include <QDBusConnection>
#include <QString>
#include <functional>

namespace tilewright::testing {

/// A mouse and a keyboard in a session of GNOME Shell.
class GnomeInput final : public CompositorInput {
public:
    /// `pointer` answers where the shell has the pointer now.
    GnomeInput(const QDBusConnection& bus, std::function<QPoint()> pointer);
    ~GnomeInput() override;

    /// How many units of the stage the shell goes for each that the mouse is moved by.
    void setReach(int units) { reach_ = units; }

    /// Moves the mouse by that, in points, and does not wait until the pointer is there.
    void step(QPoint by);

    void move(QPoint to) override;
    void press() override;
    void release() override;
    void pressKey(KernelKey key) override;
    void releaseKey(KernelKey key) override;

private:
    [[nodiscard]] QPoint place() const override { return pointer_(); }
    void call(const QString& method, const QVariantList& arguments = {});

    QDBusConnection bus_;
    QString session_;
    std::function<QPoint()> pointer_;
    int reach_ = 1;
};

} // namespace tilewright::testing
