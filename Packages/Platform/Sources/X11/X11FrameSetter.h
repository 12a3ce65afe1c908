#pragma once

#include "X11Coordinates.h"
#include "X11EventSelection.h"
#include "X11Fence.h"
#include "X11FramePlacement.h"
#include "X11WindowManagerWatch.h"

#include <Platform/Accessibility.h>
#include <Platform/MainLoop.h>
#include <Platform/WholeFrames.h>

#include <QObject>
#include <functional>
#include <map>

namespace tilewright {

/// Sets windows' frames, whole ones (`WholeFrames`); asking for a frame, verifying and asking again
/// run on from the event loop and end by themselves. A newer frame of the same window, or its end,
/// cancels what runs. Main thread only.
class X11FrameSetter final : public QObject {
    Q_OBJECT

public:
    /// What the setter asks of its surroundings, whenever it needs to know.
    struct Surroundings {
        /// How Accessibility space lies on the X screen now.
        std::function<X11Coordinates()> coordinates;
        /// Whether the window manager may be tiling, by itself, a window that is let go now.
        std::function<X11FramePlacement::Tiling()> tiling;
    };

    X11FrameSetter(X11Connection& connection, X11EventSelection& selection,
                   X11WindowManagerWatch& windowManager, MainLoop& loop, Surroundings surroundings);
    ~X11FrameSetter() override;

    /// Notes the outer frame's top-left corner. Answers what one bounded round trip can know:
    /// whether the window exists, is managed, and somebody manages it. Where the server does not
    /// answer in time nothing speaks against it: the frame is set when the server does.
    AXError setPosition(xcb_window_t window, AXPoint position) {
        return frames_.setPosition(window, position);
    }
    /// Notes the outer frame's size. Answers like `setPosition`.
    AXError setSize(xcb_window_t window, AXSize size) { return frames_.setSize(window, size); }

    /// Names the window whose frame is likely to be set next, when the button is let go.
    void expect(xcb_window_t window) { expected_ = window; }
    /// The button has been let go: asks all that a frame for the expected window needs to know, so
    /// that the answers come with those that others ask for now.
    void lookAhead();
    /// Whoever heard of the release has done what there was to do: what was asked ahead is old from
    /// now on.
    void lookedAhead();

    /// Whether a frame is being set, of any window.
    [[nodiscard]] bool isBusy() const { return !begun_.empty() || !running_.empty(); }

private:
    /// A window when the first of its frame was written.
    struct Begun {
        /// Unknown where the server does not answer: read when it does.
        X11WindowFacts facts;
        X11FramePlacement::Tiling tiling;
        /// Complete, and waiting for the server to answer.
        std::optional<WrittenFrame> held;
    };
    /// What has to be known of a window before its frame is set, on its way.
    struct Look {
        xcb_get_property_cookie_t isManagerAlive;
        X11WindowLook window;
    };
    struct Running {
        X11FramePlacement placement;
        X11EventSelection::Interest interest;
        X11Listener listener;
        ScopedTimer timer;
        /// Tells when the window manager has come to what was asked.
        std::unique_ptr<X11Fence> fence;
        bool isDirty = false;
        /// Its time has passed while the server did not answer.
        bool isOverdue = false;
    };

    /// Asks, or takes what was asked ahead.
    [[nodiscard]] Look look(xcb_window_t window);
    [[nodiscard]] AXError begin(xcb_window_t window);
    void finish(xcb_window_t window, const WrittenFrame& frame);
    void answersAgain();
    void start(xcb_window_t window, const QRect& goal, const Begun& begun);
    void windowEvent(xcb_window_t window, const xcb_generic_event_t& event);
    void lookAtChanged();
    void timePassed(xcb_window_t window);
    void perform(xcb_window_t window, const X11FramePlacement::Action& action);
    void wait(xcb_window_t window, Running& running);
    void fenceReached(xcb_window_t window);
    void windowManagerChanged();
    void request(xcb_window_t window, const QRect& frame, X11FramePlacement::Way way);
    void changeState(xcb_window_t window, bool adds, X11Atom first,
                     std::optional<X11Atom> second = {});
    /// Says that a placement has come to its end, with the window as it looks then.
    void tellOutcome(xcb_window_t window, const X11FramePlacement& placement,
                     const X11WindowFacts& facts) const;
    void end(xcb_window_t window);

    X11Connection& connection_;
    X11EventSelection& selection_;
    X11WindowManagerWatch& windowManager_;
    MainLoop& loop_;
    Surroundings surroundings_;
    WholeFrames<xcb_window_t> frames_;
    std::optional<xcb_window_t> expected_;
    std::optional<Look> ahead_;
    std::map<xcb_window_t, Begun> begun_;
    std::map<xcb_window_t, Running> running_;
    std::unique_ptr<X11Fence> trialFence_;
    bool answersFences_ = false;
    /// Of the window manager now.
    std::shared_ptr<X11FramePlacement::Manners> manners_ =
        std::make_shared<X11FramePlacement::Manners>();
};

} // namespace tilewright
