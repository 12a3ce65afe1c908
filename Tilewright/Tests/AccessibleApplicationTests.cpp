#include <Tilewright/AccessibleApplication.h>

#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

QAccessibleInterface* application() {
    installAccessibleApplication();
    return QAccessible::queryAccessibleInterface(qApp);
}

TEST(AccessibleApplication, HasThePopUpsThatAreShownAmongItsWindows) {
    QWidget window;
    window.setAccessibleName(QStringLiteral("Window"));
    window.show();
    QMenu menu;
    menu.setAccessibleName(QStringLiteral("Menu"));
    menu.addAction(QStringLiteral("Entry"));
    ASSERT_EQ(application()->childCount(), 1);
    menu.popup(QPoint(10, 10));
    ASSERT_EQ(application()->childCount(), 2);
    EXPECT_EQ(application()->child(0)->text(QAccessible::Name), QStringLiteral("Window"));
    QAccessibleInterface* shown = application()->child(1);
    EXPECT_EQ(shown->text(QAccessible::Name), QStringLiteral("Menu"));
    EXPECT_EQ(shown->parent(), application());
    EXPECT_EQ(application()->indexOfChild(shown), 1);
    EXPECT_EQ(application()->child(2), nullptr);
    menu.close();
    EXPECT_EQ(application()->childCount(), 1);
}

} // namespace
} // namespace tilewright
