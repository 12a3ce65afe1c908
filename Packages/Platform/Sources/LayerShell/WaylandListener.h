#pragma once

// What fills the tables of functions through which libwayland tells of events.

namespace tilewright::wayland {

template<auto member>
struct Call;

/// Calls a member function of whoever listens with what the event says.
template<class Receiver, class... Arguments, void (Receiver::*member)(Arguments...)>
struct Call<member> {
    template<class Object>
    static void on(void* receiver, Object* /*object*/, Arguments... arguments) {
        (static_cast<Receiver*>(receiver)->*member)(arguments...);
    }
};

/// Leaves an event alone.
template<class... Arguments>
void ignore(Arguments... /*arguments*/) {}

} // namespace tilewright::wayland
