#pragma once

#include <QDBusConnection>
#include <QPoint>
#include <QString>
#include <functional>

namespace tilewright::testing {

/// Keys, by their numbers in the kernel.
enum class KernelKey : unsigned {
    escape = 1,
    enter = 28,
    control = 29,
    shift = 42,
    alt = 56,
    super = 125
};

/// A mouse and a keyboard in a session of GNOME Shell: what they do comes in where a real device's
/// input does. Only one of them at a time.
class GnomeInput {
public:
    /// `pointer` answers where the shell has the pointer now.
    GnomeInput(const QDBusConnection& bus, std::function<QPoint()> pointer);
    GnomeInput(const GnomeInput&) = delete;
    ~GnomeInput();

    /// Moves the pointer there in one step, and waits until it is there.
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
    void call(const QString& method, const QVariantList& arguments = {});

    QDBusConnection bus_;
    QString session_;
    std::function<QPoint()> pointer_;
};

} // namespace tilewright::testing
