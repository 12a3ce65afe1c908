#include "ActiveWindow.h"
#include "ViewFixture.h"

#include <TilewrightUI/AdaptiveGridLayout.h>
#include <TilewrightUI/ConfirmationDialog.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/LayoutManagerCard.h>
#include <TilewrightUI/LayoutManagerView.h>
#include <TilewrightUI/LayoutPicker.h>
#include <TilewrightUI/MiniLayoutPreview.h>
#include <TilewrightUI/SlimScrollBar.h>
#include <TilewrightUI/TextLabel.h>

#include <QAccessible>
#include <QPointer>
#include <QPushButton>
#include <QTest>

namespace tilewright::testing {
namespace {

class LayoutManager : public ViewFixture {
protected:
    ZoneLayout add(const QString& name, const std::vector<QRectF>& zones = {{0, 0, 1, 1}}) {
        const ZoneLayout layout = customLayout(name, zones);
        LayoutStore::shared().addCustomLayout(layout);
        return layout;
    }
    void layOut(LayoutManagerView& view, QSize size = {520, 460}) {
        view.resize(size);
        view.show();
        settle();
    }
    static QStringList names(const std::vector<LayoutManagerCard*>& cards) {
        QStringList result;
        for (const LayoutManagerCard* card : cards)
            result.append(card->zoneLayout().name);
        return result;
    }
    static GlassButton* button(const LayoutManagerView& view, const QString& text) {
        for (GlassButton* candidate : view.confirmation()->findChildren<GlassButton*>()) {
            if (candidate->title() == text)
                return candidate;
        }
        return nullptr;
    }
};

TEST_F(LayoutManager, WithoutCustomLayoutsShowsTheHintAndAllPresets) {
    LayoutManagerView view;
    layOut(view);
    EXPECT_TRUE(view.customCards().empty());
    EXPECT_TRUE(view.hint()->isVisible());
    EXPECT_EQ(view.hint()->text(), QStringLiteral("Create layouts in the Layouts tab."));
    EXPECT_EQ(names(view.builtInCards()),
              (QStringList{QStringLiteral("Halves"), QStringLiteral("Thirds"),
                           QStringLiteral("Quadrants"), QStringLiteral("Priority Center"),
                           QStringLiteral("Bento Box")}));
    QStringList texts;
    for (const TextLabel* label :
         view.widget()->findChildren<TextLabel*>(QString(), Qt::FindDirectChildrenOnly))
        texts.append(label->text());
    EXPECT_EQ(texts, (QStringList{QStringLiteral("Your Layouts"), view.hint()->text(),
                                  QStringLiteral("Built-in Layouts"),
                                  QStringLiteral("Presets that ship with Tilewright.")}));
}

TEST_F(LayoutManager, ListsCustomLayoutsInStoreOrderAndHidesTheHint) {
    add(QStringLiteral("B"));
    LayoutManagerView view;
    layOut(view);
    add(QStringLiteral("A"));
    settle();
    EXPECT_EQ(names(view.customCards()), (QStringList{QStringLiteral("B"), QStringLiteral("A")}));
    EXPECT_FALSE(view.hint()->isVisible());
}

TEST_F(LayoutManager, CountsZonesInOneTextForEveryNumber) {
    add(QStringLiteral("One"));
    add(QStringLiteral("None"), {});
    LayoutManagerView view;
    EXPECT_EQ(view.customCards()[0]->countText(), QStringLiteral("1 zones"));
    EXPECT_EQ(view.customCards()[1]->countText(), QStringLiteral("0 zones"));
    EXPECT_EQ(view.builtInCards()[4]->countText(), QStringLiteral("4 zones"));
}

TEST_F(LayoutManager, PresetsHaveNoDeleteButton) {
    add(QStringLiteral("Mine"));
    const LayoutManagerView view;
    for (const LayoutManagerCard* card : view.builtInCards())
        EXPECT_EQ(card->deleteButton(), nullptr);
    ASSERT_NE(view.customCards()[0]->deleteButton(), nullptr);
    const GlassButton& button = *view.customCards()[0]->deleteButton();
    EXPECT_EQ(button.title(), QStringLiteral("Delete"));
    EXPECT_EQ(button.symbol(), QStringLiteral("trash"));
    EXPECT_EQ(button.kind(), GlassButton::Kind::bordered);
    EXPECT_EQ(button.role(), GlassButton::Role::destructive);
    EXPECT_EQ(button.controlSize(), GlassButton::ControlSize::small);
}

TEST_F(LayoutManager, SetsItsTextsInTheirStyles) {
    add(QStringLiteral("Mine"));
    const LayoutManagerView view;
    using enum TextLabel::Importance;
    const auto expectStyle = [](const TextLabel& label, look::TextStyle style,
                                TextLabel::Importance importance) {
        EXPECT_EQ(label.style(), style) << label.text().toStdString();
        EXPECT_EQ(label.importance(), importance) << label.text().toStdString();
    };
    const auto labels =
        view.widget()->findChildren<TextLabel*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(labels.size(), 4);
    expectStyle(*labels[0], look::TextStyle::headline, primary);
    expectStyle(*labels[1], look::TextStyle::caption, secondary);
    expectStyle(*labels[2], look::TextStyle::headline, primary);
    expectStyle(*labels[3], look::TextStyle::caption, secondary);
    const auto ofTheCard = view.customCards()[0]->findChildren<TextLabel*>();
    ASSERT_EQ(ofTheCard.size(), 2);
    EXPECT_EQ(ofTheCard[0]->text(), QStringLiteral("Mine"));
    expectStyle(*ofTheCard[0], look::TextStyle::callout, primary);
    EXPECT_EQ(ofTheCard[1]->text(), QStringLiteral("1 zones"));
    expectStyle(*ofTheCard[1], look::TextStyle::caption2, secondary);
}

TEST_F(LayoutManager, DeleteAsksFirst) {
    const ZoneLayout mine = add(QStringLiteral("Mine & <i>yours</i>"));
    LayoutManagerView view;
    layOut(view);
    EXPECT_EQ(view.confirmation(), nullptr);
    QTest::mouseClick(view.customCards()[0]->deleteButton(), Qt::LeftButton);
    EXPECT_EQ(view.pendingDelete(), mine);
    ASSERT_NE(view.confirmation(), nullptr);
    EXPECT_TRUE(view.confirmation()->isVisible());
    EXPECT_EQ(view.confirmation()->title()->text(),
              QStringLiteral("Delete “Mine & <i>yours</i>”?"));
    EXPECT_EQ(view.confirmation()->windowTitle(), view.confirmation()->title()->text());
    EXPECT_EQ(view.confirmation()->message()->text(),
              QStringLiteral("This removes the layout and clears it from any displays using it."));
    ASSERT_NE(button(view, QStringLiteral("Delete")), nullptr);
    ASSERT_NE(button(view, QStringLiteral("Cancel")), nullptr);
    EXPECT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
}

TEST_F(LayoutManager, ConfirmingRemovesTheLayoutAndEveryAssignmentToIt) {
    const auto display = screen(1, {0, 0, 1440, 900}, QStringLiteral("Display"));
    desktop.platform.fakeScreens.setScreens({display});
    const ZoneLayout mine = add(QStringLiteral("Mine"));
    LayoutStore::shared().assign(mine, *display);
    const LayoutPicker picker;
    EXPECT_EQ(picker.currentLayout(), mine);
    LayoutManagerView view;
    layOut(view);
    view.customCards()[0]->deleteButton()->click();
    const QPointer<ConfirmationDialog> dialog = view.confirmation();
    button(view, QStringLiteral("Delete"))->click();
    EXPECT_FALSE(view.pendingDelete());
    EXPECT_EQ(view.confirmation(), nullptr);
    EXPECT_TRUE(!dialog || !dialog->isVisible());
    EXPECT_TRUE(LayoutStore::shared().customLayouts().empty());
    EXPECT_TRUE(LayoutStore::shared().assignments().empty());
    settle();
    EXPECT_TRUE(view.customCards().empty());
    EXPECT_TRUE(view.hint()->isVisible());
    EXPECT_EQ(picker.currentLayout(), ZoneLayout::bentoBox());
}

TEST_F(LayoutManager, DeletingTheOnlyCustomLayoutBringsTheHintBackAtOnce) {
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    EXPECT_FALSE(view.hint()->isVisible());
    view.customCards()[0]->deleteButton()->click();
    button(view, QStringLiteral("Delete"))->click();
    settle();
    EXPECT_TRUE(view.hint()->isVisible());
    EXPECT_EQ(view.hint()->text(), QStringLiteral("Create layouts in the Layouts tab."));
    EXPECT_TRUE(view.customCards().empty());
}

TEST_F(LayoutManager, DeletingALayoutThatADisplayUsesPutsTheDisplayBackOnTheDefault) {
    const auto display = screen(1, {0, 0, 1440, 900}, QStringLiteral("Display"));
    desktop.platform.fakeScreens.setScreens({display});
    const ZoneLayout mine = add(QStringLiteral("Mine"));
    const ZoneLayout other = add(QStringLiteral("Other"));
    LayoutStore::shared().assign(mine, *display);
    const LayoutPicker picker;
    LayoutManagerView view;
    layOut(view);
    view.customCards()[1]->deleteButton()->click();
    button(view, QStringLiteral("Delete"))->click();
    EXPECT_EQ(picker.currentLayout(), mine) << "another layout's end is nothing to the display";
    settle();
    view.customCards()[0]->deleteButton()->click();
    button(view, QStringLiteral("Delete"))->click();
    EXPECT_EQ(LayoutStore::shared().layoutFor(*display), ZoneLayout::bentoBox());
    EXPECT_EQ(picker.currentLayout(), ZoneLayout::bentoBox());
}

TEST_F(LayoutManager, CancellingChangesNothing) {
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    view.customCards()[0]->deleteButton()->click();
    button(view, QStringLiteral("Cancel"))->click();
    EXPECT_FALSE(view.pendingDelete());
    EXPECT_EQ(view.confirmation(), nullptr);
    EXPECT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
}

TEST_F(LayoutManager, DismissingTheDialogByKeyboardOrTheWindowManagerChangesNothing) {
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    view.customCards()[0]->deleteButton()->click();
    QTest::keyClick(view.confirmation(), Qt::Key_Escape);
    EXPECT_FALSE(view.pendingDelete());
    view.customCards()[0]->deleteButton()->click();
    view.confirmation()->close();
    EXPECT_FALSE(view.pendingDelete());
    EXPECT_EQ(view.confirmation(), nullptr);
    EXPECT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
}

TEST_F(LayoutManager, TheDialogIsSafeByDefaultAndDoesNotBlockTheLoop) {
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    view.customCards()[0]->deleteButton()->click();
    EXPECT_TRUE(button(view, QStringLiteral("Cancel"))->isDefault());
    EXPECT_FALSE(button(view, QStringLiteral("Delete"))->isDefault());
    settle();
    EXPECT_TRUE(view.confirmation()->isVisible());
    QTest::keyClick(view.confirmation(), Qt::Key_Return);
    EXPECT_EQ(view.confirmation(), nullptr);
    EXPECT_EQ(LayoutStore::shared().customLayouts().size(), 1U);
}

TEST_F(LayoutManager, TheDialogShowsDeletionInRed) {
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    view.customCards()[0]->deleteButton()->click();
    EXPECT_EQ(button(view, QStringLiteral("Delete"))->role(), GlassButton::Role::destructive);
    EXPECT_EQ(button(view, QStringLiteral("Cancel"))->role(), GlassButton::Role::normal);
}

TEST_F(LayoutManager, ANameOfAnyLengthChangesNothingAboutTheDialog) {
    for (const double factor : {1.0, 2.0}) {
        const FontSize font(factor);
        const ZoneLayout layout = add(QStringLiteral("A%1Z").arg(QString(10'000, u'm')));
        const ZoneLayout shorter = add(QString(60, u'm'));
        LayoutManagerView view;
        layOut(view);
        view.setPendingDelete(shorter);
        settle();
        const QSize expected = view.confirmation()->size();
        view.setPendingDelete(layout);
        settle();
        const ConfirmationDialog& dialog = *view.confirmation();
        EXPECT_EQ(dialog.size(), expected);
        EXPECT_LE(dialog.width(), 420);
        EXPECT_LE(dialog.windowTitle().size(), 100);
        const QString shown = dialog.title()->shownText();
        EXPECT_LE(QFontMetrics(dialog.title()->font()).horizontalAdvance(shown),
                  dialog.title()->width());
        EXPECT_TRUE(shown.startsWith(QStringLiteral("Delete “A"))) << shown.toStdString();
        EXPECT_TRUE(shown.endsWith(QStringLiteral("mZ”?"))) << shown.toStdString();
        EXPECT_GE(dialog.message()->height(),
                  dialog.message()->heightForWidth(dialog.message()->width()));
        for (const GlassButton* each : dialog.findChildren<GlassButton*>())
            EXPECT_TRUE(dialog.rect().contains(place(each, &dialog)))
                << each->title().toStdString();
    }
}

TEST_F(LayoutManager, ANameWithLineBreaksIsOnOneLine) {
    add(QStringLiteral("One\nTwo\tThree"));
    LayoutManagerView view;
    layOut(view);
    view.customCards()[0]->deleteButton()->click();
    EXPECT_EQ(view.confirmation()->title()->text(), QStringLiteral("Delete “One Two Three”?"));
    EXPECT_EQ(view.confirmation()->windowTitle(), QStringLiteral("Delete “One Two Three”?"));
    EXPECT_EQ(view.customCards()[0]->findChild<TextLabel*>()->text(),
              QStringLiteral("One Two Three"));
}

TEST_F(LayoutManager, DeletingTheLastCardMovesTheFocusToItsNeighbour) {
    for (const char16_t name : {u'A', u'B', u'C'})
        add(QString(QChar(name)));
    LayoutManagerView view;
    layOut(view);
    makeActive(view);
    view.customCards()[2]->deleteButton()->setFocus();
    view.customCards()[2]->deleteButton()->click();
    button(view, QStringLiteral("Delete"))->click();
    settle();
    EXPECT_EQ(view.window()->focusWidget(), view.customCards()[1]->deleteButton());
    view.customCards()[0]->deleteButton()->setFocus();
    view.customCards()[0]->deleteButton()->click();
    button(view, QStringLiteral("Delete"))->click();
    settle();
    EXPECT_EQ(view.window()->focusWidget(), view.customCards()[0]->deleteButton());
    EXPECT_EQ(view.customCards()[0]->zoneLayout().name, QStringLiteral("B"));
}

TEST_F(LayoutManager, TheDialogEndsWithTheView) {
    add(QStringLiteral("Mine"));
    auto view = std::make_unique<LayoutManagerView>();
    layOut(*view);
    view->customCards()[0]->deleteButton()->click();
    const QPointer<ConfirmationDialog> dialog = view->confirmation();
    view.reset();
    EXPECT_TRUE(dialog.isNull());
}

TEST_F(LayoutManager, SetsItsSectionsOutAsDesigned) {
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    const QWidget* content = view.widget();
    const auto labels = content->findChildren<TextLabel*>(QString(), Qt::FindDirectChildrenOnly);
    const QRect firstTitle = place(labels[0], content);
    EXPECT_EQ(firstTitle.topLeft(), QPoint(16, 16));
    const QRect card = place(view.customCards()[0], content);
    EXPECT_EQ(card.left(), 16);
    EXPECT_EQ(card.top() - (firstTitle.bottom() + 1), 8);
    const QRect secondTitle = place(labels[2], content);
    EXPECT_EQ(secondTitle.top() - (card.bottom() + 1), 18);
    const QRect subtitle = place(labels[3], content);
    EXPECT_EQ(subtitle.top() - (secondTitle.bottom() + 1), 8);
    const QRect preset = place(view.builtInCards()[0], content);
    EXPECT_EQ(preset.top() - (subtitle.bottom() + 1), 8);
    // The padding on the right holds the scroll bar.
    EXPECT_EQ(place(view.builtInCards()[2], content).right() + 1, 520 - 16);
}

TEST_F(LayoutManager, KeepsThePlaceOfAnEmptyGridBelowTheHint) {
    LayoutManagerView view;
    layOut(view);
    const QWidget* content = view.widget();
    const auto labels = content->findChildren<TextLabel*>(QString(), Qt::FindDirectChildrenOnly);
    const QRect title = place(labels[0], content);
    const QRect hint = place(labels[1], content);
    EXPECT_EQ(hint.top() - (title.bottom() + 1), 8);
    const QRect secondTitle = place(labels[2], content);
    // The section's spacing before the grid, the grid, which has no height, and the next section.
    EXPECT_EQ(secondTitle.top() - (hint.bottom() + 1), 8 + 0 + 18);
}

TEST_F(LayoutManager, FitsAsManyColumnsOfAtLeast150PointsAsItCan) {
    for (int i = 0; i < 7; ++i)
        add(QStringLiteral("Layout %1").arg(i));
    LayoutManagerView view;
    layOut(view);
    const auto columns = [&] {
        const int top = view.customCards()[0]->y();
        return std::count_if(view.customCards().begin(), view.customCards().end(),
                             [&](const auto* card) { return card->y() == top; });
    };
    EXPECT_EQ(columns(), 3);
    EXPECT_EQ(view.customCards()[1]->x() - view.customCards()[0]->geometry().right() - 1, 12);
    layOut(view, {900, 460});
    EXPECT_EQ(columns(), 5);
    for (const auto* card : view.customCards())
        EXPECT_GE(card->width(), 150);
    layOut(view, {200, 460});
    EXPECT_EQ(columns(), 1);
}

TEST_F(LayoutManager, ACardSetsItsPartsOutAsDesigned) {
    add(QStringLiteral("A name that is very much longer than any card is wide"));
    LayoutManagerView view;
    layOut(view);
    const LayoutManagerCard* card = view.customCards()[0];
    const QRect preview = place(card->findChild<MiniLayoutPreview*>(), card);
    const auto labels = card->findChildren<TextLabel*>();
    const QRect name = place(labels[0], card);
    const QRect count = place(labels[1], card);
    const QRect button = place(card->deleteButton(), card);
    EXPECT_EQ(preview, QRect(10, 10, card->width() - 20, 70));
    const QRect row = name.united(count);
    EXPECT_EQ(row.top() - (preview.bottom() + 1), 6);
    EXPECT_EQ(row.left(), 10);
    EXPECT_EQ(count.right() + 1, card->width() - 10);
    EXPECT_EQ(button.top() - (row.bottom() + 1), 6);
    EXPECT_EQ(button.left(), 10);
    EXPECT_EQ(button.width(), card->width() - 20);
    EXPECT_EQ(card->height() - (button.bottom() + 1), 10);
    EXPECT_EQ(count.width(), labels[1]->sizeHint().width());
    EXPECT_TRUE(labels[0]->shownText().endsWith(QChar(0x2026)));
}

TEST_F(LayoutManager, LargerFontsClipNothing) {
    const FontSize larger(1.6);
    add(QStringLiteral("Mine"));
    LayoutManagerView view;
    layOut(view);
    for (const TextLabel* label : view.widget()->findChildren<TextLabel*>())
        EXPECT_GE(label->height(), QFontMetrics(label->font()).height());
    EXPECT_GE(view.customCards()[0]->deleteButton()->height(),
              QFontMetrics(view.customCards()[0]->deleteButton()->font()).height());
    EXPECT_GT(view.widget()->height(), view.viewport()->height());
}

TEST_F(LayoutManager, ScrollsVerticallyOnly) {
    for (int i = 0; i < 12; ++i)
        add(QStringLiteral("Layout %1").arg(i));
    LayoutManagerView view;
    layOut(view);
    EXPECT_GT(view.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
    EXPECT_TRUE(view.verticalScrollBar()->isVisible());
    EXPECT_FALSE(view.horizontalScrollBar()->isVisible());
    const QImage top = view.verticalScrollBar()->grab().toImage();
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    EXPECT_NE(view.verticalScrollBar()->grab().toImage(), top);
}

TEST_F(LayoutManager, ShowsADeleteButtonThatHasTheFocus) {
    for (int i = 0; i < 12; ++i)
        add(QStringLiteral("Layout %1").arg(i));
    LayoutManagerView view;
    layOut(view);
    makeActive(view);
    view.customCards()[0]->deleteButton()->setFocus();
    for (int i = 1; i < 12; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    const QWidget* last = view.customCards()[11]->deleteButton();
    EXPECT_TRUE(last->hasFocus());
    EXPECT_TRUE(view.viewport()->rect().contains(place(last, view.viewport())));
}

TEST_F(LayoutManager, NamesItsDeleteButtonsForAssistiveTools) {
    add(QStringLiteral("Mine"));
    const LayoutManagerView view;
    QAccessibleInterface* button =
        QAccessible::queryAccessibleInterface(view.customCards()[0]->deleteButton());
    EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("Delete Mine"));
    EXPECT_EQ(button->role(), QAccessible::Button);
}

/// What assistive tools find below an object, in their order: names and places.
void walk(QAccessibleInterface& object, QStringList& found) {
    for (int i = 0; i < object.childCount(); ++i) {
        QAccessibleInterface& child = *object.child(i);
        if (const QString name = child.text(QAccessible::Name); !name.isEmpty())
            found.append(name);
        walk(child, found);
    }
}

TEST_F(LayoutManager, IsReadInTheOrderInWhichItIsSeen) {
    add(QStringLiteral("One"));
    LayoutManagerView view;
    layOut(view);
    add(QStringLiteral("Two"));
    settle();
    QStringList found;
    walk(*QAccessible::queryAccessibleInterface(view.widget()), found);
    const auto at = [&](const char* name) { return found.indexOf(QString::fromUtf8(name)); };
    EXPECT_LT(at("Your Layouts"), at("One"));
    EXPECT_LT(at("One"), at("Delete One"));
    EXPECT_LT(at("Delete One"), at("Two"));
    EXPECT_LT(at("Delete Two"), at("Built-in Layouts"));
    EXPECT_LT(at("Built-in Layouts"), at("Presets that ship with Tilewright."));
    EXPECT_LT(at("Presets that ship with Tilewright."), at("Halves"));
    EXPECT_GE(at("Your Layouts"), 0);
}

TEST_F(LayoutManager, TellsEachCardsPosition) {
    add(QStringLiteral("One"));
    add(QStringLiteral("Two"));
    LayoutManagerView view;
    layOut(view);
    EXPECT_EQ(view.customCards()[1]->accessibleDescription(), QStringLiteral("2 of 2"));
    EXPECT_EQ(view.builtInCards()[2]->accessibleDescription(), QStringLiteral("3 of 5"));
    add(QStringLiteral("Three"));
    settle();
    EXPECT_EQ(view.customCards()[1]->accessibleDescription(), QStringLiteral("2 of 3"));
}

TEST_F(LayoutManager, FollowsTheStoreOnceATurn) {
    const LayoutManagerView view;
    for (int i = 0; i < 20; ++i)
        add(QStringLiteral("Layout %1").arg(i));
    EXPECT_EQ(desktop.platform.fakeMainLoop.postedCount(), 1U);
    settle();
    EXPECT_EQ(view.customCards().size(), 20U);
}

TEST(AdaptiveGrid, CountsItsColumns) {
    const AdaptiveGridLayout grid(150, 12);
    EXPECT_EQ(grid.columnCount(0), 1);
    EXPECT_EQ(grid.columnCount(311), 1);
    EXPECT_EQ(grid.columnCount(312), 2);
    EXPECT_EQ(grid.columnCount(473), 2);
    EXPECT_EQ(grid.columnCount(474), 3);
}

TEST(AdaptiveGrid, FillsRowsFromTheLeadingEdge) {
    QWidget holder;
    auto* grid = new AdaptiveGridLayout(150, 12, &holder);
    std::vector<QWidget*> cells;
    for (int i = 0; i < 4; ++i) {
        cells.push_back(new QWidget);
        cells.back()->setFixedHeight(i == 1 ? 40 : 30);
        grid->addWidget(cells.back());
    }
    EXPECT_EQ(grid->heightForWidth(488), 40 + 12 + 30);
    grid->setGeometry(QRect(0, 0, 488, 200));
    EXPECT_EQ(cells[0]->x(), 0);
    EXPECT_EQ(cells[2]->geometry().right(), 487);
    EXPECT_EQ(cells[3]->pos(), QPoint(0, 52));
    holder.setLayoutDirection(Qt::RightToLeft);
    grid->setGeometry(QRect(0, 0, 488, 200));
    EXPECT_EQ(cells[0]->geometry().right(), 487);
    EXPECT_EQ(cells[2]->x(), 0);
}

} // namespace
} // namespace tilewright::testing
