#pragma once

#include <Platform/Accessibility.h>
#include <Platform/EventMonitors.h>

#include <QString>
#include <optional>
#include <variant>
#include <vector>

// What a companion inside the compositor tells this program, as `CompanionDecoder` has read it:
// every number is finite and in its range. Companions count in units of their own, from the
// top-left corner of the whole desktop, y downward.

namespace tilewright {

/// A point in a companion's units.
struct CompanionPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const CompanionPoint&, const CompanionPoint&) = default;
};

/// A rectangle in a companion's units; its size is never negative.
struct CompanionRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    friend bool operator==(const CompanionRect&, const CompanionRect&) = default;
};

/// The compositor's number of a window: no other window has it for as long as that one is there.
enum class CompanionWindowID : quint64 {};

/// A window of the session.
struct CompanionWindow {
    CompanionWindowID id{};
    /// 0 where the compositor does not know it.
    ProcessID process = 0;
    /// A client of the X server beside the compositor: its process is a mere claim.
    bool isX11 = false;
    /// It belongs to this very process, by the kernel's word.
    bool isOurs = false;
    /// What the user sees of it, its shadow left out.
    CompanionRect frame;

    friend bool operator==(const CompanionWindow&, const CompanionWindow&) = default;
};

/// A display of the session. Texts are empty where the compositor has none.
struct CompanionDisplay {
    bool isPrimary = false;
    CompanionRect frame;
    /// The frame less the desktop's bars; never outside it, never empty.
    CompanionRect workArea;
    double scale = 1;
    /// How many of the companion's units are one point of Qt's on this display.
    double unitsPerPoint = 1;
    QString connector;
    QString vendor;
    QString product;
    QString serial;

    friend bool operator==(const CompanionDisplay&, const CompanionDisplay&) = default;
};

/// A companion introduces itself: whatever it told and showed before is forgotten.
struct CompanionHello {
    int protocol = 0;
    // Of a protocol that this program does not speak, nothing more is read.
    QString shell;
    std::vector<CompanionDisplay> displays;
    std::optional<CompanionWindow> focus;
    CompanionPoint pointer;
    ModifierFlags keys;
    /// The keys in its messages are those that are down; else somebody else has to tell them.
    bool tellsKeys = true;
    /// Whether the user wishes for less motion; none where the companion does not say.
    std::optional<bool> reducedMotion;

    friend bool operator==(const CompanionHello&, const CompanionHello&) = default;
};

/// The displays, after anything about them has changed.
struct CompanionDisplays {
    std::vector<CompanionDisplay> displays;

    friend bool operator==(const CompanionDisplays&, const CompanionDisplays&) = default;
};

/// The window that has the focus by now; none where no window has it.
struct CompanionFocus {
    std::optional<CompanionWindow> window;

    friend bool operator==(const CompanionFocus&, const CompanionFocus&) = default;
};

/// The user wishes for less motion by now, or for all of it.
struct CompanionMotionWish {
    bool isReduced = false;

    friend bool operator==(const CompanionMotionWish&, const CompanionMotionWish&) = default;
};

/// A step of a window's being dragged by the user.
struct CompanionDrag {
    enum class Step { begin, motion, drop, cancellation };

    Step step = Step::begin;
    /// Counts the drags.
    quint64 serial = 0;
    CompanionWindow window;
    CompanionPoint pointer;
    ModifierFlags keys;

    friend bool operator==(const CompanionDrag&, const CompanionDrag&) = default;
};

/// What became of a frame that a window was to have.
struct CompanionFrameSettled {
    CompanionWindowID window{};
    CompanionRect frame;

    friend bool operator==(const CompanionFrameSettled&, const CompanionFrameSettled&) = default;
};

/// The user clicked the item in the desktop's bar.
struct CompanionItemClick {
    CompanionRect item;
    CompanionPoint pointer;

    friend bool operator==(const CompanionItemClick&, const CompanionItemClick&) = default;
};

/// The companion awaits the panel's window: where it belongs from its first frame on.
struct CompanionPanelAwaited {
    friend bool operator==(const CompanionPanelAwaited&, const CompanionPanelAwaited&) = default;
};

/// While the panel was shown, the user pressed outside it, or opened the overview.
struct CompanionPressOutside {
    bool isOverview = false;

    friend bool operator==(const CompanionPressOutside&, const CompanionPressOutside&) = default;
};

/// Where the pointer is, as it was asked for.
struct CompanionPointerPlace {
    CompanionPoint pointer;
    ModifierFlags keys;

    friend bool operator==(const CompanionPointerPlace&, const CompanionPointerPlace&) = default;
};

/// A window that was told of is there no longer.
struct CompanionGone {
    CompanionWindowID window{};

    friend bool operator==(const CompanionGone&, const CompanionGone&) = default;
};

/// The companion waits for commands: the answer comes when there are some.
struct CompanionPoll {
    friend bool operator==(const CompanionPoll&, const CompanionPoll&) = default;
};

using CompanionMessage =
    std::variant<CompanionHello, CompanionDisplays, CompanionFocus, CompanionMotionWish,
                 CompanionDrag, CompanionFrameSettled, CompanionItemClick, CompanionPanelAwaited,
                 CompanionPressOutside, CompanionPointerPlace, CompanionGone, CompanionPoll>;

} // namespace tilewright
