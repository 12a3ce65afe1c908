// The panel in its window of AppKit's, and the keyboard going back to where it was.

#include "MacTestPlatform.h"

#include <Tilewright/SettingsWindow.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;
using appkit::MonitorKind;

namespace {

/// Settings that are as high on every display.
class PlainSettings final : public SettingsContent {
public:
    PlainSettings() { setFixedSize(300, 100); }

    void limitHeight(int /*most*/) override {}
};

/// Nothing painted, in a margin of its own.
class PlainChrome final : public PanelChrome {
public:
    QMargins margins(PanelRendering) const override { return {10, 10, 10, 10}; }
    void paint(QPainter&, const QRect&, const QPalette&, PanelRendering) override {}
};

/// A panel over an item at the right of the menu bar, with an application in front.
class MacPanel : public ::testing::Test {
protected:
    MacPanel() {
        appKit.screens = {makeFacts({0, 0, 1440, 900}, 1, 25)};
        activate(7);
        panel = desktop.platform.makePanelSurface([this] { return makeView(); },
                                                  std::make_unique<PlainChrome>());
        QObject::connect(panel.get(), &PanelSurface::dismissed,
                         [this](PanelDismissal why) { dismissals.push_back(why); });
        appKit.mouse = {itemPlace.x + 5, itemPlace.y + 5};
    }

    std::unique_ptr<QWidget> makeView() {
        auto made = std::make_unique<QWidget>();
        made->setFixedWidth(300);
        auto* column = new QVBoxLayout(made.get());
        column->setContentsMargins({});
        first = new QPushButton(u"First"_s);
        first->setFixedHeight(40);
        second = new QPushButton(u"Second"_s);
        second->setFixedHeight(40);
        column->setSpacing(0);
        column->addWidget(first);
        column->addWidget(second);
        view = made.get();
        return made;
    }
    void activate(ProcessID process) {
        appKit.frontmost = process;
        appKit.announce(appkit::Notification::applicationActivated);
    }
    void settle() { desktop.platform.loop().runPosted(); }
    void clickItem() {
        panel->toggle(itemPlace);
        settle();
    }
    void press(MonitorKind kind, AppKitPoint at) {
        appKit.mouse = at;
        appKit.send(kind, {EventType::leftMouseDown, {}});
    }
    void type(Qt::Key key) {
        ASSERT_NE(appKit.keyView(), nullptr);
        QWidget* focused = appKit.keyView()->focusWidget();
        QKeyEvent event(QEvent::KeyPress, key, {});
        QCoreApplication::sendEvent(focused ? focused : appKit.keyView(), &event);
    }
    [[nodiscard]] FakeAppKit::Window& window() { return *appKit.windows.back(); }

    const AppKitRect itemPlace{1200, 875, 24, 25};
    MacDesktop desktop;
    FakeAppKit& appKit = desktop.appKit;
    QPointer<QWidget> view;
    QPushButton* first = nullptr;
    QPushButton* second = nullptr;
    std::unique_ptr<PanelSurface> panel;
    std::vector<PanelDismissal> dismissals;
};

} // namespace

TEST_F(MacPanel, IsAPanelThatHasTheKeyboardWithoutMakingThisProgramTheActiveOne) {
    clickItem();
    const appkit::WindowProperties& properties = window().properties;
    EXPECT_TRUE(properties.isKeyPanel);
    EXPECT_EQ(properties.styleMask, 0x80U) << "non-activating";
    EXPECT_EQ(properties.level, 25);
    EXPECT_EQ(properties.collectionBehavior, 0x141U);
    EXPECT_FALSE(properties.ignoresMouseEvents);
    EXPECT_FALSE(properties.opaque);
    EXPECT_FALSE(properties.hasShadow) << "its chrome paints one";
    EXPECT_TRUE(window().isKey);
    EXPECT_EQ(appKit.activations, 0);
}

TEST_F(MacPanel, HangsFromTheItemWithItsContentInsideTheChrome) {
    clickItem();
    // Centred below the item with a gap of 4, and a margin of 10 around it.
    EXPECT_EQ(window().frame, (AppKitRect{1052, 781, 320, 100}));
    const QWidget* content = QWidget::find(window().content.value_or(0));
    ASSERT_NE(content, nullptr);
    EXPECT_EQ(content->size(), QSize(320, 100));
    EXPECT_EQ(view->geometry(), QRect(10, 10, 300, 80));
}

TEST_F(MacPanel, FollowsItsContentsSizeAndTheDisplays) {
    clickItem();
    first->setFixedHeight(60);
    QCoreApplication::sendPostedEvents(view, QEvent::LayoutRequest);
    EXPECT_EQ(window().frame, (AppKitRect{1052, 761, 320, 120}));
    EXPECT_EQ(appKit.keyView()->size(), QSize(320, 120));
    appKit.screens = {makeFacts({0, 0, 1280, 800}, 1, 25)};
    appKit.announce(appkit::Notification::screenParametersChanged);
    EXPECT_EQ(window().frame.maxY(), 800 - 25 - 4 + 10);
    EXPECT_EQ(window().frame.width, 320);
}

