#include <MacOS/MacEditMenu.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace Qt::StringLiterals;

namespace {

class MacEditMenuTest : public ::testing::Test {
protected:
    MacEditMenuTest() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(field);
        layout->addWidget(button);
        button->setFocusPolicy(Qt::StrongFocus);
        window.show();
        window.activateWindow();
    }
    void focus(QWidget* widget) {
        widget->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::focusWidget() == widget; }, 20'000));
    }
    void trigger(int index) { menu.actions().at(index)->trigger(); }

    MacEditMenu menu;
    QWidget window;
    QLineEdit* field = new QLineEdit;
    QPushButton* button = new QPushButton;
};

enum Item { undo, redo, cut, copy, paste, selectAll };

} // namespace

TEST_F(MacEditMenuTest, HasThePlatformsShortcuts) {
    const QList<QAction*> actions = menu.actions();
    ASSERT_EQ(actions.size(), 6);
    EXPECT_EQ(actions[undo]->shortcut(), QKeySequence(QKeySequence::Undo));
    EXPECT_EQ(actions[cut]->shortcut(), QKeySequence(QKeySequence::Cut));
    EXPECT_EQ(actions[copy]->shortcut(), QKeySequence(QKeySequence::Copy));
    EXPECT_EQ(actions[paste]->shortcut(), QKeySequence(QKeySequence::Paste));
    EXPECT_EQ(actions[selectAll]->shortcut(), QKeySequence(QKeySequence::SelectAll));
}

TEST_F(MacEditMenuTest, EditsTheTextFieldWithTheFocus) {
    field->setText(u"halves"_s);
    focus(field);
    trigger(selectAll);
    EXPECT_EQ(field->selectedText(), u"halves"_s);
    trigger(copy);
    EXPECT_EQ(QApplication::clipboard()->text(), u"halves"_s);
    trigger(cut);
    EXPECT_EQ(field->text(), QString());
    trigger(paste);
    trigger(paste);
    EXPECT_EQ(field->text(), u"halveshalves"_s);
    trigger(undo);
    EXPECT_EQ(field->text(), u"halves"_s);
    trigger(redo);
    EXPECT_EQ(field->text(), u"halveshalves"_s);
}

TEST_F(MacEditMenuTest, LeavesWidgetsWithoutTextAlone) {
    field->setText(u"halves"_s);
    field->selectAll();
    focus(button);
    trigger(cut);
    EXPECT_EQ(field->text(), u"halves"_s);
    window.hide();
    trigger(cut);
    EXPECT_EQ(field->text(), u"halves"_s);
}
