#include "FakePlatform.h"

#include <TilewrightUI/EditingBadge.h>
#include <TilewrightUI/EditorToast.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/RoundedTextField.h>
#include <TilewrightUI/ToggleSwitch.h>

#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Corner = ZoneEditorGeometry::Corner;

class LayoutEditorViewTest : public ::testing::Test {
protected:
    LayoutEditorViewTest() {
        look::setPrefersReducedMotion(true);
        view.resize(520, 400);
        view.show();
        view.activateWindow();
        QApplication::processEvents();
    }
    ~LayoutEditorViewTest() override { look::setPrefersReducedMotion(false); }

    LayoutEditorModel& model() { return view.model(); }
    LayoutEditorCanvas& canvas() { return view.canvas(); }
    /// What has been announced reaches the view on the next turn.
    void turn() {
        desktop.platform.fakeMainLoop.runPosted();
        QApplication::processEvents();
    }
    GlassButton* button(const QString& title) {
        for (GlassButton* candidate : view.findChildren<GlassButton*>()) {
            if (candidate->title() == title && !candidate->isHidden())
                return candidate;
        }
        return nullptr;
    }
    void click(const QString& title) {
        ASSERT_NE(button(title), nullptr) << title.toStdString();
        QTest::mouseClick(button(title), Qt::LeftButton);
        turn();
    }
    QList<QAction*> openMenu() {
        QMenu* menu = button(u"Open"_s)->menu();
        Q_EMIT menu->aboutToShow();
        return menu->actions();
    }
    void choose(const QString& title) {
        for (QAction* action : openMenu()) {
            if (action->text() == title && action->isEnabled()) {
                action->trigger();
                turn();
                return;
            }
        }
        ADD_FAILURE() << "no choice " << title.toStdString();
    }
    /// A point of the canvas widget for normalized coordinates.
    QPoint point(double x, double y) {
        const QRectF frame = canvas().canvasFrame();
        return QPointF(frame.x() + x * frame.width(), frame.y() + y * frame.height()).toPoint();
    }
    void press(QPoint at) { QTest::mousePress(&canvas(), Qt::LeftButton, {}, at); }
    /// With the button held, which QTest::mouseMove does not tell of.
    void moveTo(QPoint to, Qt::MouseButtons buttons = Qt::LeftButton) {
        QMouseEvent event(QEvent::MouseMove, to, canvas().mapToGlobal(to), Qt::NoButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(&canvas(), &event);
        turn();
    }
    void release(QPoint at) {
        QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, at);
        turn();
    }
    void drag(QPoint from, QPoint to) {
        press(from);
        moveTo((from + to) / 2);
        moveTo(to);
        release(to);
    }
    /// Two taps in one place within the double-click time would be a double click.
    void tap(QPoint at) {
        QTest::mousePress(&canvas(), Qt::LeftButton, {}, at, 0);
        release(at);
    }
    const Zone& zone(std::size_t index) { return model().zones().at(index); }
    void load(std::vector<Zone> zones) {
        model().loadForEditing({QUuid::createUuid(), u"Test"_s, {}, false, std::move(zones)});
        turn();
    }
    static Zone at(double x, double y, double width, double height) {
        return {QUuid::createUuid(), u"Zone"_s, x, y, width, height};
    }

    testing::FakeDesktop desktop;
    LayoutEditorView view;
};

TEST_F(LayoutEditorViewTest, ShowsTheBentoBoxUnderItsFirstName) {
    EXPECT_EQ(view.findChild<RoundedTextField*>()->text(), u"My Layout"_s);
    EXPECT_EQ(view.findChild<RoundedTextField*>()->placeholderText(), u"Layout name"_s);
    EXPECT_EQ(canvas().tile(0).readout(), u"62% × 100%"_s);
    EXPECT_EQ(canvas().tile(3).readout(), u"19% × 45%"_s);
    EXPECT_TRUE(view.findChild<ToggleSwitch*>()->isOn());
    EXPECT_TRUE(view.findChild<EditingBadge*>()->isHidden());
    EXPECT_FALSE(button(u"Delete"_s)->isEnabled());
    EXPECT_TRUE(button(u"Save Layout"_s)->isEnabled());
    EXPECT_EQ(button(u"Save as New"_s), nullptr);
}

