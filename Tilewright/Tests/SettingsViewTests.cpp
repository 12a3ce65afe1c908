#include "ActiveWindow.h"
#include "SnapFixture.h"

#include <Tilewright/AccessibilitySettingsView.h>
#include <Tilewright/GeneralSettingsView.h>
#include <Tilewright/SettingsView.h>
#include <Tilewright/SymbolTabBar.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/LayoutManagerView.h>
#include <TilewrightUI/PopUpButton.h>
#include <TilewrightUI/SymbolView.h>
#include <TilewrightUI/TextLabel.h>

#include <QAccessible>
#include <QApplication>
#include <QLayout>
#include <QScrollBar>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;
using Tab = SettingsView::Tab;

class SettingsViewTest : public ::testing::Test {
protected:
    SettingsViewTest() { look::setPrefersReducedMotion(false); }

    void settle() {
        desktop.platform.fakeMainLoop.runPosted();
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
    [[nodiscard]] std::size_t timers() const {
        return desktop.platform.fakeMainLoop.activeTimerCount();
    }

    FakeDesktop desktop;
};

/// Whether any pixel of a widget has exactly this colour.
bool shows(QWidget& widget, const QColor& color) {
    const QImage picture = widget.grab().toImage();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y).rgb() == color.rgb())
                return true;
        }
    }
    return false;
}

class SnapWhileSettingsAreOpen : public SnapFixture {};

TEST_F(SettingsViewTest, HasFourTabsInOrderAndStartsAtTheLayouts) {
    const SettingsView view;
    const auto* bar = view.findChild<SymbolTabBar*>();
    ASSERT_EQ(bar->count(), 4);
    EXPECT_EQ(bar->tabText(0), QStringLiteral("Layouts"));
    EXPECT_EQ(bar->tabText(1), QStringLiteral("Manage"));
    EXPECT_EQ(bar->tabText(2), QStringLiteral("General"));
    EXPECT_EQ(bar->tabText(3), QStringLiteral("Accessibility"));
    EXPECT_EQ(bar->tabSymbol(0), QStringLiteral("square.grid.2x2"));
    EXPECT_EQ(bar->tabSymbol(1), QStringLiteral("list.bullet.rectangle"));
    EXPECT_EQ(bar->tabSymbol(2), QStringLiteral("gearshape"));
    EXPECT_EQ(bar->tabSymbol(3), QStringLiteral("accessibility"));
    EXPECT_EQ(view.selection(), Tab::layouts);
    EXPECT_NE(qobject_cast<LayoutEditorView*>(view.content(Tab::layouts)), nullptr);
    EXPECT_NE(qobject_cast<LayoutManagerView*>(view.content(Tab::manage)), nullptr);
    EXPECT_NE(qobject_cast<GeneralSettingsView*>(view.content(Tab::general)), nullptr);
    EXPECT_NE(qobject_cast<AccessibilitySettingsView*>(view.content(Tab::accessibility)), nullptr);
}

TEST_F(SettingsViewTest, GivesEveryTabContentOf520By460Points) {
    SettingsView view;
    view.show();
    for (const Tab tab : {Tab::layouts, Tab::manage, Tab::general, Tab::accessibility}) {
        view.setSelection(tab);
        settle();
        EXPECT_TRUE(view.content(tab)->isVisible());
        EXPECT_EQ(view.content(tab)->size(), QSize(520, 460));
        EXPECT_EQ(view.width(), 520);
        EXPECT_EQ(view.size(), view.sizeHint());
    }
}

TEST_F(SettingsViewTest, KeepsItsContentWhenTheTabChanges) {
    SettingsView view;
    view.show();
    const QWidget* editor = view.content(Tab::layouts);
    view.setSelection(Tab::general);
    view.setSelection(Tab::layouts);
    EXPECT_EQ(view.content(Tab::layouts), editor);
    EXPECT_TRUE(editor->isVisible());
}

TEST_F(SettingsViewTest, ChangesTheTabByPointerAndKeyboard) {
    SettingsView view;
    view.show();
    makeActive(view);
    auto* bar = view.findChild<SymbolTabBar*>();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(2).center());
    EXPECT_EQ(view.selection(), Tab::general);
    bar->setFocus();
    QTest::keyClick(bar, Qt::Key_Right);
    EXPECT_EQ(view.selection(), Tab::accessibility);
    QTest::keyClick(bar, Qt::Key_Left);
    QTest::keyClick(bar, Qt::Key_Left);
    EXPECT_EQ(view.selection(), Tab::manage);
}

