#include "FakePlatform.h"

#include <KeepAwake/KeepAwakeManager.h>
#include <Tilewright/MenuBarView.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/HitArea.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/LayoutCard.h>
#include <TilewrightUI/LayoutPicker.h>
#include <TilewrightUI/Look.h>
#include <WindowManager/LayoutStore.h>

#include <QApplication>
#include <QLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class MenuBarViewTest : public ::testing::Test {
protected:
    MenuBarViewTest() {
        look::setPrefersReducedMotion(false);
        FakeScreen::Values second;
        second.displayID = 2;
        second.frame = {1440, 0, 1440, 900};
        second.localizedName =
            QStringLiteral("A display whose maker was fond of very long names indeed");
        desktop.platform.fakeScreens.setScreens({makeScreen(), makeScreen(second)});
    }

    void layOut(MenuBarView& view) {
        view.show();
        desktop.platform.fakeMainLoop.advance(std::chrono::seconds(3));
        QApplication::sendPostedEvents();
        QApplication::processEvents();
        view.resize(view.sizeHint());
        view.layout()->activate();
    }
    static void addLayouts(int count) {
        for (int i = 0; i < count; ++i) {
            LayoutStore::shared().addCustomLayout({QUuid::createUuid(),
                                                   QStringLiteral("Layout %1").arg(i),
                                                   QStringLiteral("square.dashed"),
                                                   false,
                                                   {}});
        }
    }
    static GlassButton* button(const MenuBarView& view, const QString& title) {
        for (auto* candidate : view.findChildren<GlassButton*>()) {
            if (candidate->title() == title)
                return candidate;
        }
        return nullptr;
    }
    static QRect place(const QWidget* child, const QWidget& view) {
        return {child->mapTo(&view, QPoint()), child->size()};
    }

    FakeDesktop desktop;
};

TEST_F(MenuBarViewTest, IsThreeHundredPointsWideWhateverTheNames) {
    LayoutStore::shared().addCustomLayout(
        {QUuid::createUuid(),
         QStringLiteral("A layout with a name that goes on and on and on"),
         QStringLiteral("square.dashed"),
         false,
         {}});
    MenuBarView view;
    layOut(view);
    EXPECT_EQ(view.width(), 300);
    for (const QWidget* child : view.findChildren<QWidget*>()) {
        // What scrolls, without its bar, which lies in the padding.
        if (const auto* middle = qobject_cast<const QScrollArea*>(child))
            child = middle->viewport();
        else if (child->parentWidget() != &view || qobject_cast<const HitArea*>(child))
            continue;
        if (child->isVisible()) {
            EXPECT_GE(place(child, view).left(), 16);
            EXPECT_LE(place(child, view).right(), 300 - 16 - 1);
        }
    }
}

TEST_F(MenuBarViewTest, StacksItsPartsTwelvePointsApartInSixteenOfPadding) {
    MenuBarView view;
    layOut(view);
    const auto lines = view.findChildren<Hairline*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(lines.size(), 2);
    const QRect keepAwake = place(view.findChild<KeepAwakeControl*>(), view);
    const QRect picker = place(view.findChild<LayoutPicker*>(), view);
    const QRect footer = place(button(view, QStringLiteral("Settings…"))->parentWidget(), view);
    const std::vector<QRect> parts{keepAwake, place(lines[0], view), picker, place(lines[1], view),
                                   footer};
    EXPECT_EQ(parts.front().top(), 16);
    EXPECT_EQ(parts.back().bottom() + 1, view.height() - 16);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        EXPECT_EQ(parts[i].left(), 16);
        EXPECT_EQ(parts[i].right(), 300 - 16 - 1);
        if (i > 0) {
            EXPECT_EQ(parts[i].top() - (parts[i - 1].bottom() + 1), 12);
        }
    }
    EXPECT_EQ(lines[0]->height(), 1);
}

TEST_F(MenuBarViewTest, SaysHowMuchHigherItWillBeWithItsSessionRow) {
    KeepAwakeManager::shared().activate(KeepAwakeSession::indefinite());
    MenuBarView view;
    layOut(view);
    const int height = view.sizeHint().height();
    const int room = view.roomToGrow();
    EXPECT_GT(room, 0);
    KeepAwakeManager::shared().deactivate();
    layOut(view);
    EXPECT_EQ(view.sizeHint().height(), height + room);
    EXPECT_EQ(view.roomToGrow(), 0);
}

