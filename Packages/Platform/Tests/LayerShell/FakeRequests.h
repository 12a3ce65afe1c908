#pragma once

#include <cstdint>
#include <wayland-server.h>

// What fills the tables of functions through which libwayland hands on a client's requests.

namespace tilewright::testing::wayland {

template<auto member>
struct Request;

/// Calls a member function of whoever the object stands for.
template<class Receiver, class... Arguments, void (Receiver::*member)(Arguments...)>
struct Request<member> {
    static void on(wl_client* /*client*/, wl_resource* resource, Arguments... arguments) {
        if (auto* receiver = static_cast<Receiver*>(wl_resource_get_user_data(resource)))
            (receiver->*member)(arguments...);
    }
};

template<auto member>
struct Bind;

/// Calls a member function of whoever offers something to a client that wants it.
template<class Receiver, void (Receiver::*member)(wl_client*, std::uint32_t, std::uint32_t)>
struct Bind<member> {
    static void on(wl_client* client, void* receiver, std::uint32_t version, std::uint32_t id) {
        (static_cast<Receiver*>(receiver)->*member)(client, version, id);
    }
};

/// Takes notice of nothing.
template<class... Arguments>
void accept(wl_client* /*client*/, wl_resource* /*resource*/, Arguments... /*arguments*/) {}

inline void destroy(wl_client* /*client*/, wl_resource* resource) {
    wl_resource_destroy(resource);
}

} // namespace tilewright::testing::wayland