TEST_F(SettingsViewTest, TurnsItsTabsByTheUsualKeysFromWhereverTheFocusIs) {
    SettingsView view;
    view.show();
    makeActive(view);
    for (const Tab tab : {Tab::manage, Tab::general, Tab::accessibility, Tab::layouts}) {
        QTest::keyClick(&view, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(view.selection(), tab);
    }
    QTest::keyClick(&view, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(view.selection(), Tab::accessibility);
}

TEST_F(SettingsViewTest, ShowsTheFocusOfItsTabsToThoseWhoUseTheKeyboard) {
    SettingsView view;
    view.show();
    makeActive(view);
    auto* bar = view.findChild<SymbolTabBar*>();
    // A click is how the window was opened.
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(2, 2));
    bar->setFocus(Qt::ActiveWindowFocusReason);
    ASSERT_TRUE(bar->hasFocus());
    const QImage opened = bar->grab().toImage();
    QTest::keyClick(bar, Qt::Key_Shift);
    const QImage byKeyboard = bar->grab().toImage();
    EXPECT_NE(byKeyboard, opened);
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center());
    EXPECT_NE(bar->grab().toImage(), byKeyboard);
    bar->clearFocus();
    bar->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(bar->grab().toImage(), byKeyboard);
}

TEST_F(SettingsViewTest, LooksForTheViewOfATabWhereItsTitleIs) {
    SettingsView view;
    const auto* bar = view.findChild<SymbolTabBar*>();
    for (const Tab tab : {Tab::accessibility, Tab::general, Tab::manage, Tab::layouts}) {
        view.setSelection(tab);
        EXPECT_EQ(view.selection(), tab);
        EXPECT_EQ(view.content(tab)->accessibleName(), bar->tabText(bar->currentIndex()));
    }
}

TEST_F(SettingsViewTest, ShowsTheTabUnderThePointerAsItWasToldAndDoesNotAskWhereThatIs) {
    SettingsView view;
    view.show();
    auto* bar = view.findChild<SymbolTabBar*>();
    // The events are all that tells of this pointer.
    const auto tell = [bar](QEvent::Type type, QPointF place) {
        QHoverEvent event(type, place, bar->mapToGlobal(place), QPointF(-1, -1));
        QCoreApplication::sendEvent(bar, &event);
    };
    const QImage before = bar->grab().toImage();
    tell(QEvent::HoverMove, bar->tabRect(2).center());
    EXPECT_NE(bar->grab().toImage(), before);
    tell(QEvent::HoverLeave, QPointF(-1, -1));
    EXPECT_EQ(bar->grab().toImage(), before);
}

TEST_F(SettingsViewTest, TellsAssistiveToolsItsTabs) {
    const SettingsView view;
    QAccessibleInterface* bar =
        QAccessible::queryAccessibleInterface(view.findChild<SymbolTabBar*>());
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->role(), QAccessible::PageTabList);
    ASSERT_GE(bar->childCount(), 4);
    EXPECT_EQ(bar->child(1)->role(), QAccessible::PageTab);
    EXPECT_EQ(bar->child(1)->text(QAccessible::Name), QStringLiteral("Manage"));
}

TEST_F(SettingsViewTest, LooksDifferentInLightAndDark) {
    SettingsView view;
    view.show();
    view.setSelection(Tab::general);
    view.setPalette(QPalette(QColor(0xee, 0xee, 0xf1)));
    const QImage light = view.grab().toImage();
    view.setPalette(QPalette(QColor(0x2a, 0x2b, 0x2f)));
    EXPECT_NE(view.grab().toImage(), light);
}

TEST_F(SettingsViewTest, GeneralExplainsTheChosenModifier) {
    const GeneralSettingsView view;
    EXPECT_EQ(
        view.caption()->text(),
        QStringLiteral("Hold ⌃ (control) and drag a window to snap it into a zone. Assign a layout "
                       "per display from the menu bar, or build your own in the Layouts tab."));
    std::vector<QString> titles;
    for (const auto& item : view.modifierPicker()->items())
        titles.push_back(item.title);
    EXPECT_EQ(titles,
              (std::vector<QString>{QStringLiteral("⌃ Control"), QStringLiteral("⇧ Shift"),
                                    QStringLiteral("⌥ Option"), QStringLiteral("⌘ Command")}));
}