TEST_F(MenuBarViewTest, ScrollsTheLayoutsAloneWhereItIsGivenLessHeight) {
    addLayouts(30);
    MenuBarView view;
    layOut(view);
    const auto* keepAwake = view.findChild<KeepAwakeControl*>();
    const QWidget* footer = button(view, QStringLiteral("Quit"))->parentWidget();
    const auto* middle = view.findChild<QScrollArea*>();
    const QRect keepAwakePlace = place(keepAwake, view);
    const int footerHeight = footer->height();
    EXPECT_EQ(middle->verticalScrollBar()->maximum(), 0) << "all of it is in view";
    for (const int height : {700, 500, 360}) {
        view.resize(300, height);
        view.layout()->activate();
        QApplication::sendPostedEvents();
        EXPECT_EQ(place(keepAwake, view), keepAwakePlace);
        EXPECT_EQ(footer->height(), footerHeight);
        EXPECT_EQ(place(footer, view).bottom() + 1, height - 16);
        EXPECT_GT(middle->verticalScrollBar()->maximum(), 0);
        EXPECT_GE(place(middle, view).top(), keepAwakePlace.bottom() + 1 + 12);
        EXPECT_LT(place(middle, view).bottom(), place(footer, view).top());
    }
    const auto* picker = view.findChild<LayoutPicker*>();
    const int top = place(picker, view).top();
    middle->verticalScrollBar()->setValue(40);
    EXPECT_EQ(place(picker, view).top(), top - 40);
    // The bar lies in the padding, on whichever side the text ends.
    EXPECT_GE(place(middle->verticalScrollBar(), view).left(), 300 - 16);
    view.setLayoutDirection(Qt::RightToLeft);
    view.layout()->activate();
    QApplication::sendPostedEvents();
    EXPECT_LT(place(middle->verticalScrollBar(), view).right(), 16);
    EXPECT_EQ(place(middle->viewport(), view).left(), 16);
}

TEST_F(MenuBarViewTest, FollowsTheLayoutsThatComeWhileItIsShown) {
    MenuBarView view;
    layOut(view);
    const int before = view.sizeHint().height();
    addLayouts(6);
    layOut(view);
    EXPECT_GT(view.sizeHint().height(), before);
    EXPECT_EQ(view.findChild<QScrollArea*>()->verticalScrollBar()->maximum(), 0);
}

TEST_F(MenuBarViewTest, ScrollsTheFocusIntoViewWhicheverKeyMovesIt) {
    addLayouts(30);
    MenuBarView view;
    layOut(view);
    view.resize(300, 400);
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.isActiveWindow(); }));
    const auto* middle = view.findChild<QScrollArea*>();
    const auto& cards = view.findChild<LayoutPicker*>()->cards();
    const auto isInView = [&](const QWidget* widget) {
        return place(middle->viewport(), view).contains(place(widget, view));
    };
    cards.front()->setFocus(Qt::TabFocusReason);
    ASSERT_FALSE(isInView(cards.back()));
    QTest::keyClick(cards.front(), Qt::Key_Down);
    for (int row = 2; row < 10; ++row)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), cards[27]);
    EXPECT_TRUE(isInView(cards[27])) << "by an arrow";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(isInView(QApplication::focusWidget())) << "by the Tab key";
    button(view, QStringLiteral("Settings…"))->setFocus(Qt::TabFocusReason);
    middle->verticalScrollBar()->setValue(0);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), cards.back());
    EXPECT_TRUE(isInView(cards.back())) << "from the footer";
}

TEST_F(MenuBarViewTest, LeavesACardThatIsPressedWhereItIs) {
    addLayouts(30);
    MenuBarView view;
    layOut(view);
    view.resize(300, 400);
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.isActiveWindow(); }));
    auto* middle = view.findChild<QScrollArea*>();
    LayoutCard* card = view.findChild<LayoutPicker*>()->cards().front();
    // Only its lower half is in view.
    middle->verticalScrollBar()->setValue(card->mapTo(middle->widget(), QPoint()).y() +
                                          card->height() / 2);
    const QRect before = place(card, view);
    // Through the window, as every press comes.
    QTest::mousePress(view.windowHandle(), Qt::LeftButton, {},
                      card->mapTo(&view, QPoint(20, card->height() - 8)));
    EXPECT_EQ(QApplication::focusWidget(), card);
    EXPECT_EQ(place(card, view), before);
}

