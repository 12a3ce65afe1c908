#include "ActiveWindow.h"
#include "ViewFixture.h"

#include <TilewrightUI/LayoutCard.h>
#include <TilewrightUI/LayoutPicker.h>
#include <TilewrightUI/LayoutThumbnail.h>
#include <TilewrightUI/MiniLayoutPreview.h>
#include <TilewrightUI/PopUpButton.h>
#include <TilewrightUI/SymbolView.h>
#include <TilewrightUI/TextLabel.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

namespace tilewright::testing {
namespace {

const auto leftKey = QStringLiteral("display-1");
const auto rightKey = QStringLiteral("display-2");

class LayoutPickerView : public ViewFixture {
protected:
    LayoutPickerView()
        : left(screen(1, {0, 0, 1440, 900}, QStringLiteral("Left")))
        , right(screen(2, {1440, 0, 1920, 1080}, QStringLiteral("Right"))) {
        desktop.platform.fakeScreens.setScreens({left, right});
        desktop.platform.fakePointer.at = {10, 10};
    }

    static QStringList currentCards(const LayoutPicker& picker) {
        QStringList names;
        for (const LayoutCard* card : picker.cards()) {
            if (card->isOn())
                names.append(card->zoneLayout().name);
        }
        return names;
    }
    static PopUpButton* popUp(const LayoutPicker& picker) {
        return picker.findChild<PopUpButton*>();
    }
    static LayoutThumbnail* thumbnail(const LayoutPicker& picker) {
        return picker.findChild<LayoutThumbnail*>();
    }

