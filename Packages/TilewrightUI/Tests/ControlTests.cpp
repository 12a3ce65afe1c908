#include <TilewrightUI/FocusVisibility.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/PopUpButton.h>
#include <TilewrightUI/SlimScrollArea.h>
#include <TilewrightUI/SlimScrollBar.h>
#include <TilewrightUI/TextLabel.h>
#include <TilewrightUI/ToggleSwitch.h>

#include "ActiveWindow.h"
#include "FakePlatform.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <Waiting.h>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

QAccessibleInterface* accessible(QObject& object) {
    return QAccessible::queryAccessibleInterface(&object);
}

class Controls : public ::testing::Test {
protected:
    Controls() { look::setPrefersReducedMotion(false); }

    FakeDesktop desktop;
};

TEST_F(Controls, ASwitchAsksForTheOtherStateAndShowsTheModels) {
    ToggleSwitch toggle(QStringLiteral("Keep Awake"));
    QSignalSpy requests(&toggle, &ToggleSwitch::toggleRequested);
    toggle.click();
    ASSERT_EQ(requests.count(), 1);
    EXPECT_TRUE(requests.at(0).at(0).toBool());
    EXPECT_FALSE(toggle.isOn());
    toggle.setOn(true);
    EXPECT_TRUE(toggle.isOn());
    EXPECT_EQ(requests.count(), 1);
    toggle.click();
    ASSERT_EQ(requests.count(), 2);
    EXPECT_FALSE(requests.at(1).at(0).toBool());
    EXPECT_TRUE(toggle.isOn());
}

TEST_F(Controls, ASwitchAnswersToSpaceAndEnter) {
    ToggleSwitch toggle(QStringLiteral("Keep Awake"));
    QSignalSpy requests(&toggle, &ToggleSwitch::toggleRequested);
    for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
        QTest::keyClick(&toggle, key);
    EXPECT_EQ(requests.count(), 3);
}

TEST_F(Controls, ShowTheFocusToThoseWhoUseTheKeyboard) {
    QWidget window;
    auto* first = new ToggleSwitch(QStringLiteral("Keep Awake"), &window);
    auto* second = new GlassButton(QStringLiteral("Quit"), GlassButton::Kind::bordered, &window);
    second->move(0, 60);
    window.show();
    makeActive(window);
    QTest::mouseClick(second, Qt::LeftButton);
    second->setFocus(Qt::MouseFocusReason);
    ASSERT_TRUE(second->hasFocus());
    EXPECT_FALSE(look::showsFocus(*second));
    const QImage clicked = second->grab().toImage();
    QTest::keyClick(second, Qt::Key_Shift);
    EXPECT_TRUE(look::showsFocus(*second));
    EXPECT_FALSE(look::showsFocus(*first)) << "it has no focus";
    EXPECT_NE(second->grab().toImage(), clicked);
    QTest::mouseClick(second, Qt::LeftButton);
    EXPECT_FALSE(look::showsFocus(*second));
    first->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(look::showsFocus(*first));
}

TEST_F(Controls, ASwitchSlidesOnScreenAndJumpsOffScreen) {
    ToggleSwitch toggle(QStringLiteral("Keep Awake"));
    toggle.setOn(true);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
    toggle.show();
    const QImage on = toggle.grab().toImage();
    toggle.setOn(false);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 1U);
    EXPECT_EQ(toggle.grab().toImage(), on);
    desktop.platform.fakeMainLoop.advance(64ms);
    const QImage midway = toggle.grab().toImage();
    desktop.platform.fakeMainLoop.advance(2s);
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
    EXPECT_NE(toggle.grab().toImage(), midway);
    EXPECT_NE(toggle.grab().toImage(), on);
    toggle.setOn(true);
    toggle.hide();
    EXPECT_EQ(desktop.platform.fakeMainLoop.activeTimerCount(), 0U);
}

TEST_F(Controls, ASwitchIsACheckBoxToAssistiveTools) {
    ToggleSwitch toggle(QStringLiteral("Keep Awake"));
    QAccessibleInterface* interface = accessible(toggle);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::CheckBox);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Keep Awake"));
    EXPECT_TRUE(interface->state().checkable);
    EXPECT_FALSE(interface->state().checked);
    toggle.setOn(true);
    EXPECT_TRUE(interface->state().checked);
    QSignalSpy requests(&toggle, &ToggleSwitch::toggleRequested);
    ASSERT_NE(interface->actionInterface(), nullptr);
    interface->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    ASSERT_EQ(requests.count(), 1);
    EXPECT_FALSE(requests.at(0).at(0).toBool());
    EXPECT_TRUE(toggle.isOn());
}