TEST_F(SettingsViewTest, GeneralHasItsSectionsBelowEachOtherInTheirStyles) {
    GeneralSettingsView view;
    view.resize(520, 460);
    view.show();
    settle();
    struct Line {
        QString text;
        look::TextStyle style;
        TextLabel::Importance importance;
    };
    using enum TextLabel::Importance;
    const std::vector<Line> lines{
        {QStringLiteral("Keep Awake"), look::TextStyle::headline, primary},
        {QStringLiteral("Configure default session durations in the menu bar."),
         look::TextStyle::caption, secondary},
        {QStringLiteral("Window Zones"), look::TextStyle::headline, primary},
        {QStringLiteral("Snap modifier"), look::TextStyle::body, primary},
        {view.caption()->text(), look::TextStyle::caption, secondary},
    };
    auto labels = view.findChildren<TextLabel*>();
    std::sort(labels.begin(), labels.end(), [&](const TextLabel* a, const TextLabel* b) {
        return a->mapTo(&view, QPoint()).y() < b->mapTo(&view, QPoint()).y();
    });
    ASSERT_EQ(static_cast<std::size_t>(labels.size()), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const TextLabel* label = labels[static_cast<qsizetype>(i)];
        EXPECT_EQ(label->text(), lines[i].text);
        EXPECT_EQ(label->style(), lines[i].style) << label->text().toStdString();
        EXPECT_EQ(label->importance(), lines[i].importance) << label->text().toStdString();
    }
    // The choice is on the row of its name.
    EXPECT_EQ(view.modifierPicker()->mapTo(&view, view.modifierPicker()->rect().center()).y() / 8,
              labels[3]->mapTo(&view, labels[3]->rect().center()).y() / 8);
}

TEST_F(SettingsViewTest, GeneralSaysWhichKeyThisDesktopsKeyboardsMean) {
    desktop.platform.fakeKeyNames.names = {{ModifierFlag::option, QStringLiteral("Alt")}};
    GeneralSettingsView view;
    view.resize(520, 460);
    view.show();
    settle();
    EXPECT_EQ(view.localName(), nullptr);
    EXPECT_EQ(view.modifierPicker()->accessibleDescription(), QStringLiteral("Snap modifier"));
    SnapSettings::shared().setModifier(SnapModifier::option);
    settle();
    ASSERT_NE(view.localName(), nullptr);
    EXPECT_EQ(view.localName()->text(), QStringLiteral("Alt"));
    EXPECT_EQ(view.localName()->importance(), TextLabel::Importance::secondary);
    EXPECT_EQ(view.modifierPicker()->accessibleDescription(), QStringLiteral("Snap modifier: Alt"));
    EXPECT_EQ(view.modifierPicker()->currentText(), QStringLiteral("⌥ Option")) << "as ever";
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        view.setLayoutDirection(direction);
        settle();
        const QRect word = view.localName()->geometry();
        const QRect choice = view.modifierPicker()->geometry();
        const int gap = direction == Qt::LeftToRight ? choice.left() - word.right() - 1
                                                     : word.left() - choice.right() - 1;
        EXPECT_GE(gap, 4) << "before the choice, in reading order";
        EXPECT_LE(gap, 16);
    }
    SnapSettings::shared().setModifier(SnapModifier::shift);
    settle();
    EXPECT_EQ(view.localName(), nullptr);
    EXPECT_EQ(view.modifierPicker()->accessibleDescription(), QStringLiteral("Snap modifier"));
}

TEST_F(SettingsViewTest, ScrollsItsContentsOnADisplayThatIsLow) {
    SettingsView view;
    view.show();
    settle();
    const QSize whole = view.size();
    EXPECT_EQ(whole.width(), SettingsView::contentSize.width());
    EXPECT_EQ(view.content(SettingsView::Tab::layouts)->size(), SettingsView::contentSize);
    view.limitHeight(400);
    settle();
    EXPECT_EQ(view.size(), QSize(whole.width(), 400));
    QWidget* editor = view.content(SettingsView::Tab::layouts);
    EXPECT_EQ(editor->height(), SettingsView::contentSize.height()) << "nothing is squeezed";
    // The last control is below the edge, and the focus brings it up.
    QWidget* last = nullptr;
    for (auto* each : editor->findChildren<QAbstractButton*>()) {
        if (each->isVisibleTo(editor) &&
            (!last || each->mapTo(&view, QPoint()).y() > last->mapTo(&view, QPoint()).y()))
            last = each;
    }
    ASSERT_NE(last, nullptr);
    const auto isInView = [&] {
        return view.rect().contains(QRect(last->mapTo(&view, QPoint()), last->size()));
    };
    EXPECT_FALSE(isInView());
    makeActive(view);
    last->setFocus(Qt::TabFocusReason);
    settle();
    EXPECT_TRUE(isInView());
    view.limitHeight(2000);
    settle();
    EXPECT_EQ(view.size(), whole);
    EXPECT_EQ(editor->size(), SettingsView::contentSize);
}