TEST_F(LayoutEditorViewTest, KeepsTheCanvasSixteenByTen) {
    for (const QSize size : {QSize(520, 400), QSize(700, 360), QSize(420, 700)}) {
        view.resize(size);
        QApplication::processEvents();
        const QRectF frame = canvas().canvasFrame();
        EXPECT_NEAR(frame.width() / frame.height(), 1.6, 1e-9);
        EXPECT_GT(frame.width(), 200);
        EXPECT_TRUE(view.rect().contains(
            QRectF(canvas().mapToParent(frame.topLeft().toPoint()), frame.size()).toRect()));
    }
}

TEST_F(LayoutEditorViewTest, NamesTheSpaceThatDragsAreMeasuredIn) {
    EXPECT_EQ(view.findChild<LayoutEditorCanvas*>(u"editorCanvas"_s), &canvas());
}

TEST_F(LayoutEditorViewTest, ScalesZonesToTheCanvas) {
    const QRectF frame = canvas().canvasFrame();
    const QRectF tile = canvas().tile(1).zoneFrame();
    EXPECT_NEAR(tile.x(), frame.x() + 0.62 * frame.width(), 1e-9);
    EXPECT_NEAR(tile.y(), frame.y(), 1e-9);
    EXPECT_NEAR(tile.width(), 0.38 * frame.width(), 1e-9);
    EXPECT_NEAR(tile.height(), 0.55 * frame.height(), 1e-9);
}

TEST_F(LayoutEditorViewTest, ListsPresetsAndSavedLayoutsInTheOpenMenu) {
    QStringList titles;
    for (const QAction* action : openMenu())
        titles.append(action->isSeparator() ? u"-"_s : action->text());
    EXPECT_EQ(titles, (QStringList{u"Start from preset"_s, u"Halves"_s, u"Thirds"_s, u"Quadrants"_s,
                                   u"Priority Center"_s, u"Bento Box"_s, u"-"_s,
                                   u"Edit saved layout"_s, u"No saved layouts yet"_s}));
    EXPECT_FALSE(openMenu().first()->isEnabled());
    EXPECT_FALSE(openMenu().last()->isEnabled());

    LayoutStore::shared().addCustomLayout({QUuid::createUuid(), u"Mail & <b>"_s, {}, false, {}});
    EXPECT_EQ(openMenu().last()->text(), u"Mail && <b>"_s);
    EXPECT_TRUE(openMenu().last()->isEnabled());
}

TEST_F(LayoutEditorViewTest, LoadsWhatIsChosenInTheOpenMenu) {
    choose(u"Thirds"_s);
    EXPECT_EQ(view.findChild<RoundedTextField*>()->text(), u"My Thirds"_s);
    EXPECT_EQ(canvas().tile(2).readout(), u"33% × 100%"_s);
    EXPECT_TRUE(canvas().tile(3).isHidden());

    click(u"Save Layout"_s);
    click(u"New"_s);
    EXPECT_TRUE(view.findChild<EditingBadge*>()->isHidden());
    choose(u"My Thirds"_s);
    EXPECT_EQ(model().editingLayoutID(), LayoutStore::shared().customLayouts().at(0).id);
    EXPECT_FALSE(view.findChild<EditingBadge*>()->isHidden());
    EXPECT_NE(button(u"Save as New"_s), nullptr);
    EXPECT_NE(button(u"Update Layout"_s), nullptr);
    EXPECT_EQ(button(u"Save Layout"_s), nullptr);
}

TEST_F(LayoutEditorViewTest, WritesWhatIsTypedIntoTheName) {
    auto* field = view.findChild<RoundedTextField*>();
    field->selectAll();
    QTest::keyClicks(field, u" \t "_s);
    turn();
    EXPECT_EQ(model().layoutName(), field->text());
    EXPECT_FALSE(button(u"Save Layout"_s)->isEnabled());
    QTest::keyClicks(field, u"x"_s);
    turn();
    EXPECT_TRUE(button(u"Save Layout"_s)->isEnabled());
}