TEST_F(Controls, AButtonIsPressedByPointerSpaceAndEnter) {
    GlassButton button(QStringLiteral("15m"));
    QSignalSpy clicks(&button, &QAbstractButton::clicked);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Space);
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_EQ(clicks.count(), 3);
    button.setEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 3);
}

TEST_F(Controls, AButtonsTitleIsPlainText) {
    GlassButton button(QStringLiteral("Save & <b>Go</b>"));
    EXPECT_TRUE(button.shortcut().isEmpty());
    EXPECT_EQ(button.title(), QStringLiteral("Save & <b>Go</b>"));
    QAccessibleInterface* interface = accessible(button);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::Button);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Save & <b>Go</b>"));
}

TEST_F(Controls, AButtonKeepsItsNaturalSizeAndGrowsWithItsContent) {
    GlassButton plain(QStringLiteral("Quit"), GlassButton::Kind::plain);
    GlassButton glass(QStringLiteral("Quit"));
    GlassButton symbol(QStringLiteral("Quit"));
    symbol.setSymbol(QStringLiteral("plus"));
    EXPECT_GT(glass.sizeHint().width(), plain.sizeHint().width());
    EXPECT_GT(symbol.sizeHint().width(), glass.sizeHint().width());
    EXPECT_EQ(symbol.sizeHint().height(), glass.sizeHint().height());
    EXPECT_EQ(glass.minimumSizeHint(), glass.sizeHint());
    EXPECT_EQ(plain.sizeHint().width(),
              qCeil(QFontMetricsF(plain.font()).horizontalAdvance(QStringLiteral("Quit"))));
}

TEST_F(Controls, APlainButtonHasNoBezel) {
    GlassButton button(QStringLiteral("."), GlassButton::Kind::plain);
    button.resize(60, 30);
    const QImage image = button.grab().toImage();
    EXPECT_EQ(image.pixel(2, 2), image.pixel(57, 27));
    EXPECT_EQ(image.pixel(2, 15), button.palette().color(QPalette::Window).rgb());
}

TEST_F(Controls, TheFirstOneShowsTheFocusInAViewThatWasOpenedWithoutThePointer) {
    QWidget window;
    auto* off = new GlassButton(QStringLiteral("Off"), GlassButton::Kind::bordered, &window);
    off->setEnabled(false);
    auto* first = new GlassButton(QStringLiteral("First"), GlassButton::Kind::bordered, &window);
    auto* second = new GlassButton(QStringLiteral("Second"), GlassButton::Kind::bordered, &window);
    first->move(0, 40);
    second->move(0, 80);
    window.show();
    makeActive(window);
    QTest::mouseClick(second, Qt::LeftButton);
    second->setFocus(Qt::MouseFocusReason);
    ASSERT_FALSE(look::showsFocus(*second));
    look::focusFirstControl(window);
    EXPECT_TRUE(look::showsFocus(*first));
}

TEST_F(Controls, AButtonsFocusCanBeSeen) {
    for (const auto kind : {GlassButton::Kind::glass, GlassButton::Kind::prominent,
                            GlassButton::Kind::bordered, GlassButton::Kind::plain}) {
        QWidget window;
        GlassButton button(QStringLiteral("Save"), kind, &window);
        button.resize(button.sizeHint());
        GlassButton other(QStringLiteral("Other"), kind, &window);
        window.show();
        makeActive(window);
        // As who uses the keyboard: whoever clicked last, as in a test before this, sees none.
        other.setFocus(Qt::TabFocusReason);
        const QImage without = button.grab().toImage();
        button.setFocus(Qt::TabFocusReason);
        ASSERT_TRUE(button.hasFocus());
        EXPECT_NE(button.grab().toImage(), without);
    }
}

TEST_F(Controls, AMenuButtonOpensItsMenuWithoutBlocking) {
    GlassButton button(QStringLiteral("Open"));
    auto* menu = new QMenu(&button);
    menu->addAction(QStringLiteral("Halves"));
    const int width = button.sizeHint().width();
    button.setMenu(menu);
    EXPECT_GT(button.sizeHint().width(), width);
    button.show();
    for (const auto key : {Qt::Key_Down, Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&button, key);
        EXPECT_TRUE(menu->isVisible());
        menu->close();
        EXPECT_FALSE(button.isDown());
    }
}

