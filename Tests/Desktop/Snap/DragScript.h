#pragma once

#include "RunningProgram.h"

#include <TestClients.h>

#include <WindowManager/ZoneLayout.h>

namespace tilewright::testing {

/// When the user presses the modifier key.
enum class KeyTiming {
    beforeThePress,
    afterTheDragBegan,
    /// Once the window has followed the mouse for a while, for windows that do so without the key.
    inMidDrag,
};

/// Does with a window what a user would do, step by step.
class DragScript {
public:
    DragScript(DesktopSession& desktop, RunningProgram& program)
        : desktop_(desktop)
        , program_(program) {}

    /// Takes a window by its title bar, or the bar that it draws itself, and waits until the
    /// overlay shows.
    void grab(const TestClient& client, KeyTiming timing);
    /// Moves on to a point.
    void dragTo(QPoint target, int steps = 8);
    void releaseButton();
    void releaseKey();
    /// Waits until the overlay is gone.
    void expectOverlayGone();
    /// Lets go of button and key, in this order, and waits until the overlay is gone.
    void drop();

    /// The whole of it: grab, drag and drop.
    void run(const TestClient& client, KeyTiming timing, QPoint target);

private:
    /// Who draws the bar that a window is taken by.
    enum class Bar { ofTheWindowManager, ofTheClient };
    struct Grip {
        QPoint place;
        Bar bar;
    };
    [[nodiscard]] Grip gripOf(const TestClient& client) const;
    /// Presses the button, and moves to and fro until the window has moved more than once. Where it
    /// does not, lets go and does so again, as a hand would.
    void takeHold(const TestClient& client, QPoint from, QPoint here);
    /// Wakes a window manager that sleeps while the pointer stands frozen where the button went
    /// down, though the hand has moved on. False where there was no such one.
    bool wakeSleeper(QPoint pressedAt);
    /// Whether the window has followed the mouse more than once; looks at it for a second.
    [[nodiscard]] bool follows(const TestClient& client, QPoint here);

    DesktopSession& desktop_;
    RunningProgram& program_;
    bool isKeyDown_ = false;
    /// Where the hand is: the server says otherwise while somebody keeps the pointer frozen.
    QPoint place_;
};

/// The part of the screen that panels leave free, as the window manager tells it; for one monitor.
[[nodiscard]] QRect workArea(const XInspector& inspector);
/// A zone's pixels within an area.
[[nodiscard]] QRect zoneFrame(const Zone& zone, const QRect& area);

/// Waits until the window fills the frame: to the pixel, or for a terminal, whose size moves by
/// character cells, by as many of the cells that it tells of as fit.
void expectFills(const XInspector& inspector, ClientKind kind, const TestClient& client,
                 const QRect& frame);

} // namespace tilewright::testing