TEST_F(MenuBarViewTest, PutsTheFootersButtonsAtItsEnds) {
    MenuBarView view;
    layOut(view);
    const GlassButton* settings = button(view, QStringLiteral("Settings…"));
    const GlassButton* quit = button(view, QStringLiteral("Quit"));
    ASSERT_NE(settings, nullptr);
    ASSERT_NE(quit, nullptr);
    EXPECT_EQ(place(settings, view).left(), 16);
    EXPECT_EQ(place(quit, view).right(), 300 - 16 - 1);
    EXPECT_EQ(settings->font(), look::font(look::TextStyle::caption));
    EXPECT_TRUE(settings->shortcut().isEmpty());
    EXPECT_TRUE(quit->shortcut().isEmpty());
    view.setLayoutDirection(Qt::RightToLeft);
    view.layout()->activate();
    QApplication::sendPostedEvents();
    EXPECT_EQ(place(quit, view).left(), 16);
}

TEST_F(MenuBarViewTest, SettingsOpensThemThenActivatesTheApplication) {
    std::vector<int> activationsAtOpening;
    MenuBarView view(
        [&] { activationsAtOpening.push_back(desktop.platform.fakeWorkspace.activations); });
    button(view, QStringLiteral("Settings…"))->click();
    EXPECT_EQ(activationsAtOpening, std::vector<int>{0});
    EXPECT_EQ(desktop.platform.fakeWorkspace.activations, 1);
}

TEST_F(MenuBarViewTest, SettingsMayEndTheViewItself) {
    std::unique_ptr<MenuBarView> view;
    view = std::make_unique<MenuBarView>([&] { view.release()->deleteLater(); });
    button(*view, QStringLiteral("Settings…"))->click();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(desktop.platform.fakeWorkspace.activations, 1);
}

TEST_F(MenuBarViewTest, QuitEndsTheApplication) {
    MenuBarView view;
    QMetaObject::invokeMethod(
        &view, [&] { button(view, QStringLiteral("Quit"))->click(); }, Qt::QueuedConnection);
    QSignalSpy goodbye(qApp, &QCoreApplication::aboutToQuit);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(goodbye.count(), 1);
}

TEST_F(MenuBarViewTest, IsAsHighAsItsContent) {
    MenuBarView view;
    layOut(view);
    const int idle = view.height();
    KeepAwakeManager::shared().activate(KeepAwakeSession::timed(900));
    layOut(view);
    EXPECT_LT(view.height(), idle);
    KeepAwakeManager::shared().deactivate();
    layOut(view);
    EXPECT_EQ(view.height(), idle);
}

TEST_F(MenuBarViewTest, TheFootersButtonsAreHitAroundTheirTextsToo) {
    MenuBarView view;
    layOut(view);
    for (const auto& title : {QStringLiteral("Settings…"), QStringLiteral("Quit")}) {
        GlassButton* found = button(view, title);
        found->disconnect(qApp);
        QSignalSpy clicks(found, &QAbstractButton::clicked);
        const QPoint middle = place(found, view).center();
        for (int step = -11; step <= 12; ++step) {
            for (const QPoint at : {middle + QPoint(0, step), middle + QPoint(step, 0)}) {
                QWidget* hit = view.childAt(at);
                ASSERT_NE(hit, nullptr);
                const auto before = clicks.count();
                QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(&view, at));
                EXPECT_EQ(clicks.count(), before + 1) << title.toStdString() << " " << step;
            }
        }
    }
}

TEST_F(MenuBarViewTest, LargerFontsClipNothing) {
    const QFont before = QApplication::font();
    QFont larger = before;
    larger.setPointSizeF(before.pointSizeF() * 1.6);
    QApplication::setFont(larger);
    {
        MenuBarView view;
        layOut(view);
        EXPECT_EQ(view.width(), 300);
        for (const auto* each : view.findChildren<GlassButton*>()) {
            if (each->isVisible()) {
                EXPECT_GE(each->width(), each->minimumSizeHint().width());
                EXPECT_GE(each->height(), each->sizeHint().height());
            }
        }
    }
    QApplication::setFont(before);
}

} // namespace
} // namespace tilewright::testing