TEST_F(Controls, AssistiveToolsKnowThatAButtonHasAMenuAndOpenIt) {
    GlassButton button(QStringLiteral("Open"));
    auto* menu = new QMenu(&button);
    menu->addAction(QStringLiteral("Halves"));
    button.setMenu(menu);
    button.show();
    QAccessibleInterface* interface = accessible(button);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::ButtonMenu);
    EXPECT_TRUE(interface->state().hasPopup);
    // Qt itself shows it then, at once or in its next turn, and waits within for its end.
    bool wasVisible = false;
    QObject::connect(menu, &QMenu::aboutToShow, menu, [&] {
        QMetaObject::invokeMethod(
            menu,
            [&] {
                wasVisible = menu->isVisible();
                menu->close();
            },
            Qt::QueuedConnection);
    });
    interface->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(waitUntil([&] { return wasVisible; }));
}

TEST_F(Controls, ControlsFollowThePaletteAtOnce) {
    ToggleSwitch toggle(QStringLiteral("x"));
    GlassButton button(QStringLiteral("x"));
    PopUpButton popUp(QStringLiteral("x"));
    Hairline line;
    TextLabel label(QStringLiteral("x"), look::TextStyle::body);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{&toggle, &button, &popUp, &line, &label}) {
        widget->resize(widget->sizeHint().expandedTo(QSize(20, 1)));
        widget->setPalette(QPalette(QColor(0xee, 0xee, 0xf1)));
        const QImage light = widget->grab().toImage();
        widget->setPalette(QPalette(QColor(0x2a, 0x2b, 0x2f)));
        EXPECT_NE(widget->grab().toImage(), light) << widget->metaObject()->className();
    }
}

TEST_F(Controls, ControlsFollowTheApplicationsFont) {
    const QFont before = QApplication::font();
    GlassButton button(QStringLiteral("Save"));
    PopUpButton popUp(QStringLiteral("x"));
    popUp.setItems({{QStringLiteral("a"), QStringLiteral("Studio")}});
    TextLabel label(QStringLiteral("Window Zones"), look::TextStyle::headline);
    std::vector<QWidget*> widgets{&button, &popUp, &label};
    std::vector<QSize> sizes;
    for (QWidget* widget : widgets)
        sizes.push_back(widget->sizeHint());
    QFont large = before;
    large.setPointSizeF(before.pointSizeF() * 2);
    QApplication::setFont(large);
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        EXPECT_GT(widgets[i]->sizeHint().width(), sizes[i].width() * 3 / 2);
        EXPECT_GT(widgets[i]->sizeHint().height(), sizes[i].height());
    }
    QApplication::setFont(before);
}

TEST_F(Controls, APopUpButtonShowsAndSelectsByID) {
    PopUpButton popUp(QStringLiteral("Display"));
    popUp.setItems({{QStringLiteral("a"), QStringLiteral("One")},
                    {QStringLiteral("b"), QStringLiteral("Two")}});
    popUp.select(QStringLiteral("b"));
    EXPECT_EQ(popUp.currentText(), QStringLiteral("Two"));
    popUp.setItems({{QStringLiteral("b"), QStringLiteral("Two")},
                    {QStringLiteral("c"), QStringLiteral("Three")}});
    EXPECT_EQ(popUp.selectedID(), QStringLiteral("b"));
    popUp.select(QString());
    EXPECT_EQ(popUp.currentIndex(), -1);
    EXPECT_EQ(popUp.selectedID(), QString());
    QAccessibleInterface* interface = accessible(popUp);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::ComboBox);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Display"));
}

TEST_F(Controls, APopUpButtonsListShowsTitlesThatTheButtonCutsShort) {
    PopUpButton popUp(QStringLiteral("Display"));
    const QString title = QStringLiteral("A display whose maker was fond of very long names");
    popUp.setItems({{QStringLiteral("a"), title}});
    popUp.setMaximumWidth(130);
    popUp.resize(130, 22);
    popUp.show();
    popUp.showPopup();
    EXPECT_GE(popUp.view()->width(), QFontMetrics(popUp.view()->font()).horizontalAdvance(title));
    EXPECT_EQ(popUp.width(), 130);
    popUp.hidePopup();
}

TEST_F(Controls, APopUpButtonsListStaysInItsWindowWhereItFits) {
    QWidget window;
    window.setGeometry(100, 100, 400, 200);
    auto* popUp = new PopUpButton(QStringLiteral("Key"), &window);
    popUp->setItems({{QStringLiteral("a"), QStringLiteral("A choice of some length")}});
    for (const int x : {380 - 60, 10}) {
        popUp->setGeometry(x, 10, 60, 22);
        window.setLayoutDirection(x > 200 ? Qt::LeftToRight : Qt::RightToLeft);
        window.show();
        popUp->showPopup();
        const QRect list = popUp->view()->window()->geometry();
        EXPECT_GT(list.width(), 100);
        EXPECT_GE(list.left(), 100);
        EXPECT_LE(list.right(), 499);
        popUp->hidePopup();
    }
}