TEST_F(LayoutEditorViewTest, TurnsSnappingOffAndOn) {
    QTest::mouseClick(view.findChild<ToggleSwitch*>(), Qt::LeftButton);
    turn();
    EXPECT_FALSE(model().snapToEdges());
    EXPECT_FALSE(view.findChild<ToggleSwitch*>()->isOn());
}

TEST_F(LayoutEditorViewTest, AddsAndDeletesZonesByItsButtons) {
    click(u"New"_s);
    click(u"Add Zone"_s);
    EXPECT_EQ(model().zones().size(), 2U);
    EXPECT_TRUE(canvas().tile(1).isSelected());
    EXPECT_TRUE(canvas().tile(1).hasFocus());
    EXPECT_TRUE(button(u"Delete"_s)->isEnabled());
    click(u"Delete"_s);
    EXPECT_EQ(model().zones().size(), 1U);
    EXPECT_TRUE(canvas().tile(1).isHidden());
    EXPECT_FALSE(button(u"Delete"_s)->isEnabled());
    model().select(zone(0).id);
    turn();
    click(u"Delete"_s);
    EXPECT_TRUE(model().zones().empty());
    EXPECT_FALSE(button(u"Save Layout"_s)->isEnabled());
}

TEST_F(LayoutEditorViewTest, JudgesClicksThatComeTogetherByWhatTheOnesBeforeHaveDone) {
    // The loop does not turn between them.
    const auto clickAtOnce = [&](QWidget* control) {
        ASSERT_NE(control, nullptr);
        QTest::mouseClick(control, Qt::LeftButton);
    };
    clickAtOnce(button(u"New"_s));
    clickAtOnce(button(u"Add Zone"_s));
    EXPECT_EQ(model().zones().size(), 2U);
    clickAtOnce(button(u"Delete"_s));
    EXPECT_EQ(model().zones().size(), 1U) << "the added zone was selected";

    auto* snap = view.findChild<ToggleSwitch*>();
    clickAtOnce(snap);
    EXPECT_FALSE(model().snapToEdges());
    clickAtOnce(snap);
    EXPECT_TRUE(model().snapToEdges());

    model().select(zone(0).id);
    clickAtOnce(button(u"Delete"_s));
    EXPECT_TRUE(model().zones().empty());
    clickAtOnce(button(u"Save Layout"_s));
    EXPECT_TRUE(LayoutStore::shared().customLayouts().empty()) << "there is nothing to save";
    clickAtOnce(button(u"New"_s));
    clickAtOnce(button(u"Save Layout"_s));
    EXPECT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
}

TEST_F(LayoutEditorViewTest, ShowsAToastAndTakesItAway) {
    auto* toast = view.findChild<EditorToast*>();
    EXPECT_TRUE(toast->isHidden());
    click(u"Add Zone"_s);
    EXPECT_FALSE(toast->isHidden());
    EXPECT_EQ(toast->shownText(), u"No space for another zone"_s);
    EXPECT_EQ(toast->accessibleName(), u"No space for another zone"_s);

    click(u"Save Layout"_s);
    EXPECT_EQ(toast->shownText(), u"Layout saved"_s);
    desktop.platform.fakeMainLoop.advance(1800ms);
    turn();
    EXPECT_TRUE(toast->isHidden());
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
}

TEST_F(LayoutEditorViewTest, LetsTheToastComeAndGoOnASpring) {
    look::setPrefersReducedMotion(false);
    auto* toast = view.findChild<EditorToast*>();
    click(u"Save Layout"_s);
    EXPECT_LT(toast->y(), 0);
    desktop.platform.fakeMainLoop.advance(1s);
    turn();
    const int inPlace = toast->y();
    EXPECT_GE(inPlace, -2);
    desktop.platform.fakeMainLoop.advance(850ms);
    EXPECT_FALSE(toast->isHidden());
    EXPECT_LT(toast->y(), inPlace);
    desktop.platform.fakeMainLoop.advance(2s);
    EXPECT_TRUE(toast->isHidden());
}