TEST_F(MacPanel, OpensByThePointerWhereTheProgramIsOpenedOnceMore) {
    appKit.mouse = {700, 500};
    panel->open(std::nullopt);
    EXPECT_NEAR(window().frame.center().x, 700, 1);
}

TEST_F(MacPanel, GrowsAwayFromThePointerThatItOpenedAbove) {
    appKit.mouse = {700, 100};
    panel->open(std::nullopt);
    const AppKitRect before = window().frame;
    ASSERT_GE(before.y + 10, 104);
    first->setFixedHeight(60);
    QCoreApplication::sendPostedEvents(view, QEvent::LayoutRequest);
    EXPECT_EQ(window().frame, (AppKitRect{before.x, before.y, before.width, before.height + 20}));
}

TEST_F(MacPanel, ClosesOnEscapeAndMovesTheFocusOnTab) {
    clickItem();
    first->setFocus();
    type(Qt::Key_Tab);
    EXPECT_EQ(appKit.keyView()->focusWidget(), second);
    type(Qt::Key_Escape);
    EXPECT_FALSE(panel->isOpen());
    EXPECT_EQ(dismissals, std::vector{PanelDismissal::escape});
    EXPECT_FALSE(window().isShown);
    EXPECT_FALSE(window().content) << "the view leaves its window before either ends";
}

TEST_F(MacPanel, HighlightsTheItemWhileItIsOpen) {
    // The item exists with the panel; its button is not highlighted by the click's end.
    panel->toggle(itemPlace);
    EXPECT_FALSE(appKit.statusItem->isHighlighted);
    settle();
    EXPECT_TRUE(appKit.statusItem->isHighlighted);
    panel->close();
    settle();
    EXPECT_FALSE(appKit.statusItem->isHighlighted);
}

TEST_F(MacPanel, ClosesOnAPressInAnotherApplicationAndNotOnOneInItsOwnWindows) {
    clickItem();
    press(MonitorKind::local, window().frame.center());
    EXPECT_TRUE(panel->isOpen());
    press(MonitorKind::global, {100, 100});
    EXPECT_EQ(dismissals, std::vector{PanelDismissal::pressOutside});
    clickItem();
    EXPECT_TRUE(panel->isOpen());
}

TEST_F(MacPanel, ClosesWhenAnotherWindowOfTheProgramHasTheKeyboard) {
    clickItem();
    QEvent deactivation(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(appKit.keyView(), &deactivation);
    EXPECT_EQ(dismissals, std::vector{PanelDismissal::anotherWindow});
}

TEST_F(MacPanel, StaysClosedAtTheClickWhosePressTookTheKeyboardFromIt) {
    clickItem();
    // The menu bar belongs to another process, in some versions of the system.
    press(MonitorKind::global, itemPlace.center());
    ASSERT_FALSE(panel->isOpen());
    clickItem();
    EXPECT_FALSE(panel->isOpen());
    clickItem();
    EXPECT_TRUE(panel->isOpen());
}

TEST_F(MacPanel, OpensAgainAtAClickWithAPressOfItsOwn) {
    for (const MonitorKind kind : {MonitorKind::global, MonitorKind::local}) {
        clickItem();
        press(MonitorKind::global, itemPlace.center());
        ASSERT_FALSE(panel->isOpen());
        press(kind, itemPlace.center());
        clickItem();
        EXPECT_TRUE(panel->isOpen());
        panel->close();
    }
    // A press that no click followed is forgotten.
    clickItem();
    press(MonitorKind::global, itemPlace.center());
    desktop.platform.loop().advance(2s);
    clickItem();
    EXPECT_TRUE(panel->isOpen());
}

TEST_F(MacPanel, LeavesTheActiveApplicationAloneWhereThisProgramIsNotIt) {
    clickItem();
    panel->close();
    settle();
    EXPECT_TRUE(appKit.broughtForward.empty()) << "the keyboard goes back by itself";
}

TEST_F(MacPanel, GivesTheKeyboardBackWhereOpeningTheProgramMadeItTheActiveOne) {
    activate(getpid());
    panel->open(std::nullopt);
    settle();
    panel->close();
    settle();
    EXPECT_EQ(appKit.broughtForward, std::vector<ProcessID>{7});
}

TEST_F(MacPanel, LeavesTheKeyboardToTheSettingsThatItOpens) {
    activate(getpid());
    clickItem();
    panel->close();
    SettingsScene settings([] { return std::make_unique<PlainSettings>(); });
    settings.open();
    settle();
    EXPECT_TRUE(appKit.broughtForward.empty());
}

TEST_F(MacPanel, LeavesNothingBehindWhenItEndsOpen) {
    clickItem();
    panel.reset();
    settle();
    EXPECT_TRUE(appKit.monitors.empty());
    EXPECT_FALSE(window().isAlive);
    EXPECT_FALSE(window().content);
}
