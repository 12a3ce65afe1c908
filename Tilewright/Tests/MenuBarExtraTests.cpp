#include <FakePlatform.h>
#include <Tilewright/MenuBarExtra.h>

#include <QPushButton>
#include <QWidget>
#include <gtest/gtest.h>
#include <string_view>

namespace tilewright::testing {
namespace {

struct MenuBarExtraTest : public ::testing::Test {
    const AppKitRect itemPlace{1000, 876, 24, 24};
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    int viewsMade = 0;
    MenuBarExtra extra{[this] {
        ++viewsMade;
        auto view = std::make_unique<QWidget>();
        for (const char* name : {"hidden", "first", "second"}) {
            auto* button = new QPushButton(view.get());
            button->setObjectName(QString::fromLatin1(name));
            button->setVisible(name != std::string_view("hidden"));
        }
        return view;
    }};
};

} // namespace

TEST_F(MenuBarExtraTest, OpensThePanelBesideTheItemOnAClickAndClosesItOnASecondOne) {
    EXPECT_FALSE(extra.panel().isOpen());
    platform.fakeStatusItem.click(itemPlace);
    EXPECT_TRUE(extra.panel().isOpen());
    platform.fakeStatusItem.click(itemPlace);
    EXPECT_FALSE(extra.panel().isOpen());
    platform.fakeStatusItem.click(std::nullopt);
    EXPECT_TRUE(extra.panel().isOpen());
    EXPECT_EQ(platform.panel->anchors,
              (std::vector<PanelSurface::Anchor>{itemPlace, std::nullopt}));
}

TEST_F(MenuBarExtraTest, OpensThePanelByThePointerWhenTheProgramIsStartedAgain) {
    Q_EMIT platform.fakeInstanceActivation.activationRequested();
    EXPECT_TRUE(extra.panel().isOpen());
    Q_EMIT platform.fakeInstanceActivation.activationRequested();
    EXPECT_TRUE(extra.panel().isOpen()) << "it stays open";
    EXPECT_EQ(platform.panel->anchors, std::vector<PanelSurface::Anchor>{std::nullopt});
}

TEST_F(MenuBarExtraTest, GivesTheFirstControlTheFocusWhereItOpensWithoutThePointer) {
    const auto focused = [this] {
        const QWidget* widget = platform.panel->view->focusWidget();
        return widget ? widget->objectName() : QString();
    };
    platform.fakeStatusItem.click(itemPlace);
    EXPECT_EQ(focused(), QString()) << "who clicks knows where";
    platform.fakeStatusItem.click(itemPlace);
    platform.fakeStatusItem.click(std::nullopt);
    EXPECT_EQ(focused(), QStringLiteral("first"));
    platform.fakeStatusItem.click(std::nullopt);
    Q_EMIT platform.fakeInstanceActivation.activationRequested();
    EXPECT_EQ(focused(), QStringLiteral("first"));
    platform.fakeStatusItem.click(std::nullopt);
    platform.fakeStatusItem.click(itemPlace);
    EXPECT_EQ(focused(), QString()) << "the next click is one again";
}

TEST_F(MenuBarExtraTest, MakesItsContentNewAtEachOpening) {
    EXPECT_EQ(viewsMade, 0);
    for (int opening = 1; opening <= 2; ++opening) {
        platform.fakeStatusItem.click(itemPlace);
        EXPECT_EQ(viewsMade, opening);
        platform.fakeStatusItem.click(itemPlace);
    }
}

} // namespace tilewright::testing