TEST_F(SettingsViewTest, ATabThatScrollsByItselfHasOneBarWhereThereIsLessRoom) {
    SettingsView view;
    view.show();
    view.limitHeight(400);
    const auto barsOf = [&](SettingsView::Tab tab) {
        view.setSelection(tab);
        settle();
        int bars = 0;
        for (const QScrollBar* bar : view.findChildren<QScrollBar*>())
            bars += bar->orientation() == Qt::Vertical && bar->isVisible();
        return bars;
    };
    EXPECT_EQ(barsOf(SettingsView::Tab::manage), 1);
    EXPECT_EQ(view.height(), 400);
    EXPECT_LT(view.content(SettingsView::Tab::manage)->height(), 400);
    EXPECT_EQ(barsOf(SettingsView::Tab::layouts), 1);
    EXPECT_EQ(view.content(SettingsView::Tab::layouts)->height(),
              SettingsView::contentSize.height());
    EXPECT_EQ(barsOf(SettingsView::Tab::manage), 1);
}

TEST_F(SettingsViewTest, ATabThatFitsHasNoBarWhereThereIsLessRoom) {
    SettingsView view;
    view.show();
    view.limitHeight(400);
    for (const auto tab : {SettingsView::Tab::general, SettingsView::Tab::accessibility}) {
        view.setSelection(tab);
        settle();
        for (const QScrollBar* bar : view.findChildren<QScrollBar*>())
            EXPECT_FALSE(bar->isVisible());
        EXPECT_EQ(view.height(), 400);
        EXPECT_EQ(view.content(tab)->width(), SettingsView::contentSize.width());
        EXPECT_LT(view.content(tab)->height(), 400);
    }
}

TEST_F(SettingsViewTest, ATabThatNoLongerFitsScrollsAtOnce) {
    SettingsView view;
    view.show();
    view.limitHeight(400);
    view.setSelection(SettingsView::Tab::general);
    settle();
    QWidget* page = view.content(SettingsView::Tab::general);
    QMargins margins = page->layout()->contentsMargins();
    margins.setBottom(margins.bottom() + 300);
    page->layout()->setContentsMargins(margins);
    settle();
    EXPECT_EQ(page->height(), SettingsView::contentSize.height());
    EXPECT_LT(page->width(), SettingsView::contentSize.width()) << "there is a bar beside it";
    EXPECT_EQ(view.height(), 400);
}

TEST_F(SettingsViewTest, GeneralStoresAChoiceAtOnceAndFollowsIt) {
    GeneralSettingsView view;
    view.show();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(view.modifierPicker(), Qt::Key_Down);
    EXPECT_EQ(SnapSettings::shared().modifier(), SnapModifier::command);
    EXPECT_EQ(desktop.platform.fakeUserDefaults.values[QStringLiteral("snapActivationModifier")],
              QStringLiteral("command"));
    settle();
    EXPECT_TRUE(view.caption()->text().startsWith(QStringLiteral("Hold ⌘ (command) and drag")));
}

TEST_F(SnapWhileSettingsAreOpen, ChoosingCommandChangesTheCaptionAndTheNextDragUsesItsKey) {
    GeneralSettingsView view;
    view.show();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(view.modifierPicker(), Qt::Key_Down);
    platform.fakeMainLoop.runPosted();
    EXPECT_TRUE(view.caption()->text().startsWith(QStringLiteral("Hold ⌘ (command) and drag")));
    pressModifier();
    dragTo(inPrimary);
    EXPECT_FALSE(isOverlayShown()) << "by the former key";
    release();
    releaseModifier();
    flags({ModifierFlag::command});
    dragTo(inPrimary);
    EXPECT_TRUE(isOverlayShown());
    release();
}

TEST_F(SettingsViewTest, GeneralFollowsAChangeFromElsewhere) {
    const GeneralSettingsView view;
    SnapSettings::shared().setModifier(SnapModifier::shift);
    settle();
    EXPECT_EQ(view.modifierPicker()->selectedID(), QStringLiteral("shift"));
    EXPECT_TRUE(view.caption()->text().startsWith(QStringLiteral("Hold ⇧ (shift)")));
}