TEST_F(LayoutEditorViewTest, ShortensTheMiddleOfAMessageThatIsTooWide) {
    model().showToast(u"“"_s + QString(200, u'x') + u"” already exists"_s, true);
    turn();
    const auto* toast = view.findChild<EditorToast*>();
    EXPECT_TRUE(toast->shownText().endsWith(u"already exists"_s));
    EXPECT_GE(toast->x(), 0);
    EXPECT_LE(toast->geometry().right(), view.width());
}

TEST_F(LayoutEditorViewTest, SelectsAZoneByATap) {
    tap(point(0.3, 0.3));
    EXPECT_TRUE(model().isSelected(0));
    tap(point(0.8, 0.2));
    EXPECT_TRUE(model().isSelected(1));
    EXPECT_TRUE(canvas().tile(1).hasFocus());
    EXPECT_EQ(model().zones(), ZoneLayout::bentoBox().zones);
}

TEST_F(LayoutEditorViewTest, StartsADragTenPointsFromThePressOnly) {
    load({at(0.2, 0.2, 0.4, 0.4)});
    const QPoint start = point(0.4, 0.4);
    press(start);
    moveTo(start + QPoint(6, 7));
    EXPECT_FALSE(canvas().isDragging());
    EXPECT_EQ(model().selectedID(), std::nullopt);
    EXPECT_EQ(zone(0).x, 0.2);
    moveTo(start + QPoint(6, 8));
    EXPECT_TRUE(canvas().isDragging());
    EXPECT_TRUE(model().isSelected(0));
    release(start + QPoint(6, 8));
    EXPECT_FALSE(canvas().isDragging());
}

TEST_F(LayoutEditorViewTest, MovesAZoneByTheWholeWayFromThePress) {
    model().setSnapToEdges(false);
    load({at(0.2, 0.2, 0.4, 0.4)});
    const QPoint from = point(0.4, 0.4);
    const QPoint to = from + QPoint(60, 30);
    drag(from, to);
    const QSizeF size = canvas().canvasFrame().size();
    EXPECT_NEAR(zone(0).x, 0.2 + 60 / size.width(), 1e-9);
    EXPECT_NEAR(zone(0).y, 0.2 + 30 / size.height(), 1e-9);
}

TEST_F(LayoutEditorViewTest, ResizesBySelectedZonesHandlesBeforeMovingAnything) {
    model().setSnapToEdges(false);
    load({at(0.2, 0.2, 0.4, 0.4), at(0.6, 0.6, 0.2, 0.2)});
    tap(point(0.4, 0.4));
    const QRectF handle = canvas().handle(Corner::bottomRight).circle();
    EXPECT_EQ(handle.width(), 18);
    EXPECT_EQ(handle.height(), 18);
    drag(handle.center().toPoint(), handle.center().toPoint() - QPoint(40, 20));
    const QSizeF size = canvas().canvasFrame().size();
    EXPECT_EQ(zone(0).x, 0.2);
    EXPECT_EQ(zone(0).y, 0.2);
    EXPECT_NEAR(zone(0).width, 0.4 - 40 / size.width(), 1e-9);
    EXPECT_NEAR(zone(0).height, 0.4 - 20 / size.height(), 1e-9);
}

TEST_F(LayoutEditorViewTest, ShowsHandlesOnTheSelectedZoneOnly) {
    for (const Corner corner : ZoneEditorGeometry::allCorners)
        EXPECT_TRUE(canvas().handle(corner).isHidden());
    tap(point(0.3, 0.3));
    const QRectF tile = canvas().tile(0).zoneFrame();
    for (const Corner corner : ZoneEditorGeometry::allCorners) {
        EXPECT_FALSE(canvas().handle(corner).isHidden());
        EXPECT_TRUE(tile.contains(canvas().handle(corner).circle()));
    }
    EXPECT_EQ(canvas().handle(Corner::topLeft).circle().topLeft(), tile.topLeft());
    EXPECT_EQ(canvas().handle(Corner::bottomRight).circle().bottomRight(), tile.bottomRight());
    click(u"Delete"_s);
    EXPECT_TRUE(canvas().handle(Corner::topLeft).isHidden());
}

