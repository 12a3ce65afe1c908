#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/KeepAwakeControl.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/SlidingRow.h>
#include <TilewrightUI/TextLabel.h>
#include <TilewrightUI/ToggleSwitch.h>

#include "FakePlatform.h"

#include <QAccessible>
#include <QGraphicsOpacityEffect>
#include <QTest>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;

constexpr int width = 340;

class KeepAwakeControlTest : public ::testing::Test {
protected:
    KeepAwakeControlTest() { look::setPrefersReducedMotion(false); }

    /// The control in a window, as the panel shows it.
    struct Shown {
        Shown() {
            control.resize(width, control.sizeHint().height());
            control.show();
            QCoreApplication::sendPostedEvents();
            settleLayout();
        }
        void settleLayout() {
            QCoreApplication::sendPostedEvents();
            control.resize(width, control.sizeHint().height());
            QCoreApplication::sendPostedEvents();
        }

        KeepAwakeControl control;
    };

    static QString status(const KeepAwakeControl& control) {
        const auto labels = control.findChildren<TextLabel*>();
        return labels.size() == 2 ? labels[1]->text() : QString();
    }
    static ToggleSwitch& toggle(const KeepAwakeControl& control) {
        return *control.findChild<ToggleSwitch*>();
    }
    static SlidingRow& row(const KeepAwakeControl& control) {
        return *control.findChild<SlidingRow*>();
    }
    static QList<GlassButton*> buttons(const KeepAwakeControl& control) {
        return control.findChildren<GlassButton*>();
    }

    /// Turns the loop without letting time pass, and shows the control's state.
    void refresh(Shown& shown) {
        loop.runPosted();
        shown.settleLayout();
    }
    /// Lets time pass until nothing moves any more.
    void settle(Shown& shown) {
        for (int i = 0; i < 40 && row(shown.control).presence() != target(); ++i) {
            loop.advance(16ms);
            shown.settleLayout();
        }
    }
    [[nodiscard]] double target() const { return manager.isActive() ? 0 : 1; }

    void expectInactiveLook(const Shown& shown) {
        EXPECT_EQ(status(shown.control), QStringLiteral("Display sleep allowed"));
        EXPECT_FALSE(toggle(shown.control).isOn());
        EXPECT_EQ(row(shown.control).presence(), 1);
        EXPECT_TRUE(row(shown.control).isVisible());
    }

    FakeDesktop desktop;
    FakeMainLoop& loop = desktop.platform.fakeMainLoop;
    FakePowerAssertions& power = desktop.platform.fakePowerAssertions;
    KeepAwakeManager& manager = KeepAwakeManager::shared();
};

const auto indefinite = KeepAwakeSession::indefinite();

QString timedText(double seconds) {
    return KeepAwakeControl::statusText(true, KeepAwakeSession::timed(1), seconds);
}

TEST_F(KeepAwakeControlTest, SaysWhatTheManagerDoes) {
    EXPECT_EQ(KeepAwakeControl::statusText(false, std::nullopt, 0),
              QStringLiteral("Display sleep allowed"));
    EXPECT_EQ(KeepAwakeControl::statusText(true, indefinite, 0),
              QStringLiteral(u"Active \u2014 indefinitely"));
    EXPECT_EQ(KeepAwakeControl::statusText(true, std::nullopt, 5),
              QStringLiteral(u"Active \u2014 indefinitely"));
    EXPECT_EQ(KeepAwakeControl::statusText(false, KeepAwakeSession::timed(5), 5),
              QStringLiteral("Display sleep allowed"));
}

TEST_F(KeepAwakeControlTest, CountsInMinutesAndSecondsTruncatedTowardZero) {
    EXPECT_EQ(timedText(900), QStringLiteral(u"Active \u2014 15:00 remaining"));
    EXPECT_EQ(timedText(899), QStringLiteral(u"Active \u2014 14:59 remaining"));
    EXPECT_EQ(timedText(7200), QStringLiteral(u"Active \u2014 120:00 remaining"));
    EXPECT_EQ(timedText(7199), QStringLiteral(u"Active \u2014 119:59 remaining"));
    EXPECT_EQ(timedText(59.99), QStringLiteral(u"Active \u2014 0:59 remaining"));
    EXPECT_EQ(timedText(1), QStringLiteral(u"Active \u2014 0:01 remaining"));
    EXPECT_EQ(timedText(-0.5), QStringLiteral(u"Active \u2014 0:00 remaining"));
    EXPECT_EQ(timedText(-65), QStringLiteral(u"Active \u2014 -1:-5 remaining"));
    EXPECT_EQ(timedText(std::nextafter(0x1p63, 0)),
              QStringLiteral(u"Active \u2014 153722867280912913:04 remaining"));
    EXPECT_EQ(timedText(-0x1p63),
              QStringLiteral(u"Active \u2014 -153722867280912930:-8 remaining"));
}