TEST_F(SettingsViewTest, GeneralChangesNothingByScrollingOverThePicker) {
    GeneralSettingsView view;
    view.show();
    QWheelEvent event(QPointF(5, 5), view.modifierPicker()->mapToGlobal(QPointF(5, 5)), QPoint(),
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.modifierPicker(), &event);
    EXPECT_EQ(SnapSettings::shared().modifier(), SnapModifier::control);
    EXPECT_TRUE(desktop.platform.fakeUserDefaults.writes.empty());
}

TEST_F(SettingsViewTest, TellsWhichTabIsChosenAndWhetherItHasTheFocus) {
    SettingsView view;
    view.show();
    makeActive(view);
    auto* bar = view.findChild<SymbolTabBar*>();
    QAccessibleInterface* row = QAccessible::queryAccessibleInterface(bar);
    EXPECT_EQ(row->role(), QAccessible::PageTabList);
    ASSERT_EQ(row->childCount(), 4);
    view.setSelection(Tab::general);
    for (const bool hasFocus : {true, false}) {
        if (hasFocus)
            bar->setFocus();
        else
            bar->clearFocus();
        for (int index = 0; index < 4; ++index) {
            const QAccessible::State state = row->child(index)->state();
            EXPECT_EQ(row->child(index)->role(), QAccessible::PageTab);
            EXPECT_EQ(state.selected, index == 2) << index;
            EXPECT_EQ(state.focused, index == 2 && hasFocus) << index;
            EXPECT_EQ(row->indexOfChild(row->child(index)), index);
        }
    }
    row->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(view.selection(), Tab::manage);
    EXPECT_EQ(row->child(1)->text(QAccessible::Name), QStringLiteral("Manage"));
    EXPECT_EQ(row->childAt(row->child(3)->rect().center().x(), row->child(3)->rect().center().y()),
              row->child(3));
}

TEST_F(SettingsViewTest, GeneralFitsItsTextsWithLargerFonts) {
    const QFont before = QApplication::font();
    QFont larger = before;
    larger.setPointSizeF(before.pointSizeF() * 1.6);
    QApplication::setFont(larger);
    {
        GeneralSettingsView view;
        view.resize(520, 460);
        view.show();
        settle();
        for (const auto* label : view.findChildren<TextLabel*>()) {
            const int needed = label->wordWrap() ? label->heightForWidth(label->width())
                                                 : label->sizeHint().height();
            EXPECT_GE(label->height(), needed) << label->text().toStdString();
        }
        EXPECT_LE(view.minimumSizeHint().height(), 460);
    }
    QApplication::setFont(before);
}

TEST_F(SettingsViewTest, AccessibilityShowsWhatIsGranted) {
    AccessibilitySettingsView view;
    view.show();
    EXPECT_TRUE(view.isTrusted());
    EXPECT_EQ(view.symbol()->symbol(), QStringLiteral("checkmark.shield.fill"));
    EXPECT_EQ(view.symbol()->size(), QSize(40, 40));
    EXPECT_TRUE(shows(*view.symbol(), look::green(view.palette())));
    EXPECT_FALSE(shows(*view.symbol(), look::orange(view.palette())));
    EXPECT_EQ(view.message()->text(), QStringLiteral("Accessibility access granted."));
    EXPECT_FALSE(view.openSettingsButton()->isVisible());
}

TEST_F(SettingsViewTest, AccessibilityShowsWhatIsMissingAndTheWayToIt) {
    desktop.platform.fakeAccessibility.trusted = false;
    AccessibilitySettingsView view;
    view.show();
    EXPECT_FALSE(view.isTrusted());
    EXPECT_EQ(view.symbol()->symbol(), QStringLiteral("exclamationmark.shield.fill"));
    EXPECT_EQ(view.message()->text(),
              QStringLiteral("Accessibility access is required for window snapping."));
    EXPECT_TRUE(shows(*view.symbol(), look::orange(view.palette())));
    EXPECT_FALSE(shows(*view.symbol(), look::green(view.palette())));
    ASSERT_TRUE(view.openSettingsButton()->isVisible());
    EXPECT_EQ(view.openSettingsButton()->kind(), GlassButton::Kind::prominent);
    EXPECT_EQ(view.openSettingsButton()->title(),
              QStringLiteral("Open Privacy & Security Settings"));
    view.openSettingsButton()->click();
    EXPECT_EQ(desktop.platform.fakeWorkspace.settingsOpened, 1);
    EXPECT_EQ(desktop.platform.fakeAccessibility.trustRequests, 0);
}