    std::shared_ptr<FakeScreen> left;
    std::shared_ptr<FakeScreen> right;
};

TEST_F(LayoutPickerView, ListsTheDisplaysThatHaveAnIdentityInTheirOrder) {
    FakeScreen::Values anonymous;
    anonymous.displayID = std::nullopt;
    desktop.platform.fakeScreens.setScreens({right, makeScreen(anonymous), left});
    const LayoutPicker picker;
    ASSERT_EQ(picker.displays().size(), 2U);
    EXPECT_EQ(picker.displays()[0].id, rightKey);
    EXPECT_EQ(picker.displays()[0].name, QStringLiteral("Right"));
    EXPECT_EQ(picker.displays()[0].screen, right);
    EXPECT_EQ(picker.displays()[1].id, leftKey);
}

TEST_F(LayoutPickerView, StartsWithTheDisplayUnderThePointer) {
    desktop.platform.fakePointer.at = {2000, 500};
    const LayoutPicker picker;
    EXPECT_EQ(picker.selectedDisplayKey(), rightKey);
    EXPECT_EQ(picker.selectedDisplay()->screen, right);
}

TEST_F(LayoutPickerView, StartsWithTheFirstDisplayWhenThePointerIsOnNone) {
    desktop.platform.fakePointer.at = {-5000, 0};
    const LayoutPicker picker;
    EXPECT_EQ(picker.selectedDisplayKey(), leftKey);
}

TEST_F(LayoutPickerView, StartsWithTheFirstDisplayWhenThePointersHasNoIdentity) {
    FakeScreen::Values anonymous;
    anonymous.displayID = std::nullopt;
    anonymous.frame = {0, 0, 100, 100};
    desktop.platform.fakeScreens.setScreens({makeScreen(anonymous), right});
    const LayoutPicker picker;
    EXPECT_EQ(picker.selectedDisplayKey(), rightKey);
}

TEST_F(LayoutPickerView, WithoutDisplaysKeepsAnEmptyKeyAndShowsBentoBox) {
    desktop.platform.fakeScreens.setScreens({});
    LayoutPicker picker;
    EXPECT_FALSE(picker.selectedDisplayKey());
    EXPECT_FALSE(picker.selectedDisplay());
    EXPECT_EQ(picker.currentLayout(), ZoneLayout::bentoBox());
    EXPECT_EQ(thumbnail(picker)->zoneLayout(), ZoneLayout::bentoBox());
    picker.cards()[0]->click();
    thumbnail(picker)->zoneButtons()[0]->click();
    EXPECT_TRUE(LayoutStore::shared().assignments().empty());
    EXPECT_TRUE(desktop.platform.fakeAccessibility.calls.empty());
    EXPECT_TRUE(popUp(picker)->isHidden());
}

TEST_F(LayoutPickerView, ADisplayThatArrivesLaterIsSelected) {
    desktop.platform.fakeScreens.setScreens({});
    const LayoutPicker picker;
    desktop.platform.fakeScreens.change({left});
    EXPECT_EQ(picker.selectedDisplayKey(), leftKey);
    EXPECT_EQ(picker.selectedDisplay()->id, leftKey);
}

TEST_F(LayoutPickerView, KeepsItsKeyAndFallsBackToTheFirstDisplayWhileTheSelectedOneIsGone) {
    LayoutPicker picker;
    picker.setSelectedDisplayKey(rightKey);
    LayoutStore::shared().assign(ZoneLayout::thirds(), *left);
    desktop.platform.fakeScreens.change({left});
    settle();
    EXPECT_EQ(picker.selectedDisplayKey(), rightKey);
    EXPECT_EQ(picker.selectedDisplay()->id, leftKey);
    EXPECT_EQ(picker.currentLayout().id, ZoneLayout::thirds().id);
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Thirds")});
    desktop.platform.fakeScreens.change({left, right});
    EXPECT_EQ(picker.selectedDisplay()->id, rightKey);
}

TEST_F(LayoutPickerView, TakesTheNewScreenOfAChangedDisplay) {
    const LayoutPicker picker;
    const auto moved = screen(1, {0, 0, 2560, 1440}, QStringLiteral("Left, larger"));
    desktop.platform.fakeScreens.change({moved, right});
    EXPECT_EQ(picker.selectedDisplay()->screen, moved);
    EXPECT_EQ(picker.selectedDisplay()->name, QStringLiteral("Left, larger"));
}

TEST_F(LayoutPickerView, OffersTheChoiceOfDisplayOnlyWithTwoOrMore) {
    LayoutPicker picker;
    picker.show();
    EXPECT_TRUE(popUp(picker)->isVisible());
    EXPECT_EQ(popUp(picker)->selectedID(), leftKey);
    EXPECT_EQ(popUp(picker)->items(),
              (std::vector<PopUpButton::Item>{{leftKey, QStringLiteral("Left")},
                                              {rightKey, QStringLiteral("Right")}}));
    desktop.platform.fakeScreens.change({left});
    EXPECT_FALSE(popUp(picker)->isVisible());
    picker.cards()[1]->click();
    EXPECT_EQ(LayoutStore::shared().layoutFor(*left).id, ZoneLayout::thirds().id);
}

TEST_F(LayoutPickerView, ChoosingADisplayShowsItsLayout) {
    LayoutStore::shared().assign(ZoneLayout::quadrants(), *right);
    LayoutPicker picker;
    picker.show();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Bento Box")});
    QTest::keyClick(popUp(picker), Qt::Key_Down);
    EXPECT_EQ(picker.selectedDisplayKey(), rightKey);
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Quadrants")});
    EXPECT_EQ(thumbnail(picker)->zoneLayout().id, ZoneLayout::quadrants().id);
}

TEST_F(LayoutPickerView, CutsTheLayoutsIntoRowsOfThree) {
    LayoutPicker picker;
    auto rows = picker.layoutRows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].size(), 3U);
    EXPECT_EQ(rows[1].size(), 2U);
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("A"), {{0, 0, 1, 1}}));
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("B"), {{0, 0, 1, 1}}));
    rows = picker.layoutRows();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[2].size(), 1U);
    EXPECT_EQ(rows[2][0].name, QStringLiteral("B"));
    settle();
    EXPECT_EQ(picker.cards().size(), 7U);
}

TEST_F(LayoutPickerView, ClickingACardAssignsItsLayoutAndMovesTheMark) {
    LayoutPicker picker;
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Bento Box")});
    QTest::mouseClick(picker.cards()[0], Qt::LeftButton);
    EXPECT_EQ(LayoutStore::shared().layoutFor(*left).id, ZoneLayout::halves().id);
    EXPECT_EQ(LayoutStore::shared().layoutFor(*right).id, ZoneLayout::bentoBox().id);
    settle();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Halves")});
    EXPECT_EQ(thumbnail(picker)->zoneLayout().id, ZoneLayout::halves().id);
}