using KeepAwakeControlDeathTest = KeepAwakeControlTest;

TEST_F(KeepAwakeControlDeathTest, ACountThatIsNoNumberOfSecondsIsFatal) {
    for (const double seconds :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), 0x1p63, -0x1p64})
        EXPECT_DEATH((void)timedText(seconds), "no number of seconds") << seconds;
}

TEST_F(KeepAwakeControlTest, ShowsTheInactiveStateAtFirst) {
    const Shown shown;
    expectInactiveLook(shown);
    EXPECT_EQ(shown.control.findChildren<TextLabel*>()[0]->text(), QStringLiteral("Keep Awake"));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(KeepAwakeControlTest, ShowsARunningSessionWithoutMotionWhenItIsMade) {
    manager.activate(indefinite);
    const Shown shown;
    EXPECT_TRUE(toggle(shown.control).isOn());
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 indefinitely"));
    EXPECT_FALSE(row(shown.control).isVisible());
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(KeepAwakeControlTest, TheButtonsStartTheirSessions) {
    const std::array durations{900.0, 3600.0, 7200.0};
    const std::array labels{QStringLiteral("15m"), QStringLiteral("1h"), QStringLiteral("2h")};
    for (qsizetype i = 0; i < 3; ++i) {
        Shown shown;
        ASSERT_EQ(buttons(shown.control).size(), 3);
        GlassButton& button = *buttons(shown.control)[i];
        EXPECT_EQ(button.title(), labels[static_cast<std::size_t>(i)]);
        QTest::mouseClick(&button, Qt::LeftButton);
        EXPECT_EQ(manager.session(),
                  KeepAwakeSession::timed(durations[static_cast<std::size_t>(i)]));
        manager.deactivate();
    }
}

TEST_F(KeepAwakeControlTest, ATimedSessionShowsAtOnceAndCountsDown) {
    Shown shown;
    QTest::mouseClick(buttons(shown.control)[0], Qt::LeftButton);
    refresh(shown);
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 15:00 remaining"));
    EXPECT_TRUE(toggle(shown.control).isOn());
    loop.advance(999ms);
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 15:00 remaining"));
    loop.advance(1ms);
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 14:59 remaining"));
    EXPECT_FALSE(row(shown.control).isVisible());
}

TEST_F(KeepAwakeControlTest, ATimedSessionEndsAfterItsLastSecond) {
    Shown shown;
    manager.activate(KeepAwakeSession::timed(2));
    refresh(shown);
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 0:02 remaining"));
    loop.advance(1s);
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 0:01 remaining"));
    loop.advance(1s);
    EXPECT_EQ(status(shown.control), QStringLiteral("Display sleep allowed"));
    EXPECT_FALSE(toggle(shown.control).isOn());
    settle(shown);
    expectInactiveLook(shown);
    loop.advance(1s);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(KeepAwakeControlTest, TheSwitchStartsAndEndsAnIndefiniteSession) {
    Shown shown;
    QTest::mouseClick(&toggle(shown.control), Qt::LeftButton);
    EXPECT_EQ(manager.session(), indefinite);
    refresh(shown);
    EXPECT_TRUE(toggle(shown.control).isOn());
    EXPECT_EQ(status(shown.control), QStringLiteral(u"Active \u2014 indefinitely"));
    settle(shown);
    EXPECT_FALSE(row(shown.control).isVisible());
    QTest::mouseClick(&toggle(shown.control), Qt::LeftButton);
    EXPECT_FALSE(manager.isActive());
    refresh(shown);
    settle(shown);
    expectInactiveLook(shown);
}

TEST_F(KeepAwakeControlTest, TheSwitchEndsATimedSessionAndThenStartsAnIndefiniteOne) {
    Shown shown;
    QTest::mouseClick(buttons(shown.control)[1], Qt::LeftButton);
    refresh(shown);
    QTest::mouseClick(&toggle(shown.control), Qt::LeftButton);
    EXPECT_FALSE(manager.isActive());
    refresh(shown);
    QTest::mouseClick(&toggle(shown.control), Qt::LeftButton);
    EXPECT_EQ(manager.session(), indefinite);
}

TEST_F(KeepAwakeControlTest, TheSwitchStartsAnIndefiniteSessionOverATimedOneThatItDoesNotShowYet) {
    Shown shown;
    QTest::mouseClick(buttons(shown.control)[1], Qt::LeftButton);
    ASSERT_FALSE(toggle(shown.control).isOn());
    QTest::mouseClick(&toggle(shown.control), Qt::LeftButton);
    EXPECT_EQ(manager.session(), indefinite);
}

TEST_F(KeepAwakeControlTest, WritesItsTitleAsAHeadlineAndItsStatusAsASecondaryCaption) {
    const Shown shown;
    const auto labels = shown.control.findChildren<TextLabel*>();
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[0]->style(), look::TextStyle::headline);
    EXPECT_EQ(labels[0]->importance(), TextLabel::Importance::primary);
    EXPECT_EQ(labels[1]->style(), look::TextStyle::caption);
    EXPECT_EQ(labels[1]->importance(), TextLabel::Importance::secondary);
}

TEST_F(KeepAwakeControlTest, AFailureLeavesTheControlAsItWas) {
    power.failure = 5;
    Shown shown;
    QTest::mouseClick(&toggle(shown.control), Qt::LeftButton);
    refresh(shown);
    expectInactiveLook(shown);
    for (GlassButton* button : buttons(shown.control)) {
        QTest::mouseClick(button, Qt::LeftButton);
        refresh(shown);
        expectInactiveLook(shown);
    }
    EXPECT_EQ(power.creations.size(), 4U);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(KeepAwakeControlTest, EverythingIsWithinReachOfTheKeyboard) {
    Shown shown;
    shown.control.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&shown.control, 20000));
    toggle(shown.control).setFocus();
    for (GlassButton* button : buttons(shown.control)) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(button->hasFocus());
    }
    QTest::keyClick(buttons(shown.control)[2], Qt::Key_Space);
    EXPECT_EQ(manager.session(), KeepAwakeSession::timed(7200));
    refresh(shown);
    // The row has gone from under the focus.
    EXPECT_TRUE(toggle(shown.control).hasFocus());
    QTest::keyClick(&toggle(shown.control), Qt::Key_Space);
    EXPECT_FALSE(manager.isActive());
    refresh(shown);
    QTest::keyClick(&toggle(shown.control), Qt::Key_Tab);
    EXPECT_TRUE(buttons(shown.control)[0]->hasFocus());
}

