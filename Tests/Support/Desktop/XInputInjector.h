#pragma once

#include "XClient.h"

#include <QPoint>
#include <QString>
#include <vector>

namespace tilewright::testing {

/// A user's hands: moves the pointer and presses keys and buttons through the X server's test
/// extension, so that everybody on the display sees them as real input. Each call returns once the
/// server has processed it. What is still held when the object ends is released.
///
/// A window manager may freeze the pointer with a press, to decide what the press is for. What is
/// done meanwhile waits in the server, which then mixes up the places of moves and buttons, or
/// drops some; no real hand is that fast. So a release returns only when the server counts the
/// button as up: at once where nobody has the pointer frozen, and after `patience` at the latest.
class XInputInjector {
public:
    explicit XInputInjector(const QString& display);
    XInputInjector(const XInputInjector&) = delete;
    XInputInjector& operator=(const XInputInjector&) = delete;
    ~XInputInjector();

    /// In the X screen's pixels.
    void move(QPoint to);
    /// Moves in a straight line, in this many equal steps.
    void glide(QPoint from, QPoint to, int steps);
    void press(int button = 1);
    void release(int button = 1);
    /// Moves there and clicks.
    void click(QPoint at, int button = 1);

    /// By keysym (such as XK_Control_L), through the server's keyboard map.
    void pressKey(quint32 keysym);
    void releaseKey(quint32 keysym);
    void tapKey(quint32 keysym);
    /// Types plain ASCII text.
    void type(const QString& text);

    [[nodiscard]] QPoint position() const;
    /// Its connection, on which a server can be held without stopping it.
    [[nodiscard]] xcb_connection_t* connection() const { return client_.xcb(); }

private:
    void fake(quint8 type, quint8 detail, QPoint at = {});
    /// How many buttons the server counts as down.
    [[nodiscard]] std::size_t buttonsDown() const;
    struct Key {
        quint8 code = 0;
        bool needsShift = false;
    };
    [[nodiscard]] Key keyFor(quint32 keysym) const;

    XClient client_;
    std::vector<int> heldButtons_;
    std::vector<quint8> heldKeys_;
};

/// The keysyms that tests press.
namespace keysym {
inline constexpr quint32 shift = 0xffe1;
inline constexpr quint32 control = 0xffe3;
inline constexpr quint32 alt = 0xffe9;
inline constexpr quint32 super = 0xffeb;
inline constexpr quint32 escape = 0xff1b;
inline constexpr quint32 tab = 0xff09;
inline constexpr quint32 enter = 0xff0d;
inline constexpr quint32 space = 0x20;
inline constexpr quint32 backspace = 0xff08;
inline constexpr quint32 del = 0xffff;
inline constexpr quint32 left = 0xff51;
inline constexpr quint32 up = 0xff52;
inline constexpr quint32 right = 0xff53;
inline constexpr quint32 down = 0xff54;
} // namespace keysym

} // namespace tilewright::testing