TEST_F(LayoutEditorViewTest, LeavesTheBodyOfASmallZoneFreeBetweenItsHandles) {
    model().setSnapToEdges(false);
    load({at(0.4, 0.4, 0.05, 0.05)});
    tap(point(0.425, 0.425));
    drag(point(0.425, 0.425), point(0.625, 0.425));
    EXPECT_NEAR(zone(0).x, 0.6, 0.005);
    EXPECT_EQ(zone(0).width, 0.05);
}

TEST_F(LayoutEditorViewTest, SelectsTheTopmostZoneByEveryTapAndTheOthersByTab) {
    load({at(0.1, 0.1, 0.8, 0.8), at(0.2, 0.2, 0.6, 0.6), at(0.3, 0.3, 0.4, 0.4)});
    for (int time = 0; time < 4; ++time) {
        tap(point(0.5, 0.5));
        EXPECT_TRUE(model().isSelected(2)) << time;
    }
    QTest::mouseDClick(&canvas(), Qt::LeftButton, {}, point(0.5, 0.5));
    turn();
    EXPECT_TRUE(model().isSelected(2));
    canvas().tile(0).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&canvas().tile(0), Qt::Key_Space);
    turn();
    EXPECT_TRUE(model().isSelected(0));
    tap(point(0.5, 0.5));
    EXPECT_TRUE(model().isSelected(2)) << "whatever was selected before";
    tap(point(0.25, 0.5));
    EXPECT_TRUE(model().isSelected(1));
}

TEST_F(LayoutEditorViewTest, DragsTheTopmostZone) {
    model().setSnapToEdges(false);
    load({at(0.0, 0.0, 0.7, 0.7), at(0.2, 0.2, 0.3, 0.3)});
    tap(point(0.05, 0.35));
    EXPECT_TRUE(model().isSelected(0));
    drag(point(0.35, 0.35), point(0.45, 0.35));
    EXPECT_TRUE(model().isSelected(1));
    EXPECT_NEAR(zone(1).x, 0.3, 0.005);
    EXPECT_EQ(zone(0).x, 0.0);
}

TEST_F(LayoutEditorViewTest, LetsThePointerShowWhatADragWillDo) {
    load({at(0.1, 0.1, 0.4, 0.4)});
    moveTo(point(0.8, 0.8), Qt::NoButton);
    EXPECT_EQ(canvas().cursor().shape(), Qt::ArrowCursor);
    moveTo(point(0.3, 0.3), Qt::NoButton);
    EXPECT_EQ(canvas().cursor().shape(), Qt::OpenHandCursor);
    press(point(0.3, 0.3));
    EXPECT_EQ(canvas().cursor().shape(), Qt::ClosedHandCursor);
    release(point(0.3, 0.3));
    EXPECT_EQ(canvas().cursor().shape(), Qt::OpenHandCursor);
    const std::pair<Corner, Qt::CursorShape> shapes[] = {
        {Corner::topLeft, Qt::SizeFDiagCursor},
        {Corner::topRight, Qt::SizeBDiagCursor},
        {Corner::bottomLeft, Qt::SizeBDiagCursor},
        {Corner::bottomRight, Qt::SizeFDiagCursor}};
    for (const auto& [corner, shape] : shapes) {
        moveTo(canvas().handle(corner).circle().center().toPoint(), Qt::NoButton);
        EXPECT_EQ(canvas().cursor().shape(), shape);
    }
}

TEST_F(LayoutEditorViewTest, IgnoresOtherButtons) {
    QTest::mouseClick(&canvas(), Qt::RightButton, {}, point(0.3, 0.3));
    turn();
    EXPECT_EQ(model().selectedID(), std::nullopt);
}

TEST_F(LayoutEditorViewTest, UndoesADragOnEscape) {
    load({at(0.1, 0.1, 0.4, 0.4)});
    press(point(0.3, 0.3));
    moveTo(point(0.6, 0.6));
    ASSERT_GT(zone(0).x, 0.2);
    QTest::keyClick(&canvas().tile(0), Qt::Key_Escape);
    turn();
    EXPECT_EQ(zone(0).x, 0.1);
    moveTo(point(0.7, 0.7));
    release(point(0.7, 0.7));
    EXPECT_EQ(zone(0).x, 0.1);
}

