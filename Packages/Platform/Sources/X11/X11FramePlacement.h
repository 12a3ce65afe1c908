#pragma once

#include "X11WindowFacts.h"

#include <memory>
#include <optional>

namespace tilewright {

/// Brings one window into one frame: decides what to ask of the window manager, and when to ask
/// again. Knows no server and no clock: it is told what the window looks like now and that time
/// has passed, and answers what to do.
///
/// States that pin a window down (maximised, full-screen, shaded) are cleared first. Then the frame
/// is asked for, and asked for again, twice at most, when the window is elsewhere after a while:
/// the window manager's own tiling may have acted on the same release of the mouse button. A frame
/// that the client's size limits explain counts as reached, and so does one in which two attempts
/// have ended alike; one that has done nothing at all is no answer: the client's own way to ask is
/// tried then. Some window managers keep a window that asks so away from panels, be they on another
/// display: one that it brought elsewhere is asked for by the hint again. After a change of
/// maximised states a client may draw its shadow anew long after all else is done: that is
/// followed.
class X11FramePlacement {
public:
    /// How a window manager is asked for a frame.
    enum class Way {
        /// By `_NET_MOVERESIZE_WINDOW`, with the frame's corner.
        hint,
        /// By configuring the client's window, with the point that its gravity names. Every window
        /// manager knows it, since clients ask so; some take the point for another one.
        configure,
    };

    /// What is to be done now, in the order of the members.
    struct Action {
        /// Add the maximised states before they are removed: where a window is tiled without any
        /// state that shows it, this is what frees it.
        bool addsMaximized = false;
        bool removesMaximized = false;
        bool removesFullscreen = false;
        bool removesShaded = false;
        /// Ask for this corner, as `way` takes it, and client size.
        std::optional<QRect> request;
        Way way = Way::hint;
        /// Call `timePassed` after the patience, unless another action comes first.
        bool startsWaiting = false;
        /// Call `timePassed` after as long as a client's shadow may take to come back; what else is
        /// asked for meanwhile changes nothing of that.
        bool startsFollowing = false;
        /// Nothing is left to do: forget the window.
        bool isFinished = false;
    };

    /// How a window manager was found to read the corner that is asked for: off by this much for
    /// windows with these decorations. Some take it for the client's corner, not the frame's.
    struct CornerOffset {
        X11Extents decorations;
        QPoint offset;
    };

    /// What is known of the window manager that runs now. What one placement finds out serves those
    /// that come after it.
    struct Manners {
        /// How it is asked first.
        Way way = Way::hint;
        /// Whether it says that it knows the hint. One that does not is never asked by it.
        bool announcesHint = true;
        /// Whether the hint has brought a window where it belongs: one that does not stir is kept
        /// by its client then, not by the window manager.
        bool isHintHeard = false;
        CornerOffset corner;
    };

    /// Whether the window manager may be tiling the window at this moment, unseen.
    enum class Tiling { unlikely, likely };

    /// `goal` is the outer frame to reach, in pixels of the X screen. `manners`, never null, is
    /// what is known of the window manager; what is found out about it is noted there, for all
    /// placements that share it.
    explicit X11FramePlacement(const QRect& goal,
                               std::shared_ptr<Manners> manners = std::make_shared<Manners>(),
                               Tiling tiling = Tiling::unlikely)
        : goal_(goal)
        , manners_(std::move(manners))
        , way_(manners_->way)
        , tiling_(tiling) {}

    /// The first thing to do for a window that looks like this.
    [[nodiscard]] Action begin(const X11WindowFacts& facts);
    /// Something about the window has changed; it looks like this now.
    [[nodiscard]] Action windowChanged(const X11WindowFacts& facts);
    /// The time that an action asked to wait for has passed; the window looks like this now.
    [[nodiscard]] Action timePassed(const X11WindowFacts& facts);

    [[nodiscard]] const QRect& goal() const { return goal_; }
    /// Whether the window is where it belongs, as near as its own limits allow.
    [[nodiscard]] bool isReached(const X11WindowFacts& facts) const;

private:
    enum class Phase { clearing, settling, following, finished };

    [[nodiscard]] Action clear(const X11WindowFacts& facts);
    [[nodiscard]] Action ask(const X11WindowFacts& facts);
    [[nodiscard]] Action request(const X11WindowFacts& facts);
    [[nodiscard]] Action finish(const X11WindowFacts& facts);
    [[nodiscard]] Action follow(const X11WindowFacts& facts);
    [[nodiscard]] bool isOutdated(const X11WindowFacts& facts) const;
    [[nodiscard]] QSize agreedSize(const X11WindowFacts& facts) const;
    [[nodiscard]] bool learnCornerOffset(const X11WindowFacts& facts);
    [[nodiscard]] bool canChangeWay(const QRect& outer) const;
    [[nodiscard]] Action askTheOtherWay(const X11WindowFacts& facts);
    void remember(const QRect& outer);
    [[nodiscard]] bool mayAskAgain() const { return attempts_ < mostAttempts; }

    static constexpr int mostAttempts = 3;
    /// How often a request is put right because the extents have changed under it.
    static constexpr int mostCorrections = 4;
    /// From the hint to the client's way, and back.
    static constexpr int mostChangesOfWay = 2;

    QRect goal_;
    std::shared_ptr<Manners> manners_;
    Way way_;
    Tiling tiling_;
    Phase phase_ = Phase::clearing;
    int attempts_ = 0;
    int corrections_ = 0;
    int changesOfWay_ = 0;
    X11Extents askedWithDecorations_;
    X11Extents askedWithShadow_;
    /// The offset's share in the corner that was asked for.
    QPoint askedWithOffset_;
    /// The outer frame in which the window was when it was first asked to go elsewhere.
    std::optional<QRect> origin_;
    std::optional<QRect> lastMiss_;
    bool hasAddedMaximized_ = false;
    /// Whether maximised states were changed for this frame.
    bool hasChangedMaximized_ = false;
    /// Where the client was when all else was done.
    QRect settledClient_;
};

} // namespace tilewright
