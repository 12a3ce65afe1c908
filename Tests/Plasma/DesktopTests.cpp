// The real program in a whole session of Plasma: with its desktop, its panel and its tray.

#include "PlasmaDesktop.h"

#include <ProgramInCompositor.h>

#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <csignal>

namespace tilewright::testing {
namespace {

struct ProgramInPlasmasDesktop : ProgramInCompositor<PlasmaSession> {
    /// Where clients begin.
    static constexpr QRect start{600, 300, 640, 420};

    /// Whether the program prints, in the home, what it says to the compositor and hears from it.
    enum class Trace { none, toFile };

    explicit ProgramInPlasmasDesktop(
        PlasmaDesktop::Panel panel = PlasmaDesktop::Panel::besideWindows, Trace trace = Trace::none)
        : ProgramInCompositor(PlasmaDisplays{}, PlasmaSession::Around::desktop)
        , desktop(session, panel)
        , program(&startProgram(trace == Trace::none ? QStringLiteral(TILEWRIGHT_PROGRAM)
                                                     : tracedProgram(),
                                session.secondConnector())) {
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It slides into its place.
        const auto isInPlace = [&] { return desktop.newItem() && *desktop.newItem() == item; };
        EXPECT_TRUE(waitUntil([&] {
            item = desktop.newItem().value_or(QPoint());
            return staysTrue(isInPlace, std::chrono::milliseconds(1000));
        })) << session.describe();
    }
    [[nodiscard]] QRect workArea() override { return desktop.workArea(); }
    void clickItem() {
        session.input().move(item);
        session.input().click();
    }
    void openPanel() override {
        clickItem();
        ASSERT_TRUE(waitUntil([&] {
            return session.isWindow(panelTitle, QStringLiteral("active && w.keepAbove"));
        })) << session.describe();
        // A key that comes in the moment in which it opens finds nothing in it to press yet.
        ASSERT_TRUE(waitUntil([&] {
            const QImage picture = session.picture();
            return staysTrue([&] { return session.picture() == picture; },
                             std::chrono::milliseconds(300));
        }));
    }

    [[nodiscard]] bool isInFront(const QString& title) override {
        return session.isWindow(title, QStringLiteral("active"));
    }

