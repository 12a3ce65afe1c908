#include "ViewFixture.h"

#include <KeepAwake/KeepAwakeManager.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/LayoutManagerCard.h>

#include <QSignalSpy>
#include <QTest>

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
    editor.resize(520, 400);
    editor.show();
    settle();
    LayoutEditorCanvas& canvas = editor.canvas();
    for (const double size : {0.5, 0.1, 0.05}) {
        for (const QPointF origin : {QPointF(0.3, 0.3), QPointF(0, 0)}) {
            SCOPED_TRACE(::testing::Message() << size << " at " << origin.x());
            const ZoneLayout layout =
                customLayout(u"Test"_s, {{origin.x(), origin.y(), size, size}});
            editor.model().loadForEditing(layout);
            editor.model().select(layout.zones[0].id);
            settle();
            const QPointF middle = canvas.tile(0).zoneFrame().center();
            for (const Corner corner : ZoneEditorGeometry::allCorners) {
                const ZoneEditorHandle& handle = canvas.handle(corner);
                for (const double x : {-5.9, 0.0, 5.9}) {
                    for (const double y : {-5.9, 0.0, 5.9}) {
                        const QPointF body = middle + QPointF(x, y);
                        // What is seen of a handle at the editor's very edge stays the handle's.
                        EXPECT_TRUE(!handle.contains(body) || handle.circle().contains(body));
                    }
                }
                if (origin.isNull())
                    continue;
                const bool isLeft = corner == Corner::topLeft || corner == Corner::bottomLeft;
                const bool isTop = corner == Corner::topLeft || corner == Corner::topRight;
                const QPointF inner(isLeft ? handle.circle().right() : handle.circle().left(),
                                    isTop ? handle.circle().bottom() : handle.circle().top());
                const QPointF outward(isLeft ? -1 : 1, isTop ? -1 : 1);
                for (const double x : {0.5, 23.5}) {
                    for (const double y : {0.5, 23.5}) {
                        EXPECT_TRUE(
                            handle.contains(inner + QPointF(outward.x() * x, outward.y() * y)));
                    }
                }
            }
        }
    }
}

} // namespace
} // namespace tilewright::testing
