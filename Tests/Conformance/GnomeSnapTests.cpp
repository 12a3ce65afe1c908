// The whole way of a snap on GNOME: what a companion tells goes in, what it is to do comes out, in
// the answers that belong to it.

#include "GnomeSnapTest.h"

#include <WindowManager/ZoneLayout.h>

#include <cmath>

namespace tilewright::testing {
namespace {

constexpr int control = 2;
/// The middle of the display, in the second of the two halves.
const QByteArray onTheRight = "[1500,500]";
const QByteArray onTheLeft = "[300,500]";

} // namespace

TEST_F(GnomeSnapTest, ShowsTheOverlayAndItsHighlightInTheAnswerToTheMoveThatWantsThem) {
    tell("DragBegin", dragText(1, onTheLeft, 0));
    tell("DragMotion", dragText(1, "[301,500]", 0));
    EXPECT_FALSE(shell.overlay) << "no key is held";
    tell("DragMotion", dragText(1, "[302,500]", control));
    ASSERT_TRUE(shell.overlay);
    EXPECT_EQ((*shell.overlay)[QStringLiteral("area")].toArray(), (QJsonArray{0, 0, 1920, 1080}));
    EXPECT_EQ(static_cast<std::size_t>(tiles().size()), ZoneLayout::bentoBox().zones.size())
        << "the layout that a display has at first";
    int highlighted = 0;
    for (const auto& tile : tiles())
        highlighted += tile.toArray()[7].toDouble() == widestBorder() ? 1 : 0;
    EXPECT_EQ(highlighted, 1);
    const QJsonArray before = tiles();
    tell("DragMotion", dragText(1, onTheRight, control));
    EXPECT_NE(tiles(), before) << "another zone is under the pointer";
    tell("DragMotion", dragText(1, "[1501,500]", 0));
    EXPECT_FALSE(shell.overlay) << "the key has been released";
}

TEST_F(GnomeSnapTest, PutsTheDraggedWindowIntoTheZoneInTheAnswerToTheDrop) {
    tell("DragBegin", dragText(1, onTheLeft, 0));
    tell("DragMotion", dragText(1, "[302,500]", control));
    EXPECT_TRUE(shell.frames.empty());
    tell("DragEnd", dragEndText(1, "[302,500]", control, false));
    ASSERT_TRUE(shell.frames.contains(7)) << "the dragged one, not the one in focus";
    EXPECT_EQ(shell.frames.size(), 1U);
    EXPECT_FALSE(shell.overlay);
    const QJsonArray frame = shell.frames[7];
    EXPECT_EQ(frame[0].toDouble(), 0);
    EXPECT_EQ(frame[1].toDouble(), 32) << "below the bar";
    for (const auto& number : frame)
        EXPECT_EQ(number.toDouble(), std::round(number.toDouble()));
}

TEST_F(GnomeSnapTest, LeavesTheWindowAloneWhenTheDragIsCancelledOrTheCompanionGoes) {
    tell("DragBegin", dragText(1, onTheLeft, 0));
    tell("DragMotion", dragText(1, "[302,500]", control));
    tell("DragEnd", dragEndText(1, "[302,500]", control, true));
    EXPECT_FALSE(shell.overlay);
    tell("DragBegin", dragText(2, onTheLeft, 0));
    tell("DragMotion", dragText(2, "[302,500]", control));
    ASSERT_TRUE(shell.overlay);
    shell.overlay.reset();
    tell("Hello", helloText());
    EXPECT_FALSE(SnapController::shared().isDragging());
    EXPECT_FALSE(SnapController::shared().overlayVisible());
    tell("DragEnd", dragEndText(2, "[302,500]", control, false));
    EXPECT_TRUE(shell.frames.empty());
    EXPECT_FALSE(shell.overlay);
}

TEST_F(GnomeSnapTest, SnapsTheNextDragAfterOneThatNobodyEnded) {
    tell("DragBegin", dragText(1, onTheLeft, control));
    tell("DragMotion", dragText(1, "[302,500]", control));
    ASSERT_TRUE(shell.overlay);
    tell("DragBegin", dragText(2, onTheRight, control, windowText(8)));
    EXPECT_FALSE(shell.overlay);
    tell("DragMotion", dragText(2, "[1501,500]", control, windowText(8)));
    tell("DragEnd", dragEndText(2, "[1502,500]", control, false, windowText(8)));
    EXPECT_TRUE(shell.frames.contains(8));
    EXPECT_FALSE(shell.frames.contains(7));
}

} // namespace tilewright::testing
