#pragma once

#include "DragScript.h"

#include <array>
#include <functional>
#include <initializer_list>
#include <memory>

namespace tilewright::testing {

/// The clients that are dragged about: size increments, plain decorations, decorations of its own.
inline constexpr std::array draggedClients{ClientKind::xterm, ClientKind::qt,
                                           ClientKind::gtkClientDecorated};

/// What can happen in a drag, each as one scripted drag on a desktop of one monitor with Bento Box.
/// After each the overlay is gone, and the active window is the one that was dragged.
class SnapCases {
public:
    /// Starts the program with this key. `restart`, where there is one, starts a window manager
    /// once more that is known to end by itself at times.
    SnapCases(DesktopSession& desktop, const QString& modifier, std::function<bool()> restart = {});

    /// Dropped in a zone, the window fills it.
    void dropInAZone(ClientKind kind, KeyTiming timing, std::size_t zone);
    /// The same window through several zones, one drag each.
    void dropInZonesInTurn(ClientKind kind, KeyTiming timing, std::size_t first, int count);
    /// With the key let go before the button nothing is snapped, in one drag for each timing.
    void releaseTheKeyFirst(ClientKind kind, std::initializer_list<KeyTiming> timings);
    /// Escape in mid-drag ends it: nothing is snapped then, wherever the window manager leaves the
    /// window. The next drag does snap.
    void pressEscape(ClientKind kind, KeyTiming timing, std::size_t zone);
    /// A window that closes in mid-drag costs nothing, neither another window's place. It opens at
    /// the one place, the window that is dragged after it at the other.
    void closeInMidDrag(ClientKind kind, KeyTiming timing, std::size_t zone,
                        QPoint from = {360, 220}, QPoint nextFrom = {420, 260});
    /// A maximised window is pulled off into a zone.
    void pullOffMaximised(ClientKind kind, KeyTiming timing, std::size_t zone);
    /// The same by the window manager's way to move it, above another one, the key only then: the
    /// other one stays as it is, wherever the window manager restores the first one.
    void pullOffMaximisedAboveAnother(ClientKind kind, std::size_t zone);
    /// Dropped where a window manager would tile or maximise it, the window fills the zone there.
    void dropAtTheEdges(ClientKind kind, KeyTiming timing);

    [[nodiscard]] RunningProgram& program() { return program_; }

private:
    /// Opens a window and waits until it is the active one, in its place.
    [[nodiscard]] TestClient open(ClientKind kind, const QRect& area = {300, 200, 640, 420}) const;
    [[nodiscard]] QRect frame(std::size_t zone) const;
    /// Waits until the window that was dragged is the active one.
    void expectActive(const TestClient& client) const;
    /// Opens a window, drags it and has it close meanwhile; returns when the window manager has
    /// taken note of that, or has ended.
    void closeWhileDragged(ClientKind kind, KeyTiming timing, QPoint from);
    /// Has the window manager move that window a little, and back; false where it has ended by
    /// then.
    [[nodiscard]] bool movesThereAndBack(const TestClient& client) const;
    void maximise(const TestClient& client) const;
    void dragAndDrop(ClientKind kind, const TestClient& client, KeyTiming timing, QPoint target,
                     const QRect& expected);

    DesktopSession& desktop_;
    XInspector& inspector_;
    RunningProgram program_;
    DragScript script_;
    QRect area_;
    std::function<bool()> restart_;
};

} // namespace tilewright::testing
