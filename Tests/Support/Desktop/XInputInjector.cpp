#include "XInputInjector.h"

#include "Waiting.h"

#include <algorithm>
#include <bit>
#include <xcb/xtest.h>

namespace tilewright::testing {

XInputInjector::XInputInjector(const QString& display)
    : client_(display) {}

XInputInjector::~XInputInjector() {
    while (!heldButtons_.empty())
        release(heldButtons_.back());
    while (!heldKeys_.empty()) {
        fake(XCB_KEY_RELEASE, heldKeys_.back());
        heldKeys_.pop_back();
    }
}

void XInputInjector::fake(quint8 type, quint8 detail, QPoint at) {
    xcb_test_fake_input(connection(), type, detail, XCB_CURRENT_TIME,
                        type == XCB_MOTION_NOTIFY ? client_.root() : XCB_NONE,
                        static_cast<qint16>(at.x()), static_cast<qint16>(at.y()), 0);
    client_.sync();
}

void XInputInjector::move(QPoint to) {
    fake(XCB_MOTION_NOTIFY, 0, to);
}

void XInputInjector::glide(QPoint from, QPoint to, int steps) {
    for (int step = 1; step <= steps; ++step)
        move(from + (to - from) * step / steps);
}

void XInputInjector::press(int button) {
    heldButtons_.push_back(button);
    fake(XCB_BUTTON_PRESS, static_cast<quint8>(button));
}

void XInputInjector::release(int button) {
    std::erase(heldButtons_, button);
    fake(XCB_BUTTON_RELEASE, static_cast<quint8>(button));
    // Not by turning the event loop: some tests let what they do pile up.
    QElapsedTimer timer;
    timer.start();
    while (buttonsDown() > heldButtons_.size() &&
           timer.elapsed() < std::chrono::milliseconds(patience).count())
        QThread::msleep(1);
}

std::size_t XInputInjector::buttonsDown() const {
    const XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection(), xcb_query_pointer(connection(), client_.root()), nullptr));
    constexpr unsigned buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 |
                                 XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;
    return reply ? static_cast<std::size_t>(std::popcount(reply->mask & buttons)) : 0;
}

void XInputInjector::click(QPoint at, int button) {
    move(at);
    press(button);
    release(button);
}

XInputInjector::Key XInputInjector::keyFor(quint32 keysym) const {
    const xcb_setup_t* setup = xcb_get_setup(connection());
    const auto first = setup->min_keycode;
    const auto count = static_cast<quint8>(setup->max_keycode - first + 1);
    const XReply<xcb_get_keyboard_mapping_reply_t> map(xcb_get_keyboard_mapping_reply(
        connection(), xcb_get_keyboard_mapping(connection(), first, count), nullptr));
    if (!map)
        return {};
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
    const int perCode = map->keysyms_per_keycode;
    for (int column = 0; column < std::min(perCode, 2); ++column) {
        for (int code = 0; code < count; ++code) {
            if (symbols[code * perCode + column] == keysym)
                return {static_cast<quint8>(first + code), column == 1};
        }
    }
    return {};
}

void XInputInjector::pressKey(quint32 keysym) {
    const Key key = keyFor(keysym);
    heldKeys_.push_back(key.code);
    fake(XCB_KEY_PRESS, key.code);
}

void XInputInjector::releaseKey(quint32 keysym) {
    const Key key = keyFor(keysym);
    std::erase(heldKeys_, key.code);
    fake(XCB_KEY_RELEASE, key.code);
}

void XInputInjector::tapKey(quint32 keysym) {
    const bool needsShift = keyFor(keysym).needsShift;
    if (needsShift)
        pressKey(keysym::shift);
    pressKey(keysym);
    releaseKey(keysym);
    if (needsShift)
        releaseKey(keysym::shift);
}

void XInputInjector::type(const QString& text) {
    for (const QChar character : text)
        tapKey(character.unicode());
}

QPoint XInputInjector::position() const {
    const XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection(), xcb_query_pointer(connection(), client_.root()), nullptr));
    return reply ? QPoint(reply->root_x, reply->root_y) : QPoint();
}

} // namespace tilewright::testing