TEST_F(LayoutPickerView, ClickingTheCurrentCardKeepsItCurrent) {
    LayoutPicker picker;
    picker.cards()[4]->click();
    settle();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Bento Box")});
    EXPECT_EQ(LayoutStore::shared().assignments().size(), 1U);
}

TEST_F(LayoutPickerView, FollowsTheStoreOnceATurn) {
    LayoutPicker picker;
    for (int i = 0; i < 20; ++i)
        LayoutStore::shared().assign(i % 2 ? ZoneLayout::halves() : ZoneLayout::thirds(), *left);
    EXPECT_EQ(desktop.platform.fakeMainLoop.postedCount(), 1U);
    settle();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Halves")});
}

TEST_F(LayoutPickerView, ClickingAZoneSnapsTheFocusedWindowOnTheSelectedDisplay) {
    auto& accessibility = desktop.platform.fakeAccessibility;
    const auto window = accessibility.makeWindow("window");
    const auto application = accessibility.makeElement("application");
    application->elements[AXAttribute::focusedWindow] = window;
    accessibility.applications[7] = application;
    desktop.platform.fakeWorkspace.frontmost = 7;
    LayoutPicker picker;
    picker.setSelectedDisplayKey(rightKey);
    picker.cards()[0]->click();
    settle();
    thumbnail(picker)->zoneButtons()[1]->click();
    EXPECT_EQ(window->position, (AXPoint{1440 + 960, 900 - 1080}));
    EXPECT_EQ(window->size, (AXSize{960, 1080}));
}

TEST_F(LayoutPickerView, DropsWhatKeepsAWindowFromBeingPlaced) {
    desktop.platform.fakeAccessibility.trusted = false;
    LayoutPicker picker;
    thumbnail(picker)->zoneButtons()[0]->click();
    desktop.platform.fakeAccessibility.trusted = true;
    thumbnail(picker)->zoneButtons()[0]->click();
    EXPECT_EQ(desktop.platform.fakeAccessibility.trustRequests, 0);
}

TEST_F(LayoutPickerView, OnlyCustomLayoutsCanBeDeletedFromTheirMenu) {
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("Mine"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(picker.cards()[i]->makeContextMenu(), nullptr);
    const QMenu* menu = picker.cards()[5]->makeContextMenu();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions().front()->text(), QStringLiteral("Delete Layout"));
    EXPECT_FALSE(menu->actions().front()->icon().isNull());
}

/// The share of the picture's coloured pixels that are reddish, of those that differ from its
/// corner.
double redShare(const QImage& image) {
    const QColor ground = image.pixelColor(2, 2);
    int other = 0;
    int red = 0;
    for (int y = 2; y < image.height() - 2; ++y) {
        for (int x = 2; x < image.width() - 2; ++x) {
            const QColor color = image.pixelColor(x, y);
            const int difference = std::abs(color.red() - ground.red()) +
                                   std::abs(color.green() - ground.green()) +
                                   std::abs(color.blue() - ground.blue());
            if (difference < 60)
                continue;
            ++other;
            red += color.red() > color.green() + 20 && color.red() > color.blue() + 20;
        }
    }
    return other == 0 ? 0 : static_cast<double>(red) / other;
}