TEST_F(LayoutEditorViewTest, MovesByArrowKeysWithoutSnapping) {
    load({at(0.0, 0.0, 0.4, 0.4)});
    QTest::keyClick(&canvas().tile(0), Qt::Key_Right);
    turn();
    EXPECT_NEAR(zone(0).x, 0.01, 1e-9);
    EXPECT_TRUE(model().isSelected(0));
    QTest::keyClick(&canvas().tile(0), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_NEAR(zone(0).y, 0.05, 1e-9);
    QTest::keyClick(&canvas().tile(0), Qt::Key_Left);
    QTest::keyClick(&canvas().tile(0), Qt::Key_Up);
    EXPECT_NEAR(zone(0).x, 0.0, 1e-9);
    EXPECT_NEAR(zone(0).y, 0.04, 1e-9);
}

TEST_F(LayoutEditorViewTest, MovesACornerByArrowKeysOnItsHandle) {
    load({at(0.2, 0.2, 0.4, 0.4)});
    QTest::keyClick(&canvas().tile(0), Qt::Key_Space);
    turn();
    ASSERT_TRUE(model().isSelected(0));
    QTest::keyClick(&canvas().handle(Corner::topLeft), Qt::Key_Left);
    QTest::keyClick(&canvas().handle(Corner::topLeft), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(zone(0).x, 0.19, 1e-9);
    EXPECT_NEAR(zone(0).width, 0.41, 1e-9);
    EXPECT_NEAR(zone(0).y, 0.15, 1e-9);
    EXPECT_NEAR(zone(0).height, 0.45, 1e-9);
}

TEST_F(LayoutEditorViewTest, DeletesTheSelectedZoneByKeyButNoneThatOnlyHasTheFocus) {
    load({at(0, 0, 0.3, 1), at(0.3, 0, 0.3, 1)});
    QTest::keyClick(&canvas().tile(1), Qt::Key_Delete);
    turn();
    EXPECT_EQ(model().zones().size(), 2U);
    QTest::keyClick(&canvas().tile(1), Qt::Key_Return);
    QTest::keyClick(&canvas().tile(1), Qt::Key_Delete);
    turn();
    ASSERT_EQ(model().zones().size(), 1U);
    EXPECT_EQ(zone(0).x, 0);
}

TEST_F(LayoutEditorViewTest, KeepsTheFocusOnTheCanvasWhenTheLastZoneGoes) {
    load({at(0, 0, 0.3, 1), at(0.3, 0, 0.3, 1)});
    model().select(zone(1).id);
    turn();
    canvas().tile(1).setFocus();
    QTest::keyClick(&canvas().tile(1), Qt::Key_Delete);
    turn();
    EXPECT_TRUE(canvas().tile(0).hasFocus());
}

TEST_F(LayoutEditorViewTest, LeadsTabFromTheNameThroughZonesAndHandlesToTheSaveButton) {
    load({at(0, 0, 0.3, 1), at(0.3, 0, 0.3, 1)});
    model().select(zone(0).id);
    turn();
    std::vector<QWidget*> order;
    view.findChild<RoundedTextField*>()->setFocus();
    QWidget* widget = view.findChild<RoundedTextField*>();
    for (int step = 0; step < 20; ++step) {
        order.push_back(widget);
        QTest::keyClick(widget, Qt::Key_Tab);
        widget = QApplication::focusWidget();
        ASSERT_NE(widget, nullptr);
        if (widget == order.front())
            break;
    }
    const std::vector<QWidget*> expected{view.findChild<RoundedTextField*>(),
                                         button(u"Open"_s),
                                         button(u"New"_s),
                                         view.findChild<ToggleSwitch*>(),
                                         &canvas().tile(0),
                                         &canvas().handle(Corner::topLeft),
                                         &canvas().handle(Corner::topRight),
                                         &canvas().handle(Corner::bottomLeft),
                                         &canvas().handle(Corner::bottomRight),
                                         &canvas().tile(1),
                                         button(u"Add Zone"_s),
                                         button(u"Delete"_s),
                                         button(u"Save as New"_s),
                                         button(u"Update Layout"_s)};
    EXPECT_EQ(order, expected);
}

TEST_F(LayoutEditorViewTest, NamesZonesAndHandlesForAssistiveTools) {
    click(u"New"_s);
    click(u"Add Zone"_s);
    auto* tile = QAccessible::queryAccessibleInterface(&canvas().tile(1));
    ASSERT_NE(tile, nullptr);
    EXPECT_EQ(tile->text(QAccessible::Name), u"Zone 2, 50 % × 100 %"_s);
    EXPECT_EQ(tile->role(), QAccessible::ListItem);
    EXPECT_TRUE(tile->state().selected);
    auto* other = QAccessible::queryAccessibleInterface(&canvas().tile(0));
    EXPECT_FALSE(other->state().selected);
    EXPECT_TRUE(other->state().selectable);
    other->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    turn();
    EXPECT_TRUE(model().isSelected(0));

    auto* handle = QAccessible::queryAccessibleInterface(&canvas().handle(Corner::topRight));
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->text(QAccessible::Name), u"Top right corner"_s);
    EXPECT_EQ(handle->text(QAccessible::Description), u"Zone 1, 50 % × 100 %"_s);
    EXPECT_EQ(handle->role(), QAccessible::Button);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&canvas())->role(), QAccessible::List);
}