    [[nodiscard]] QString traceFile() const { return session.home() + QStringLiteral("/trace"); }
    /// A script that becomes the program, traced.
    [[nodiscard]] QString tracedProgram() const {
        QString script = session.home() + QStringLiteral("/traced");
        writeFile(script, "#!/bin/sh\nWAYLAND_DEBUG=1 exec '" TILEWRIGHT_PROGRAM "' 2>'" +
                              QFile::encodeName(traceFile()) + "'\n");
        EXPECT_TRUE(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
        return script;
    }

    PlasmaDesktop desktop;
    Subprocess* const program;
    /// Where the tray shows it.
    QPoint item;
};

struct ProgramTracedInPlasmasDesktop : ProgramInPlasmasDesktop {
    ProgramTracedInPlasmasDesktop()
        : ProgramInPlasmasDesktop(PlasmaDesktop::Panel::besideWindows, Trace::toFile) {}
    /// How often the program has asked to come to the front with a token that it had not asked the
    /// compositor for itself.
    [[nodiscard]] qsizetype leavesFromElsewhere() const {
        QFile file(traceFile());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString trace = QString::fromUtf8(file.readAll());
        const auto tokens = [&trace](const QString& before) {
            const QRegularExpression call(before + QStringLiteral("\\(\"([^\"]+)\""));
            QStringList found;
            for (const QRegularExpressionMatch& match : call.globalMatch(trace))
                found += match.captured(1);
            return found;
        };
        const QStringList own = tokens(QStringLiteral("xdg_activation_token_v1[@#]\\d+\\.done"));
        const QStringList used = tokens(QStringLiteral("xdg_activation_v1[@#]\\d+\\.activate"));
        return std::count_if(used.begin(), used.end(),
                             [&own](const QString& token) { return !own.contains(token); });
    }
};

struct ProgramBelowPlasmasPanel : ProgramInPlasmasDesktop {
    ProgramBelowPlasmasPanel()
        : ProgramInPlasmasDesktop(PlasmaDesktop::Panel::aboveWindows) {}
};

} // namespace

TEST_F(ProgramInPlasmasDesktop, OpensItsPanelAtItsItemInTheTrayAndClosesItByAnotherClick) {
    for (int round = 0; round < 2; ++round) {
        openPanel();
        const QRect frame = session.frame(panelTitle);
        EXPECT_TRUE(frame.left() < item.x() && item.x() < frame.right());
        // Its shadow ends below it.
        constexpr int shadow = 60;
        EXPECT_NEAR(frame.bottom(), workArea().bottom(), shadow);
        clickItem();
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        EXPECT_TRUE(staysTrue([&] { return !isPanelOpen(); }, std::chrono::milliseconds(500)));
    }
}

TEST_F(ProgramInPlasmasDesktop, KeepsTheDisplayAwakeUntilItIsToldToStopOrIsKilled) {
    constexpr std::chrono::seconds plasmaThinksItOver{20};
    expectToKeepAwakeUntilToldToStopOrKilled(
        *program, [&] { openPanel(); }, [&] { return desktop.isKeptAwake(); }, plasmaThinksItOver);
}

TEST_F(ProgramInPlasmasDesktop, DividesWhatThePanelLeavesOfTheDisplayWhicheverWayItHides) {
    const QString title = session.startClient(CompositorClient::qt, start);
    const QRect display = session.displays().front();
    const QRect beside = workArea();
    ASSERT_LT(beside.height(), display.height());
    const auto expectItDivides = [&](const QRect& area, const QString& hiding) {
        SCOPED_TRACE(hiding.toStdString());
        ASSERT_EQ(desktop.setPanelHiding(hiding), hiding);
        // Plasma takes its time.
        ASSERT_TRUE(waitUntil([&] { return workArea() == area; }, std::chrono::seconds(20)))
            << "the work area ends at " << workArea().bottom();
        dragToFirstZone(title);
        drop();
        EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
        EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
        session.place(title, start);
    };
    const bool isPlasma5 = session.generation() == 5;
    expectItDivides(beside, QStringLiteral("none"));
    expectItDivides(display, QStringLiteral("autohide"));
    expectItDivides(display,
                    isPlasma5 ? QStringLiteral("windowscover") : QStringLiteral("dodgewindows"));
    expectItDivides(beside, QStringLiteral("none"));
}

TEST_F(ProgramTracedInPlasmasDesktop, ComesToTheFrontWithTheLeaveThatTheTrayHandsIt) {
    const QString other = session.startClient(CompositorClient::qt, start);
    ASSERT_TRUE(waitUntil([&] { return isInFront(other); })) << session.describe();
    openPanel();
    EXPECT_TRUE(waitUntil([&] { return leavesFromElsewhere() == 1; }))
        << leavesFromElsewhere() << session.describe();
    // No shadow fits below the panel there.
    constexpr int shadowBelow = 20;
    session.input().move(settingsInPanel() + QPoint(0, shadowBelow));
    session.input().click();
    EXPECT_TRUE(waitUntil([&] { return isInFront(settingsTitle); })) << session.describe();
    EXPECT_EQ(leavesFromElsewhere(), 1) << "used once";
}

TEST_F(ProgramBelowPlasmasPanel, ShowsItsZonesAboveThatAndAboveAFullScreenWindow) {
    const QRect display = session.displays().front();
    ASSERT_TRUE(waitUntil([&] { return workArea() == display; })) << session.describe();
    const QString below = session.startClient(CompositorClient::gtk4, {0, 400, 1000, 680});
    const QString title = session.startClient(CompositorClient::qt, {600, 200, 640, 420});
    // Between the tasks and the tray.
    const QPoint onPanel(zone(0).right() - 60, desktop.panel().center().y());
    const QPoint besidePanel(onPanel.x(), desktop.panel().top() - 60);
    const auto amber = [&] {
        const QColor colour = session.pixel(onPanel);
        return colour.red() - colour.blue();
    };
    session.grab(title);
    session.input().glide(zone(0).center());
    EXPECT_TRUE(waitUntil([&] { return session.pixel(onPanel) != session.pixel(besidePanel); }))
        << "it is above windows";
    // It changes with the windows below it, a little and for a while.
    int bare = 0;
    EXPECT_TRUE(waitUntil([&] {
        bare = amber();
        return staysTrue([&] { return amber() == bare; }, std::chrono::milliseconds(500));
    }));
    const auto isLit = [&] { return amber() > bare + 10; };
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(0).center() + QPoint(6, 0), 3);
    ASSERT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
    EXPECT_TRUE(waitUntil(isLit)) << amber() << " after " << bare;
    session.input().releaseKey(KernelKey::control);
    session.input().glide(zone(0).center(), 3);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
    EXPECT_TRUE(waitUntil([&] { return !isLit(); })) << amber() << " after " << bare;
    // With Control held it would end no drag in Plasma 5.
    session.input().tap(KernelKey::escape);
    drop();

    session.tell(QStringLiteral("find('%1').fullScreen = true").arg(below));
    ASSERT_TRUE(waitUntil([&] { return session.frame(below) == display; }));
    const QString above = session.startClient(CompositorClient::qt, {600, 200, 640, 420});
    dragToFirstZone(above);
    drop();
    EXPECT_TRUE(endsIn(above, zone(0))) << session.describe();
    EXPECT_TRUE(session.isWindow(below, QStringLiteral("fullScreen")));
}

} // namespace tilewright::testing
