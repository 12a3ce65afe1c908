#include "ViewFixture.h"

#include <KeepAwake/KeepAwakeManager.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/LayoutManagerCard.h>

#include <QSignalSpy>
#include <QTest>
#include <algorithm>

namespace tilewright::testing {
namespace {

using namespace Qt::StringLiterals;
using Corner = ZoneEditorGeometry::Corner;

class HitAreas : public ViewFixture {
protected:
    /// Clicks where the user does: on whatever lies there in the window.
    static void clickAt(QWidget& window, QPoint place) {
        QWidget* hit = window.childAt(place);
        if (!hit)
            hit = &window;
        QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(&window, place));
    }
    /// The part of the window in which a click uses the button, about its middle.
    static QSize hitSize(QWidget& window, QAbstractButton& button) {
        QSignalSpy clicks(&button, &QAbstractButton::clicked);
        const QPoint middle = place(&button, &window).center();
        const auto isHit = [&](QPoint at) {
            const auto before = clicks.count();
            clickAt(window, at);
            return clicks.count() > before;
        };
        const auto reach = [&](QPoint step) {
            int length = 0;
            while (isHit(middle + (step * (length + 1))))
                ++length;
            return length;
        };
        return {1 + reach({1, 0}) + reach({-1, 0}), 1 + reach({0, 1}) + reach({0, -1})};
    }
    /// Whether twelve points of the only zone, side by side at half its height, are no handle's.
    static bool hasFreeBody(LayoutEditorView& editor) {
        LayoutEditorCanvas& canvas = editor.canvas();
        const QRectF zone = canvas.tile(0).zoneFrame();
        constexpr double step = 0.25;
        double length = 0;
        for (double x = zone.left(); x <= zone.right() && length < 12 - step; x += step) {
            const bool isTaken = std::any_of(
                ZoneEditorGeometry::allCorners.begin(), ZoneEditorGeometry::allCorners.end(),
                [&](Corner corner) {
                    return canvas.handle(corner).contains(QPointF(x, zone.center().y()));
                });
            length = isTaken ? 0 : length + step;
        }
        return length >= 12 - step;
    }
    /// Whether a square of 24 x 24 points of the editor is the corner's, and its circle in it.
    static bool hasRoomToBeHit(LayoutEditorView& editor, Corner corner) {
        LayoutEditorCanvas& canvas = editor.canvas();
        const ZoneEditorHandle& handle = canvas.handle(corner);
        const auto isHit = [&](QPointF point) {
            for (const Corner other : ZoneEditorGeometry::allCorners) {
                if (other != corner && canvas.handle(other).circle().contains(point))
                    return false;
            }
            return handle.contains(point) && QRectF(canvas.rect()).contains(point) &&
                   QRectF(editor.rect()).contains(point + canvas.pos());
        };
        constexpr double side = 24;
        const QRectF circle = handle.circle();
        for (double x = circle.right() - side; x <= circle.left() + 0.01; x += 0.25) {
            for (double y = circle.bottom() - side; y <= circle.top() + 0.01; y += 0.25) {
                const QRectF square = QRectF(x, y, side, side).adjusted(0.1, 0.1, -0.1, -0.1);
                if (isHit(square.topLeft()) && isHit(square.topRight()) &&
                    isHit(square.bottomLeft()) && isHit(square.bottomRight()) &&
                    isHit(square.center()))
                    return true;
            }
        }
        return false;
    }
};

TEST_F(HitAreas, OfTheSessionButtonsAreLargeEnough) {
    // As a manager that cannot keep the display awake: the buttons stay.
    desktop.platform.fakePowerAssertions.failure = 1;
    QWidget window;
    window.resize(300, 200);
    auto* control = new KeepAwakeControl;
    control->setParent(&window);
    control->setGeometry(16, 16, 268, control->sizeHint().height());
    window.show();
    settle();
    for (auto* button : control->findChildren<GlassButton*>()) {
        const QSize size = hitSize(window, *button);
        EXPECT_GE(size.width(), 24) << button->title().toStdString();
        EXPECT_GE(size.height(), 24) << button->title().toStdString();
    }
}

TEST_F(HitAreas, OfDeletingACardAreLargeEnough) {
    QWidget window;
    window.resize(300, 200);
    auto* card = new LayoutManagerCard(customLayout(u"Mine"_s, {{0, 0, 1, 1}}),
                                       LayoutManagerCard::Deletable::yes, &window);
    card->setGeometry(10, 10, 150, card->sizeHint().height());
    window.show();
    settle();
    EXPECT_LT(card->deleteButton()->height(), 24) << "as it is seen";
    EXPECT_GE(hitSize(window, *card->deleteButton()).height(), 24);
    card->deleteButton()->hide();
    QSignalSpy clicks(card->deleteButton(), &QAbstractButton::clicked);
    clickAt(window, place(card->deleteButton(), &window).center() + QPoint(0, 10));
    EXPECT_EQ(clicks.count(), 0) << "a hidden button is not hit";
}

TEST_F(HitAreas, OfHandlesAreLargeEnoughAndLeaveTheBodyFree) {
    LayoutEditorView editor;
    // As in the settings.
    editor.resize(520, 460);
    editor.show();
    settle();
    for (const double size : {0.5, 0.1, 0.05}) {
        const double last = 1 - size;
        for (const QPointF origin : {QPointF(0.3, 0.3), QPointF(0, 0), QPointF(last, 0),
                                     QPointF(0, last), QPointF(last, last), QPointF(0.3, 0)}) {
            SCOPED_TRACE(::testing::Message()
                         << size << " at " << origin.x() << ", " << origin.y());
            const ZoneLayout layout =
                customLayout(u"Test"_s, {{origin.x(), origin.y(), size, size}});
            editor.model().loadForEditing(layout);
            editor.model().select(layout.zones[0].id);
            settle();
            EXPECT_TRUE(hasFreeBody(editor));
            for (const Corner corner : ZoneEditorGeometry::allCorners)
                EXPECT_TRUE(hasRoomToBeHit(editor, corner)) << static_cast<int>(corner);
        }
    }
}

} // namespace
} // namespace tilewright::testing
