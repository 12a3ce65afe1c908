#pragma once

#include "XInspector.h"

namespace tilewright::testing {

/// How a client's size may differ from what it is given, as its own hints say.
struct SizeRules {
    QSize minimum{1, 1};
    QSize maximum{65535, 65535};
    QSize increment{1, 1};

    static SizeRules of(const XInspector& inspector, XInspector::Window window) {
        const auto hints = inspector.property(window, "WM_NORMAL_HINTS");
        SizeRules rules;
        const auto size = [&](std::size_t at) { return QSize(int(hints[at]), int(hints[at + 1])); };
        if (hints.size() < 18)
            return rules;
        if ((hints[0] & 16U) != 0)
            rules.minimum = size(5);
        if ((hints[0] & 32U) != 0)
            rules.maximum = size(7);
        if ((hints[0] & 64U) != 0)
            rules.increment = size(9);
        return rules;
    }

    /// Whether a frame is the zone's to the pixel, or as near as the client's limits allow, with
    /// the zone's top-left corner; one that is too large for its zone may have been pushed from
    /// there to the edge of the area. `client` is the client's own size.
    [[nodiscard]] bool accept(const QRect& frame, const QRect& zone, QSize client,
                              const QRect& area) const {
        if (frame == zone)
            return true;
        const bool isPushedLeft = frame.width() > zone.width() && frame.right() == area.right();
        const bool isPushedUp = frame.height() > zone.height() && frame.bottom() == area.bottom();
        // On the next monitor, where it spills over to, a panel may push it too.
        const bool isPushedDown = frame.right() > area.right() && frame.top() > zone.top();
        if ((frame.left() != zone.left() && !isPushedLeft) ||
            (frame.top() != zone.top() && !isPushedUp && !isPushedDown))
            return false;
        const auto isExplained = [](int has, int wants, int clientHas, int least, int most,
                                    int step) {
            if (has == wants)
                return true;
            if (has > wants)
                return clientHas == least;
            return clientHas == most || wants - has < step;
        };
        return isExplained(frame.width(), zone.width(), client.width(), minimum.width(),
                           maximum.width(), increment.width()) &&
               isExplained(frame.height(), zone.height(), client.height(), minimum.height(),
                           maximum.height(), increment.height());
    }
};

} // namespace tilewright::testing