TEST_F(LayoutEditorViewTest, HasOnlyTheTilesInUseForAssistiveTools) {
    choose(u"Quadrants"_s);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&canvas());
    ASSERT_EQ(list->childCount(), 4) << "no zone is selected, so there are no handles";
    choose(u"Halves"_s);
    ASSERT_EQ(list->childCount(), 2);
    for (int index = 0; index < 2; ++index) {
        EXPECT_FALSE(list->child(index)->state().invisible);
        EXPECT_EQ(list->indexOfChild(list->child(index)), index);
    }
    EXPECT_EQ(list->child(2), nullptr);
    EXPECT_EQ(list->indexOfChild(QAccessible::queryAccessibleInterface(&canvas().tile(1))), 1);
    tap(point(0.25, 0.5));
    EXPECT_EQ(list->childCount(), 2 + 4) << "the handles of the selected zone";
}

TEST_F(LayoutEditorViewTest, NamesANamelessZoneByItsPlace) {
    load({{QUuid::createUuid(), {}, 0, 0, 0.5, 1}});
    EXPECT_EQ(canvas().tile(0).accessibleName(), u"Zone 1, 50 % × 100 %"_s);
}

TEST_F(LayoutEditorViewTest, ClipsNothingAtTwiceTheFontSize) {
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPixelSize(26);
    QApplication::setFont(large);
    QApplication::processEvents();
    choose(u"Quadrants"_s);
    click(u"Save Layout"_s);
    QApplication::processEvents();

    std::vector<QWidget*> controls{view.findChild<RoundedTextField*>(),
                                   view.findChild<EditingBadge*>(),
                                   view.findChild<ToggleSwitch*>()};
    for (GlassButton* candidate : view.findChildren<GlassButton*>())
        controls.push_back(candidate);
    for (const QWidget* control : controls) {
        EXPECT_TRUE(view.rect().contains(control->geometry()));
        EXPECT_GE(control->width(), control->minimumSizeHint().width());
        EXPECT_GE(control->height(), control->sizeHint().height());
        for (const QWidget* other : controls)
            EXPECT_TRUE(control == other || !control->geometry().intersects(other->geometry()));
    }
    for (std::size_t index = 0; index < 4; ++index) {
        EXPECT_TRUE(QRectF(canvas().rect()).contains(canvas().tile(index).readoutFrame()));
        EXPECT_TRUE(canvas().tile(index).zoneFrame().contains(canvas().tile(index).readoutFrame()));
    }
    QApplication::setFont(before);
}

TEST_F(LayoutEditorViewTest, ShowsZonesOfAnyNumbersWithoutHarm) {
    load({at(-3, -3, 1e12, 1e12), at(0.5, 0.5, -0.2, 0.3), at(1e300, 0, 0.5, 0.5), at(0, 0, 0, 0)});
    EXPECT_FALSE(view.grab().isNull());
    tap(point(0.5, 0.5));
    EXPECT_TRUE(model().isSelected(0));
    EXPECT_FALSE(view.grab().isNull());
}

