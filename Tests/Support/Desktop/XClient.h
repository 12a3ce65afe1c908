#pragma once

#include <QString>
#include <cstdlib>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace tilewright::testing {

/// Frees what xcb answers with.
struct FreeXReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: xcb allocates with malloc
};
/// A reply, an event or an error of xcb's, owned; none where the server did not answer.
template<class Reply>
using XReply = std::unique_ptr<Reply, FreeXReply>;

/// A connection of a test's own to an X server. What is made on it goes when it is closed, with the
/// object.
class XClient {
public:
    explicit XClient(const QString& display);

    /// False, too, once the server has gone.
    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] xcb_connection_t* xcb() const { return connection_.get(); }
    /// The screen that the display's name chooses. Only where the connection came about.
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    /// 0 where the connection did not come about.
    [[nodiscard]] xcb_window_t root() const { return screen_ ? screen_->root : 0; }
    /// 0 where the server does not answer.
    [[nodiscard]] xcb_atom_t atom(const char* name) const;

    /// Sets a property of 32-bit items.
    void setProperty(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                     const std::vector<quint32>& items) const;
    /// Returns when the server has carried out what was sent before.
    void sync() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    const xcb_screen_t* screen_ = nullptr;
};

} // namespace tilewright::testing
