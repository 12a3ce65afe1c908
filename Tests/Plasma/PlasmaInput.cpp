#include "PlasmaInput.h"

#include <QFile>
#include <cstring>
#include <fake-input-client.h>
#include <gtest/gtest.h>
#include <wayland-client.h>

namespace tilewright::testing {

namespace {

constexpr unsigned knownVersion = 4;

void bind(void* found, wl_registry* registry, std::uint32_t number, const char* interface,
          std::uint32_t version) {
    if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0 &&
        version >= knownVersion)
        *static_cast<org_kde_kwin_fake_input**>(found) = static_cast<org_kde_kwin_fake_input*>(
            wl_registry_bind(registry, number, &org_kde_kwin_fake_input_interface, knownVersion));
}

void forget(void* /*found*/, wl_registry* /*registry*/, std::uint32_t /*number*/) {}

constexpr wl_registry_listener registryListener{bind, forget};

} // namespace

PlasmaInput::PlasmaInput(const QString& socketPath)
    : display_(wl_display_connect(QFile::encodeName(socketPath).constData())) {
    if (!display_) {
        ADD_FAILURE() << "nobody listens at " << socketPath.toStdString();
        return;
    }
    wl_registry* registry = wl_display_get_registry(display_);
    wl_registry_add_listener(registry, &registryListener, &input_);
    wl_display_roundtrip(display_);
    wl_registry_destroy(registry);
    EXPECT_NE(input_, nullptr) << "KWin lets nobody make up input";
    if (!input_)
        return;
    org_kde_kwin_fake_input_authenticate(input_, "tests", "to drag windows");
    send();
}

PlasmaInput::~PlasmaInput() {
    if (input_)
        org_kde_kwin_fake_input_destroy(input_);
    if (display_)
        wl_display_disconnect(display_);
}

void PlasmaInput::send() {
    EXPECT_GE(wl_display_roundtrip(display_), 0) << "KWin has ended the connection";
}

void PlasmaInput::move(QPoint to) {
    if (!input_)
        return;
    org_kde_kwin_fake_input_pointer_motion_absolute(input_, wl_fixed_from_int(to.x()),
                                                    wl_fixed_from_int(to.y()));
    at_ = to;
    send();
}

void PlasmaInput::button(State state) {
    if (!input_)
        return;
    org_kde_kwin_fake_input_button(input_, leftButton, static_cast<unsigned>(state));
    send();
}

void PlasmaInput::key(KernelKey key, State state) {
    if (!input_)
        return;
    org_kde_kwin_fake_input_keyboard_key(input_, static_cast<unsigned>(key),
                                         static_cast<unsigned>(state));
    send();
}

} // namespace tilewright::testing