TEST_F(KeepAwakeControlTest, TellsAssistiveToolsNamesAndStates) {
    Shown shown;
    auto* toggleInterface = QAccessible::queryAccessibleInterface(&toggle(shown.control));
    EXPECT_EQ(toggleInterface->text(QAccessible::Name), QStringLiteral("Keep Awake"));
    EXPECT_TRUE(toggleInterface->state().checkable);
    EXPECT_FALSE(toggleInterface->state().checked);
    auto* button = QAccessible::queryAccessibleInterface(buttons(shown.control)[0]);
    EXPECT_EQ(button->role(), QAccessible::Button);
    EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("15m"));
    EXPECT_EQ(button->text(QAccessible::Description),
              QStringLiteral("Keeps the display awake for 15 minutes"));
    manager.activate(indefinite);
    refresh(shown);
    EXPECT_TRUE(toggleInterface->state().checked);
}

TEST_F(KeepAwakeControlTest, LaysItsPartsOutInEvenSteps) {
    const Shown shown;
    const auto frame = [&](const QWidget& widget) {
        return QRect(widget.mapTo(&shown.control, QPoint()), widget.size());
    };
    const auto labels = shown.control.findChildren<TextLabel*>();
    EXPECT_EQ(frame(*labels[0]).left(), 0);
    EXPECT_EQ(frame(*labels[1]).left(), 0);
    EXPECT_EQ(frame(*labels[1]).top() - (frame(*labels[0]).bottom() + 1), 2);
    const QRect toggleFrame = frame(toggle(shown.control));
    EXPECT_EQ(toggleFrame.right() + 1, width);
    const int linesBottom = frame(*labels[1]).bottom();
    EXPECT_NEAR(toggleFrame.center().y(), linesBottom / 2, 1);
    const auto all = buttons(shown.control);
    const double cell = (width - 16) / 3.0;
    for (qsizetype i = 0; i < 3; ++i) {
        const QRect bezel = frame(*all[i]);
        EXPECT_EQ(bezel.size(), all[i]->sizeHint());
        EXPECT_EQ(bezel.top() - (linesBottom + 1), 8);
        EXPECT_NEAR(QRectF(bezel).center().x(), (static_cast<double>(i) * (cell + 8)) + (cell / 2),
                    1);
    }
    EXPECT_EQ(frame(*all[0]).bottom() + 1, shown.control.height());
}