TEST_F(LayoutPickerView, DeletingIsRedAsAWholeInTheMenu) {
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("Mine"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    for (const QPalette& palette :
         {QPalette(QColor(0xee, 0xee, 0xf1)), QPalette(QColor(0x2a, 0x2b, 0x2f))}) {
        picker.setPalette(palette);
        QMenu* menu = picker.cards()[5]->makeContextMenu();
        menu->popup(QPoint());
        const QRect item = menu->actionGeometry(menu->actions().front());
        for (QAction* active : {static_cast<QAction*>(nullptr), menu->actions().front()}) {
            menu->setActiveAction(active);
            const QImage seen = menu->grab(item.adjusted(2, 2, -2, -2)).toImage();
            EXPECT_GT(redShare(seen), 0.95) << (active ? "chosen" : "at rest");
        }
        menu->close();
    }
}

TEST_F(LayoutPickerView, DeletingTheLastCardMovesTheFocusToItsNeighbour) {
    for (const char16_t name : {u'A', u'B'})
        LayoutStore::shared().addCustomLayout(customLayout(QString(name), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    picker.show();
    makeActive(picker);
    picker.cards()[6]->setFocus();
    Q_EMIT picker.cards()[6]->deleteRequested();
    settle();
    EXPECT_TRUE(picker.cards()[5]->hasFocus());
    Q_EMIT picker.cards()[5]->deleteRequested();
    settle();
    EXPECT_TRUE(picker.cards()[4]->hasFocus());
}

TEST_F(LayoutPickerView, DeletingTheAssignedLayoutPutsTheDisplayBackOnTheDefault) {
    const ZoneLayout mine = customLayout(QStringLiteral("Mine"), {{0, 0, 1, 1}});
    LayoutStore::shared().addCustomLayout(mine);
    LayoutStore::shared().assign(mine, *left);
    LayoutPicker picker;
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Mine")});
    const QMenu* menu = picker.cards()[5]->makeContextMenu();
    menu->actions().front()->trigger();
    settle();
    EXPECT_TRUE(LayoutStore::shared().customLayouts().empty());
    EXPECT_TRUE(LayoutStore::shared().assignments().empty());
    EXPECT_EQ(picker.cards().size(), 5U);
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Bento Box")});
}

TEST_F(LayoutPickerView, CardsTellTheirPosition) {
    for (const char16_t name : {u'A', u'B', u'C'})
        LayoutStore::shared().addCustomLayout(customLayout(QString(name), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    const auto description = [&](std::size_t index) {
        return QAccessible::queryAccessibleInterface(picker.cards()[index])
            ->text(QAccessible::Description);
    };
    EXPECT_EQ(description(2), QStringLiteral("3 of 8"));
    LayoutStore::shared().removeCustomLayout(LayoutStore::shared().customLayouts()[0].id);
    settle();
    EXPECT_EQ(description(2), QStringLiteral("3 of 7"));
    EXPECT_EQ(description(6), QStringLiteral("7 of 7"));
}

TEST_F(LayoutPickerView, ShiftAndF10OpenTheContextMenu) {
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("Mine"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    picker.show();
    LayoutCard* card = picker.cards()[5];
    QTest::keyClick(card, Qt::Key_F10);
    EXPECT_EQ(card->findChild<QMenu*>(), nullptr);
    QTest::keyClick(card, Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = card->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
}

TEST_F(LayoutPickerView, TheContextMenuOpensByKeyboardToo) {
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("Mine"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    picker.show();
    LayoutCard* card = picker.cards()[5];
    const QPoint center = card->rect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, center, card->mapToGlobal(center));
    QApplication::sendEvent(card, &event);
    auto* menu = card->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
}

TEST_F(LayoutPickerView, APressThatIsToldOfTwiceOpensOneContextMenu) {
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("Mine"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    picker.show();
    LayoutCard* card = picker.cards()[5];
    for (int word = 0; word < 2; ++word) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, card->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(card, &event);
    }
    ASSERT_EQ(card->findChildren<QMenu*>().size(), 1);
    card->findChild<QMenu*>()->close();
    QContextMenuEvent again(QContextMenuEvent::Mouse, {5, 5}, card->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(card, &again);
    EXPECT_TRUE(card->findChildren<QMenu*>().back()->isVisible());
    card->findChildren<QMenu*>().back()->close();
}

TEST_F(LayoutPickerView, CardsAreReachedByArrowsAndUsedByEnterAndSpace) {
    LayoutPicker picker;
    picker.show();
    makeActive(picker);
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    picker.cards()[0]->setFocus();
    press(Qt::Key_Right);
    EXPECT_TRUE(picker.cards()[1]->hasFocus());
    press(Qt::Key_Down);
    EXPECT_TRUE(picker.cards()[4]->hasFocus());
    press(Qt::Key_Down);
    EXPECT_TRUE(picker.cards()[4]->hasFocus());
    press(Qt::Key_Left);
    EXPECT_TRUE(picker.cards()[3]->hasFocus());
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Priority Center")});
    EXPECT_TRUE(picker.cards()[3]->hasFocus());
    press(Qt::Key_Up);
    press(Qt::Key_Space);
    settle();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Halves")});
}

TEST_F(LayoutPickerView, EveryControlIsReachedByTab) {
    LayoutPicker picker;
    picker.show();
    makeActive(picker);
    popUp(picker)->setFocus();
    std::set<const QWidget*> reached;
    for (int i = 0; i < 20; ++i) {
        reached.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (const QWidget* zone : thumbnail(picker)->zoneButtons())
        EXPECT_TRUE(reached.contains(zone));
    for (const QWidget* card : picker.cards())
        EXPECT_TRUE(reached.contains(card));
}

TEST_F(LayoutPickerView, CardsTellAssistiveToolsTheirNameAndWhetherTheyAreCurrent) {
    LayoutStore::shared().addCustomLayout(
        customLayout(QStringLiteral("Mail & <b>Code</b>"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    QAccessibleInterface* bento = QAccessible::queryAccessibleInterface(picker.cards()[4]);
    EXPECT_EQ(bento->text(QAccessible::Name), QStringLiteral("Bento Box"));
    EXPECT_TRUE(bento->state().checked);
    QAccessibleInterface* mine = QAccessible::queryAccessibleInterface(picker.cards()[5]);
    EXPECT_EQ(mine->text(QAccessible::Name), QStringLiteral("Mail & <b>Code</b>"));
    EXPECT_FALSE(mine->state().checked);
    mine->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    settle();
    EXPECT_EQ(currentCards(picker), QStringList{QStringLiteral("Mail & <b>Code</b>")});
}

/// The distances between the parts of a picker laid out 268 points wide.
class LayoutPickerGeometry : public LayoutPickerView {
protected:
    static void layOut(LayoutPicker& picker) {
        picker.resize(268, picker.sizeHint().height());
        picker.show();
        picker.layout()->activate();
    }
};

TEST_F(LayoutPickerGeometry, PartsStandTenPointsApart) {
    LayoutPicker picker;
    layOut(picker);
    const auto* title = picker.findChild<TextLabel*>();
    const QRect header = place(title, &picker).united(place(popUp(picker), &picker));
    const QRect picture = place(thumbnail(picker), &picker);
    EXPECT_EQ(header.top(), 0);
    EXPECT_EQ(picture.top() - (header.bottom() + 1), 10);
    EXPECT_EQ(picture.size(), QSize(144, 90));
    EXPECT_EQ(picture.left(), 0);
    EXPECT_EQ(place(picker.cards()[0], &picker).top() - (picture.bottom() + 1), 10);
    EXPECT_EQ(place(popUp(picker), &picker).right(), 267);
    EXPECT_EQ(place(popUp(picker), &picker).center().y(), place(title, &picker).center().y());
}

TEST_F(LayoutPickerGeometry, CardsShareTheWidthAndStandEightPointsApart) {
    LayoutStore::shared().addCustomLayout(customLayout(
        QStringLiteral("A name that is very much longer than any card is wide"), {{0, 0, 1, 1}}));
    LayoutStore::shared().addCustomLayout(customLayout(QStringLiteral("Seven"), {{0, 0, 1, 1}}));
    LayoutPicker picker;
    layOut(picker);
    for (std::size_t i = 0; i < picker.cards().size(); ++i) {
        const QRect card = place(picker.cards()[i], &picker);
        EXPECT_EQ(card.width(), 84);
        EXPECT_EQ(card.left(), static_cast<int>(i % 3) * (84 + 8));
        if (i >= 3) {
            EXPECT_EQ(card.top() - (place(picker.cards()[i - 3], &picker).bottom() + 1), 8);
        }
    }
}

TEST_F(LayoutPickerGeometry, ACardPadsItsPreviewAndName) {
    LayoutPicker picker;
    layOut(picker);
    const LayoutCard* card = picker.cards()[0];
    const QRect preview = place(card->findChild<MiniLayoutPreview*>(), card);
    const QRect name = place(card->findChild<TextLabel*>(), card);
    EXPECT_EQ(preview, QRect(6, 6, 72, 42));
    EXPECT_EQ(name.top() - (preview.bottom() + 1), 5);
    EXPECT_EQ(card->height() - (name.bottom() + 1), 6);
    EXPECT_EQ(name.left(), 6);
    EXPECT_EQ(name.width(), 72);
}

TEST_F(LayoutPickerGeometry, TheCurrentCardBearsABadgeInItsTopTrailingCorner) {
    LayoutPicker picker;
    layOut(picker);
    auto* badge = picker.cards()[4]->findChild<SymbolView*>();
    EXPECT_TRUE(badge->isVisible());
    EXPECT_EQ(badge->symbol(), QStringLiteral("checkmark.circle.fill"));
    EXPECT_EQ(badge->y(), 3);
    EXPECT_EQ(badge->x() + badge->width(), 84 - 3);
    EXPECT_FALSE(picker.cards()[0]->findChild<SymbolView*>()->isVisible());
    picker.setLayoutDirection(Qt::RightToLeft);
    picker.layout()->activate();
    EXPECT_EQ(badge->x(), 3);
}

TEST_F(LayoutPickerGeometry, ACardsGroundAndBorderTellWhetherItIsCurrent) {
    LayoutPicker picker;
    layOut(picker);
    const QPalette palette = picker.palette();
    const QColor plain = over(look::withOpacity(look::secondary(palette), 0.3), Qt::white);
    const QColor ground = over(look::tilewrightAmber(0.18), Qt::white);
    for (const double scale : {1.0, 2.0}) {
        const int s = static_cast<int>(scale);
        const QImage other = picture(*picker.cards()[0], scale);
        expectNear(other.pixelColor(0, 30 * s), plain, "a plain card's border");
        expectNear(other.pixelColor(1 * s, 30 * s), Qt::white, "a plain card's ground");
        const QImage current = picture(*picker.cards()[4], scale);
        expectNear(current.pixelColor(0, 30 * s), look::tilewrightAmber(), "the border");
        expectNear(current.pixelColor((2 * s) - 1, 30 * s), look::tilewrightAmber(), "the border");
        expectNear(current.pixelColor(3 * s, 30 * s), ground, "the current card's ground");
        expectNear(current.pixelColor(0, 0), Qt::white, "the corner");
    }
}

TEST_F(LayoutPickerGeometry, TheChoiceOfDisplayIsNeverWiderThan130Points) {
    const QString name = QStringLiteral("A display whose maker was fond of very long names");
    desktop.platform.fakeScreens.setScreens({screen(1, {0, 0, 1440, 900}, name), right});
    LayoutPicker picker;
    layOut(picker);
    EXPECT_EQ(popUp(picker)->width(), 130);
    EXPECT_EQ(place(popUp(picker), &picker).right(), 267);
}

TEST_F(LayoutPickerGeometry, NamesOfAnyScriptStayOnOneLineInTheirCard) {
    const std::vector<QString> names{
        QStringLiteral("分割されたウィンドウの配置"),
        QStringLiteral("تخطيط النوافذ الطويل جدا"),
        QStringLiteral("Ширина основного окна"),
        QStringLiteral("two\nlines"),
        QString(),
        QStringLiteral("👩‍💻 work 👩‍💻 work 👩‍💻")};
    for (const QString& name : names)
        LayoutStore::shared().addCustomLayout(customLayout(name, {{0, 0, 1, 1}}));
    LayoutPicker picker;
    layOut(picker);
    const int height = picker.cards()[0]->height();
    for (const LayoutCard* card : picker.cards()) {
        EXPECT_EQ(card->height(), height);
        const auto* label = card->findChild<TextLabel*>();
        EXPECT_GE(label->shownScale(), 0.8);
        EXPECT_LE(label->width(), 72);
    }
}

TEST_F(LayoutPickerGeometry, LargerFontsClipNothing) {
    const FontSize larger(1.6);
    LayoutPicker picker;
    layOut(picker);
    for (const TextLabel* label : picker.findChildren<TextLabel*>())
        EXPECT_GE(label->height(), QFontMetrics(label->font()).height());
    const auto* title = picker.findChild<TextLabel*>();
    EXPECT_GE(title->width(), title->sizeHint().width());
    EXPECT_LE(place(popUp(picker), &picker).right(), 267);
    EXPECT_GE(popUp(picker)->height(), QFontMetrics(popUp(picker)->font()).height());
}

TEST_F(LayoutPickerGeometry, FollowsALiveChangeOfThePalette) {
    LayoutPicker picker;
    layOut(picker);
    picker.setPalette(QPalette(QColor(0xee, 0xee, 0xf1)));
    const QImage light = picker.grab().toImage();
    picker.setPalette(QPalette(QColor(0x2a, 0x2b, 0x2f)));
    EXPECT_NE(picker.grab().toImage(), light);
}

} // namespace
} // namespace tilewright::testing
