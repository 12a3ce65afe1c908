#include "X11ServerProbe.h"

#include <QByteArray>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/randr.h>
#include <xcb/xcb.h>

namespace tilewright {

namespace {

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template<class Reply>
using Answer = std::unique_ptr<Reply, Free>;

bool hasExtension(xcb_connection_t* connection, std::string_view name) {
    const auto cookie =
        xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data());
    const Answer<xcb_query_extension_reply_t> answer(
        xcb_query_extension_reply(connection, cookie, nullptr));
    return answer && answer->present != 0;
}

/// Servers from before the extension name their outputs so.
bool hasOutputNamedAfterWayland(xcb_connection_t* connection) {
    if (!hasExtension(connection, "RANDR"))
        return false;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const Answer<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(
            connection, xcb_randr_get_screen_resources_current(connection, root), nullptr));
    if (!resources || xcb_randr_get_screen_resources_current_outputs_length(resources.get()) < 1)
        return false;
    const xcb_randr_output_t output =
        *xcb_randr_get_screen_resources_current_outputs(resources.get());
    const Answer<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, output, resources->config_timestamp),
        nullptr));
    if (!info)
        return false;
    const QByteArray name(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                          xcb_randr_get_output_info_name_length(info.get()));
    return name.startsWith("XWAYLAND");
}

} // namespace

X11Server probeX11Server(const QString& display) {
    const QByteArray name = display.toLocal8Bit();
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(
        xcb_connect(name.isEmpty() ? nullptr : name.constData(), nullptr));
    if (xcb_connection_has_error(connection.get()) != 0)
        return X11Server::none;
    return hasExtension(connection.get(), "XWAYLAND") ||
                   hasOutputNamedAfterWayland(connection.get())
               ? X11Server::besideWayland
               : X11Server::independent;
}

} // namespace tilewright