TEST_F(KeepAwakeControlTest, TheRowFadesAndSlidesOutOnACriticallyDampedSpring) {
    Shown shown;
    const int fullHeight = shown.control.height();
    const int rowHeight = row(shown.control).height();
    manager.activate(indefinite);
    refresh(shown);
    EXPECT_EQ(shown.control.height(), fullHeight);
    QWidget* content = buttons(shown.control)[0]->parentWidget();
    double before = 1;
    for (int frames = 1; row(shown.control).isVisible(); ++frames) {
        ASSERT_LT(frames, 60);
        loop.advance(16ms);
        shown.settleLayout();
        const double presence = row(shown.control).presence();
        ASSERT_GE(presence, 0);
        ASSERT_LT(presence, before);
        before = presence;
        const double seconds = 0.016 * frames;
        const double angle = 2 * 3.14159265358979 / 0.25 * seconds;
        if (presence > 0) {
            ASSERT_NEAR(presence, (1 + angle) * std::exp(-angle), 1e-6);
        }
        if (row(shown.control).isVisible()) {
            EXPECT_EQ(content->y() + content->height(), row(shown.control).height());
            EXPECT_NEAR(row(shown.control).height(), presence * rowHeight, 0.51);
            EXPECT_NEAR(qobject_cast<QGraphicsOpacityEffect*>(content->graphicsEffect())->opacity(),
                        presence, 1e-9);
        }
    }
    EXPECT_EQ(shown.control.height(), fullHeight - rowHeight);
    loop.advance(1s);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(KeepAwakeControlTest, TheRowComesBackTheWayItWent) {
    manager.activate(indefinite);
    Shown shown;
    const int shortHeight = shown.control.height();
    manager.deactivate();
    refresh(shown);
    loop.advance(48ms);
    shown.settleLayout();
    EXPECT_GT(row(shown.control).presence(), 0);
    EXPECT_LT(row(shown.control).presence(), 1);
    EXPECT_TRUE(row(shown.control).isVisible());
    EXPECT_GT(shown.control.height(), shortHeight);
    settle(shown);
    expectInactiveLook(shown);
    EXPECT_FALSE(buttons(shown.control)[0]->parentWidget()->graphicsEffect()->isEnabled());
}

TEST_F(KeepAwakeControlTest, TheRowTurnsRoundMidway) {
    Shown shown;
    const int fullHeight = shown.control.height();
    manager.activate(indefinite);
    refresh(shown);
    loop.advance(48ms);
    manager.deactivate();
    refresh(shown);
    settle(shown);
    expectInactiveLook(shown);
    EXPECT_EQ(shown.control.height(), fullHeight);
}

TEST_F(KeepAwakeControlTest, ALeavingRowTakesNoClicks) {
    Shown shown;
    const QPoint place = buttons(shown.control)[0]->mapTo(
        &shown.control, buttons(shown.control)[0]->rect().center());
    EXPECT_EQ(shown.control.childAt(place), buttons(shown.control)[0]);
    manager.activate(indefinite);
    refresh(shown);
    EXPECT_FALSE(qobject_cast<GlassButton*>(shown.control.childAt(place)));
    manager.deactivate();
    refresh(shown);
    EXPECT_EQ(shown.control.childAt(place), buttons(shown.control)[0]);
}

TEST_F(KeepAwakeControlTest, ReducedMotionTakesNoTime) {
    look::setPrefersReducedMotion(true);
    Shown shown;
    manager.activate(indefinite);
    refresh(shown);
    EXPECT_FALSE(row(shown.control).isVisible());
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    look::setPrefersReducedMotion(false);
}

TEST_F(KeepAwakeControlTest, HidingEndsTheMotion) {
    Shown shown;
    manager.activate(indefinite);
    refresh(shown);
    loop.advance(32ms);
    shown.control.hide();
    EXPECT_EQ(row(shown.control).presence(), 0);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    shown.control.show();
    EXPECT_FALSE(row(shown.control).isVisible());
}

TEST_F(KeepAwakeControlTest, HasNoTimerWhileNothingRunsOrIndefinitely) {
    Shown shown;
    loop.advance(1h);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
    manager.activate(indefinite);
    refresh(shown);
    settle(shown);
    loop.advance(1s);
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

} // namespace
} // namespace tilewright::testing