TEST_F(SettingsViewTest, AccessibilityReadsAfreshWhenTheDesktopTellsOfAChange) {
    AccessibilitySettingsView view;
    desktop.platform.fakeAccessibility.changeTrust(false);
    EXPECT_EQ(view.message()->text(),
              QStringLiteral("Accessibility access is required for window snapping."));
    desktop.platform.fakeAccessibility.changeTrust(true);
    EXPECT_EQ(view.message()->text(), QStringLiteral("Accessibility access granted."));
}

TEST_F(SettingsViewTest, AccessibilityLooksEveryTwoSecondsWhileOnScreen) {
    desktop.platform.fakeAccessibility.trusted = false;
    AccessibilitySettingsView view;
    EXPECT_EQ(timers(), 0U);
    view.show();
    EXPECT_EQ(timers(), 1U);
    desktop.platform.fakeAccessibility.trusted = true;
    desktop.platform.fakeMainLoop.advance(1999ms);
    EXPECT_FALSE(view.isTrusted());
    desktop.platform.fakeMainLoop.advance(1ms);
    EXPECT_TRUE(view.isTrusted());
    EXPECT_FALSE(view.openSettingsButton()->isVisible());
    desktop.platform.fakeAccessibility.trusted = false;
    desktop.platform.fakeMainLoop.advance(2s);
    EXPECT_FALSE(view.isTrusted());
    EXPECT_EQ(view.symbol()->symbol(), QStringLiteral("exclamationmark.shield.fill"));
    EXPECT_TRUE(shows(*view.symbol(), look::orange(view.palette())));
    EXPECT_TRUE(view.openSettingsButton()->isVisible());
    view.hide();
    EXPECT_EQ(timers(), 0U);
    EXPECT_EQ(desktop.platform.fakeAccessibility.trustRequests, 0);
}

TEST_F(SettingsViewTest, RevokingAccessWhileTheTabIsShownBringsTheWarningBackWithinTwoSeconds) {
    SettingsView view;
    view.setSelection(Tab::accessibility);
    view.show();
    const auto* tab = qobject_cast<AccessibilitySettingsView*>(view.content(Tab::accessibility));
    ASSERT_NE(tab, nullptr);
    EXPECT_FALSE(tab->openSettingsButton()->isVisible());
    desktop.platform.fakeAccessibility.trusted = false;
    desktop.platform.fakeMainLoop.advance(2s);
    EXPECT_EQ(tab->message()->text(),
              QStringLiteral("Accessibility access is required for window snapping."));
    EXPECT_EQ(tab->symbol()->symbol(), QStringLiteral("exclamationmark.shield.fill"));
    EXPECT_TRUE(tab->openSettingsButton()->isVisible());
    EXPECT_EQ(desktop.platform.fakeAccessibility.trustRequests, 0);
}

TEST_F(SettingsViewTest, AccessibilityLooksOnlyWhileItsTabIsShown) {
    SettingsView view;
    view.show();
    settle();
    EXPECT_EQ(timers(), 0U);
    view.setSelection(Tab::accessibility);
    EXPECT_EQ(timers(), 1U);
    view.setSelection(Tab::manage);
    EXPECT_EQ(timers(), 0U);
    view.setSelection(Tab::accessibility);
    view.showMinimized();
    QApplication::processEvents();
    EXPECT_EQ(timers(), 0U);
    view.showNormal();
    QApplication::processEvents();
    EXPECT_EQ(timers(), 1U);
    view.close();
    EXPECT_EQ(timers(), 0U);
}

TEST_F(SettingsViewTest, AccessibilityCentresItsPartsSixteenPointsApart) {
    desktop.platform.fakeAccessibility.trusted = false;
    AccessibilitySettingsView view;
    view.resize(520, 460);
    view.show();
    settle();
    const QRect symbol = view.symbol()->geometry();
    const QRect text = view.message()->geometry();
    const QRect button = view.openSettingsButton()->geometry();
    EXPECT_EQ(text.top() - (symbol.bottom() + 1), 16);
    EXPECT_EQ(button.top() - (text.bottom() + 1), 16);
    EXPECT_NEAR(symbol.center().x(), 259.5, 1);
    EXPECT_NEAR(button.center().x(), 259.5, 1);
    EXPECT_NEAR(symbol.top(), 460 - (button.bottom() + 1), 1);
}

} // namespace
} // namespace tilewright::testing
