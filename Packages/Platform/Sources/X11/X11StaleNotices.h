#pragma once

#include "X11Flood.h"

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <map>
#include <xcb/xcb.h>

namespace tilewright {

/// Keeps from Qt the notices of root window's properties that it has read anew since: it reads each
/// time, waits for the answer, and would fall behind whoever changes one faster than that. None is
/// kept back that tells of a change that Qt may not have seen.
class X11StaleNotices final : public QAbstractNativeEventFilter {
public:
    /// `connection` is the one that the events come from; it has to outlive this.
    explicit X11StaleNotices(xcb_connection_t* connection);

    /// True for a notice that is stale: nobody else is to hear it.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    [[nodiscard]] bool isRoot(xcb_window_t window) const;

    xcb_connection_t* connection_;
    /// By property: the number of a request made since Qt was last told of it, and before it read.
    std::map<xcb_atom_t, unsigned int> readAfter_;
    X11Flood flood_;
};

} // namespace tilewright