TEST_F(Controls, APopUpButtonTellsOnlyOfTheUsersChoices) {
    PopUpButton popUp(QStringLiteral("Display"));
    popUp.setItems({{QStringLiteral("a"), QStringLiteral("One")},
                    {QStringLiteral("b"), QStringLiteral("Two")}});
    QSignalSpy activations(&popUp, &QComboBox::activated);
    popUp.select(QStringLiteral("a"));
    EXPECT_EQ(activations.count(), 0);
    QTest::keyClick(&popUp, Qt::Key_Down);
    EXPECT_EQ(activations.count(), 1);
    EXPECT_EQ(popUp.selectedID(), QStringLiteral("b"));
}

TEST_F(Controls, LabelsShowPlainText) {
    TextLabel label(QStringLiteral("<b>A</b> & B"), look::TextStyle::caption);
    EXPECT_EQ(label.shownText(), QStringLiteral("<b>A</b> & B"));
    EXPECT_EQ(accessible(label)->text(QAccessible::Name), QStringLiteral("<b>A</b> & B"));
}

TEST_F(Controls, ALabelTellsTheWholeOfATextThatIsCutAndNothingElse) {
    TextLabel label(QStringLiteral("A & B <b>C</b>"), look::TextStyle::caption);
    label.setOverflow(TextLabel::Overflow::elide);
    label.resize(400, 20);
    EXPECT_TRUE(label.toolTipText().isEmpty());
    label.resize(30, 20);
    EXPECT_EQ(label.toolTipText(), QStringLiteral("<qt>A &amp; B &lt;b&gt;C&lt;/b&gt;</qt>"));
}

TEST_F(Controls, LabelsShrinkToEightyPercentBeforeTheyEndInAnEllipsis) {
    TextLabel label(QStringLiteral("Priority Center"), look::TextStyle::caption2);
    label.setOverflow(TextLabel::Overflow::shrinkThenElide);
    const int wanted = label.sizeHint().width();
    label.resize(wanted, 20);
    EXPECT_DOUBLE_EQ(label.shownScale(), 1);
    label.resize(wanted * 9 / 10, 20);
    EXPECT_LT(label.shownScale(), 1);
    EXPECT_GE(label.shownScale(), 0.8);
    EXPECT_EQ(label.shownText(), QStringLiteral("Priority Center"));
    label.resize(wanted / 2, 20);
    EXPECT_DOUBLE_EQ(label.shownScale(), 0.8);
    EXPECT_TRUE(label.shownText().endsWith(QChar(0x2026)));
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
}

TEST_F(Controls, HairlinesAreOnePointThick) {
    Hairline line;
    EXPECT_EQ(line.minimumHeight(), 1);
    EXPECT_EQ(line.maximumHeight(), 1);
}

TEST_F(Controls, AColumnThatScrollsIsTakenApartWithTheFocusInside) {
    QWidget window;
    auto* button = new GlassButton(QStringLiteral("Inside"));
    auto area = std::make_unique<SlimScrollArea>(button, &window);
    area->resize(200, 100);
    window.show();
    makeActive(window);
    button->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(button->hasFocus());
    QSignalSpy changes(qApp, &QApplication::focusChanged);
    // What would be called on the rest of the column only a sanitizer sees.
    area.reset();
    EXPECT_FALSE(changes.isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
}

TEST_F(Controls, AScrollBarIsDraggedWhereverItsSliderIsSeen) {
    SlimScrollBar bar;
    bar.resize(SlimScrollBar::thickness, 200);
    bar.setRange(0, 300);
    bar.setPageStep(100);
    bar.setSingleStep(10);
    bar.show();
    // Its slider is as long as a quarter, and lies at the very top, then at the very bottom.
    QTest::mousePress(&bar, Qt::LeftButton, {}, {5, 4});
    QTest::mouseMove(&bar, {5, 4 + 49});
    EXPECT_NEAR(bar.value(), 100, 3);
    QTest::mouseMove(&bar, {5, 500});
    EXPECT_EQ(bar.value(), 300);
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, {5, 500});
    EXPECT_FALSE(bar.isSliderDown());
    QTest::mousePress(&bar, Qt::LeftButton, {}, {5, 195});
    EXPECT_TRUE(bar.isSliderDown());
    QTest::mouseMove(&bar, {5, 195 - 147});
    EXPECT_NEAR(bar.value(), 0, 3);
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, {5, 48});
    bar.setValue(150);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {5, 2});
    EXPECT_EQ(bar.value(), 50) << "a page, beside the slider";
}

} // namespace
} // namespace tilewright::testing