TEST_F(LayoutEditorViewTest, DropsTheDragOfAZoneThatGoesAwayUnderThePointer) {
    load({at(0.1, 0.1, 0.4, 0.4)});
    press(point(0.3, 0.3));
    moveTo(point(0.5, 0.5));
    model().deleteSelected();
    moveTo(point(0.6, 0.6));
    release(point(0.6, 0.6));
    EXPECT_TRUE(model().zones().empty());
}

TEST_F(LayoutEditorViewTest, EndsADragWhoseReleaseWentElsewhere) {
    press(point(0.3, 0.3));
    moveTo(point(0.4, 0.4));
    ASSERT_TRUE(canvas().isDragging());
    moveTo(point(0.6, 0.6), Qt::NoButton);
    EXPECT_FALSE(canvas().isDragging());
    const Zone left = zone(0);
    moveTo(point(0.8, 0.8), Qt::NoButton);
    EXPECT_EQ(zone(0), left) << "it follows the pointer no more";
}

TEST_F(LayoutEditorViewTest, PaintsTheSelectedTileStrongerThanTheOthers) {
    load({at(0, 0, 0.5, 1), at(0.5, 0, 0.5, 1)});
    model().select(zone(1).id);
    turn();
    const QImage image = canvas().grab().toImage().convertToFormat(QImage::Format_RGB32);
    const double ratio = image.devicePixelRatio();
    const QColor plain = image.pixelColor(QPointF(point(0.25, 0.25)).toPoint() * ratio);
    const QColor selected = image.pixelColor(QPointF(point(0.75, 0.25)).toPoint() * ratio);
    const auto distance = [](const QColor& a, const QColor& b) {
        return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
               std::abs(a.blue() - b.blue());
    };
    const QColor amber = look::tilewrightAmber();
    EXPECT_LT(distance(selected, amber) + 10, distance(plain, amber));
}

TEST_F(LayoutEditorViewTest, TheMenuNamesLayoutsWhole) {
    const QString name = u"The layout for the large display at the window, mornings and evenings"_s;
    LayoutStore::shared().addCustomLayout({QUuid::createUuid(), name, {}, false, {}});
    LayoutStore::shared().addCustomLayout(
        {QUuid::createUuid(), u"One\nTwo\tThree"_s, {}, false, {}});
    LayoutStore::shared().addCustomLayout(
        {QUuid::createUuid(), QString(10'000, u'm'), {}, false, {}});
    QStringList titles;
    for (const QAction* action : openMenu())
        titles.append(action->text());
    EXPECT_TRUE(titles.contains(name)) << titles.join(u'|').toStdString();
    EXPECT_TRUE(titles.contains(u"One Two Three"_s));
    QMenu* menu = button(u"Open"_s)->menu();
    EXPECT_LE(menu->sizeHint().width(), view.screen()->availableGeometry().width());
}

TEST_F(LayoutEditorViewTest, TheMenuOpensBesideItsButtonTheFirstTimeToo) {
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        LayoutEditorView editor;
        editor.setLayoutDirection(direction);
        editor.setGeometry(200, 100, 520, 400);
        editor.show();
        QApplication::processEvents();
        GlassButton* open = nullptr;
        for (GlassButton* candidate : editor.findChildren<GlassButton*>())
            open = candidate->menu() ? candidate : open;
        ASSERT_NE(open, nullptr);
        QTest::mousePress(open, Qt::LeftButton);
        ASSERT_TRUE(open->menu()->isVisible());
        const QRect place(open->mapToGlobal(QPoint()), open->size());
        const QRect menu = open->menu()->geometry();
        if (direction == Qt::LeftToRight)
            EXPECT_EQ(menu.left(), place.left());
        else
            EXPECT_EQ(menu.right(), place.right());
        EXPECT_GE(menu.top(), place.bottom());
        open->menu()->close();
    }
}

TEST_F(LayoutEditorViewTest, ShiftAndF10OpenTheNamesContextMenu) {
    auto* field = view.findChild<RoundedTextField*>();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->close();
}

} // namespace
} // namespace tilewright
