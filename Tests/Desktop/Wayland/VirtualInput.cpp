#include "VirtualInput.h"

#include <QFile>
#include <QTemporaryFile>
#include <cstring>
#include <gtest/gtest.h>
#include <virtual-input-client.h>
#include <wayland-client.h>

namespace tilewright::testing {

namespace {

/// What the compositor makes a whole keymap of.
constexpr char keymap[] = R"keymap(xkb_keymap {
xkb_keycodes { include "evdev+aliases(qwerty)" };
xkb_types { include "complete" };
xkb_compat { include "complete" };
xkb_symbols { include "pc+us+inet(evdev)" };
};
)keymap";

struct Offered {
    wl_seat* seat = nullptr;
    zwlr_virtual_pointer_manager_v1* pointers = nullptr;
    zwp_virtual_keyboard_manager_v1* keyboards = nullptr;
};

template<class Object>
void bindIfIs(Object*& object, const wl_interface& wanted, wl_registry* registry,
              std::uint32_t number, const char* interface) {
    if (std::strcmp(interface, wanted.name) == 0)
        object = static_cast<Object*>(wl_registry_bind(registry, number, &wanted, 1));
}

void bind(void* found, wl_registry* registry, std::uint32_t number, const char* interface,
          std::uint32_t /*version*/) {
    auto& offered = *static_cast<Offered*>(found);
    bindIfIs(offered.seat, wl_seat_interface, registry, number, interface);
    bindIfIs(offered.pointers, zwlr_virtual_pointer_manager_v1_interface, registry, number,
             interface);
    bindIfIs(offered.keyboards, zwp_virtual_keyboard_manager_v1_interface, registry, number,
             interface);
}

void forget(void* /*found*/, wl_registry* /*registry*/, std::uint32_t /*number*/) {}

constexpr wl_registry_listener registryListener{bind, forget};

} // namespace

VirtualInput::VirtualInput(const QString& socketPath, QSize display)
    : display_(wl_display_connect(QFile::encodeName(socketPath).constData()))
    , size_(display) {
    if (!display_) {
        ADD_FAILURE() << "nobody listens at " << socketPath.toStdString();
        return;
    }
    Offered offered;
    wl_registry* registry = wl_display_get_registry(display_);
    wl_registry_add_listener(registry, &registryListener, &offered);
    wl_display_roundtrip(display_);
    wl_registry_destroy(registry);
    if (!offered.seat || !offered.pointers || !offered.keyboards) {
        ADD_FAILURE() << "the compositor lets nobody make up input";
        return;
    }
    pointer_ =
        zwlr_virtual_pointer_manager_v1_create_virtual_pointer(offered.pointers, offered.seat);
    keyboard_ =
        zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(offered.keyboards, offered.seat);
    describeKeys();
    send();
}

VirtualInput::~VirtualInput() {
    if (display_)
        wl_display_disconnect(display_);
}

void VirtualInput::describeKeys() {
    QTemporaryFile file;
    EXPECT_TRUE(file.open());
    EXPECT_EQ(file.write(keymap, sizeof keymap), qint64(sizeof keymap));
    EXPECT_TRUE(file.flush());
    zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file.handle(),
                                   sizeof keymap);
    send();
}

void VirtualInput::send() {
    EXPECT_GE(wl_display_roundtrip(display_), 0) << "the compositor has ended the connection";
}

void VirtualInput::move(QPoint to) {
    if (!pointer_)
        return;
    zwlr_virtual_pointer_v1_motion_absolute(pointer_, 0, unsigned(to.x()), unsigned(to.y()),
                                            unsigned(size_.width()), unsigned(size_.height()));
    zwlr_virtual_pointer_v1_frame(pointer_);
    at_ = to;
    send();
}

void VirtualInput::button(State state) {
    if (!pointer_)
        return;
    zwlr_virtual_pointer_v1_button(pointer_, 0, leftButton, static_cast<unsigned>(state));
    zwlr_virtual_pointer_v1_frame(pointer_);
    send();
}

void VirtualInput::key(KernelKey key, State state) {
    if (!keyboard_)
        return;
    zwp_virtual_keyboard_v1_key(keyboard_, 0, static_cast<unsigned>(key),
                                static_cast<unsigned>(state));
    send();
}

} // namespace tilewright::testing
