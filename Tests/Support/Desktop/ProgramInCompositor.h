#pragma once

#include "BusFlood.h"
#include "CompositorSession.h"
#include "Waiting.h"

#include <FreeDesktop/DisplayKeys.h>
#include <WindowManager/ZoneLayout.h>
#include <cmath>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <utility>

namespace tilewright::testing {

/// What a user does with the program in a session of a compositor, and sees of it. Whoever derives
/// from this starts the program.
template<class Session>
struct ProgramInCompositor : ::testing::Test {
    /// Starts a session from these.
    template<class... Arguments>
    explicit ProgramInCompositor(const Arguments&... arguments)
        : session(arguments...) {}

    /// Starts the program for a user who has chosen thirds for the display at the second
    /// connector, and nothing for any other.
    Subprocess& startProgram(const QString& path, const QString& secondConnector) {
        writeFile(session.home() + QStringLiteral("/.local/share/Tilewright/layouts.json"),
                  QStringLiteral(R"({"customLayouts":[],"assignments":{"display-%1":"%2"}})")
                      .arg(displayNumber(secondConnector))
                      .arg(ZoneLayout::thirds().id.toString(QUuid::WithoutBraces).toUpper())
                      .toUtf8());
        return session.start(path);
    }
    /// The part of the first display that zones divide.
    [[nodiscard]] virtual QRect workArea() = 0;
    /// How many of the compositor's units lie along a point on the display that has this place.
    [[nodiscard]] virtual int unitsPerPoint(QPoint) { return 1; }
    /// The frame of a zone of the layout that every display begins with.
    [[nodiscard]] QRect zone(std::size_t index) {
        return frameOf(ZoneLayout::bentoBox().zones[index], workArea());
    }
    /// The frame of a zone in a work area.
    [[nodiscard]] static QRect frameOf(const Zone& zone, const QRect& area) {
        const auto edge = [](double part, int whole) { return int(std::lround(part * whole)); };
        const QPoint topLeft(edge(zone.x, area.width()), edge(zone.y, area.height()));
        const QPoint end(edge(zone.x + zone.width, area.width()),
                         edge(zone.y + zone.height, area.height()));
        return {area.topLeft() + topLeft, area.topLeft() + end - QPoint(1, 1)};
    }
    /// Whether the overlay highlights that zone, by its border at the foot of the left edge.
    [[nodiscard]] bool isHighlighted(const QRect& zone) {
        const int unit = unitsPerPoint(zone.center());
        const QColor colour = session.pixel({zone.left() + 5 * unit, zone.bottom() - 60 * unit});
        return std::abs(colour.red() - 209) < 12 && std::abs(colour.green() - 140) < 12 &&
               std::abs(colour.blue() - 51) < 12;
    }
    void dragToFirstZone(const QString& title, KernelKey key = KernelKey::control) {
        dragTo(zone(0), title, key);
    }
    /// Drags a window to a zone, and presses the key there.
    void dragTo(const QRect& zone, const QString& title, KernelKey key = KernelKey::control) {
        session.grab(title);
        session.input().glide(zone.center());
        session.input().pressKey(key);
        // The zones show at the next motions with the key held.
        session.input().glide(zone.center() + QPoint(6, 0), 3);
        ASSERT_TRUE(waitUntil([&] { return isHighlighted(zone); })) << session.describe();
    }
    void drop(KernelKey key = KernelKey::control) {
        session.input().release();
        EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
        session.input().releaseKey(key);
    }

    /// Whether a window gets a frame that is no more than that off, and keeps it.
    [[nodiscard]] ::testing::AssertionResult endsIn(const QString& title, const QRect& frame,
                                                    int tolerance = 0) {
        const auto isThere = [&] { return isNear(session.frame(title), frame, tolerance); };
        if (waitUntil(isThere) && staysTrue(isThere, std::chrono::milliseconds(400)))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << title.toStdString() << " has " << text(session.frame(title)) << " instead of "
               << text(frame);
    }
    /// Drags a window twice, and expects that the program does nothing to it: one drag is cancelled
    /// by Escape, the other has no key held.
    void expectNoPartAfterEscapeAndWithoutControl(const QString& title) {
        const QRect start = session.frame(title);
        dragToFirstZone(title);
        session.input().tap(KernelKey::escape);
        EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); }));
        drop();
        EXPECT_TRUE(endsIn(title, start)) << session.describe();

        session.grab(title);
        session.input().glide({700, 700});
        EXPECT_FALSE(isHighlighted(zone(0)));
        session.input().release();
        EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
        EXPECT_EQ(session.frame(title).size(), start.size());
    }
    /// Drags a window to a display with this work area, back and there again, and from there the
    /// same way, the key pressed where each drag began, and expects each display to show and to
    /// fill its own zones, and only while the pointer is over it.
    void expectEachDisplaysOwnZones(const QString& title, const QRect& second, int tolerance = 0) {
        const auto third = [&](int index) {
            return frameOf(ZoneLayout::thirds().zones[std::size_t(index)], second);
        };
        const QPoint onFirst = zone(3).center();
        // Beside the window that hangs over from the first one.
        const QPoint onSecond = third(0).center() - QPoint(third(0).width() / 4, 0);
        const QColor groundOfFirst = session.pixel(onFirst);
        const QColor groundOfSecond = session.pixel(onSecond);
        const auto becomes = [&](QPoint at, const QColor& ground) {
            return waitUntil([&] { return session.pixel(at) == ground; });
        };
        const auto goToFirst = [&] {
            session.input().glide(zone(0).center());
            EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(0)); })) << session.describe();
            EXPECT_NE(session.pixel(onFirst), groundOfFirst);
            EXPECT_TRUE(becomes(onSecond, groundOfSecond));
        };
        const auto goToSecond = [&] {
            session.input().glide(third(1).center());
            EXPECT_TRUE(waitUntil([&] { return isHighlighted(third(1)); })) << session.describe();
            EXPECT_NE(session.pixel(onSecond), groundOfSecond);
            EXPECT_TRUE(becomes(onFirst, groundOfFirst));
        };
        const auto dropIn = [&](const QRect& zone) {
            drop();
            EXPECT_TRUE(endsIn(title, zone, tolerance)) << session.describe();
            EXPECT_TRUE(becomes(onFirst, groundOfFirst) && becomes(onSecond, groundOfSecond));
        };
        {
            SCOPED_TRACE("the key pressed on the first display, there, back and there again");
            dragToFirstZone(title);
            EXPECT_TRUE(becomes(onSecond, groundOfSecond));
            goToSecond();
            goToFirst();
            goToSecond();
            dropIn(third(1));
        }
        {
            SCOPED_TRACE("begun and the key pressed on the second display, the same");
            dragTo(third(0), title);
            EXPECT_TRUE(becomes(onFirst, groundOfFirst));
            goToFirst();
            goToSecond();
            goToFirst();
            dropIn(zone(0));
        }
    }
    /// Stops the program in mid-drag, and expects the window to follow the pointer as ever.
    void dragWhileItIsStopped(const QString& title, const Subprocess& program) {
        dragToFirstZone(title);
        program.signal(SIGSTOP);
        session.input().glide({1300, 700}, 20);
        EXPECT_TRUE(waitUntil([&] { return session.frame(title).contains(1300, 710); }));
    }
    /// Ends the program by that signal in mid-drag, and expects the overlay to go and the window to
    /// stay where the user lets go of it.
    void endInMidDrag(const QString& title, Subprocess& program, int signal) {
        const QSize size = session.frame(title).size();
        dragToFirstZone(title);
        program.signal(signal);
        EXPECT_TRUE(waitUntil([&] { return !isHighlighted(zone(0)); })) << session.describe();
        EXPECT_TRUE(program.waitForEnd());
        EXPECT_TRUE(session.isDragging()) << "the drag is the user's";
        expectToStayWhereDropped(title, size, KernelKey::control);
    }
    /// Drags a window on, drops it over the second zone and lets go of the key that is held, if one
    /// is; expects it to be where the user let go of it, in that size, and to stay there.
    void expectToStayWhereDropped(const QString& title, const QSize& size,
                                  std::optional<KernelKey> held = std::nullopt) {
        const QPoint end = zone(1).center();
        session.input().glide(end);
        session.input().release();
        EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
        const auto isAsDropped = [&] {
            const QRect frame = session.frame(title);
            return frame.size() == size && frame.contains(end);
        };
        EXPECT_TRUE(waitUntil(isAsDropped)) << session.describe();
        const QRect dropped = session.frame(title);
        if (held)
            session.input().releaseKey(*held);
        EXPECT_TRUE(staysTrue([&] { return session.frame(title) == dropped; },
                              std::chrono::milliseconds(400)));
    }
    /// Drags a terminal into a zone, and expects it to fill that as far as its cells go.
    void expectToFillAZoneWithATerminal(const QRect& start) {
        constexpr int largestCell = 32;
        const QString title = session.startClient(CompositorClient::terminal, start);
        dragToFirstZone(title);
        drop();
        EXPECT_TRUE(endsIn(title, zone(0), largestCell)) << session.describe();
        const QRect frame = session.frame(title);
        EXPECT_EQ(frame.topLeft(), zone(0).topLeft());
        EXPECT_TRUE(staysTrue([&] { return session.frame(title) == frame; },
                              std::chrono::milliseconds(400)));
    }
    /// Switches keep-awake on and off in the panel, which `openPanel` opens, and kills the program
    /// in the end; expects the desktop, to follow within the deadline.
    void expectToKeepAwakeUntilToldToStopOrKilled(const Subprocess& program,
                                                  const std::function<void()>& openPanel,
                                                  const std::function<bool()>& isKeptAwake,
                                                  std::chrono::milliseconds deadline) {
        const auto pressSwitchFor = [&](bool awake) {
            openPanel();
            session.input().tap(KernelKey::space);
            EXPECT_TRUE(waitUntil([&] { return isKeptAwake() == awake; }, deadline))
                << awake << session.describe();
            session.input().tap(KernelKey::escape);
            EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        };
        EXPECT_FALSE(isKeptAwake());
        pressSwitchFor(true);
        pressSwitchFor(false);
        pressSwitchFor(true);
        program.signal(SIGKILL);
        EXPECT_TRUE(waitUntil([&] { return !isKeptAwake(); }, deadline));
    }
    /// Drags a window into a zone while somebody makes that call all the time, and expects the
    /// program to refuse it and to go on.
    void expectToSnapUnderAFloodOf(const QDBusMessage& call, const QString& title) {
        dragToFirstZone(title);
        const BusFlood flood(session.busAddress(), call);
        const auto passes = [&](int more) {
            const int before = flood.calls();
            return waitUntil([&] { return flood.calls() >= before + more; });
        };
        EXPECT_TRUE(passes(5000));
        EXPECT_TRUE(flood.isRefused());
        EXPECT_TRUE(isHighlighted(zone(0))) << session.describe();
        session.input().glide(zone(1).center());
        EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
        drop();
        EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();
        EXPECT_TRUE(passes(1000)) << "it went on all the time";
        EXPECT_TRUE(flood.isRefused());
    }
    /// Starts the program once more, which is to leave it at the one that runs.
    void startAgain() {
        Subprocess& second = session.start(QStringLiteral(TILEWRIGHT_PROGRAM));
        EXPECT_TRUE(second.waitForEnd());
        EXPECT_EQ(second.exitCode(), 0);
    }
    /// Opens the panel, and waits until it has the focus where it belongs.
    virtual void openPanel() = 0;
    /// Whether a window has the focus.
    [[nodiscard]] virtual bool isInFront(const QString& title) = 0;
    /// Opens the settings, or brings them forward, from the panel.
    void openSettings() {
        openPanel();
        session.input().move(settingsInPanel());
        session.input().click();
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        EXPECT_TRUE(waitUntil([&] { return isInFront(settingsTitle); })) << session.describe();
    }
    /// Where the open panel has the word that leads to the settings: in its lower left corner.
    [[nodiscard]] QPoint settingsInPanel() {
        return session.frame(panelTitle).bottomLeft() + QPoint(60, -45);
    }
    /// What a part of one display looks like, in the display's pixels.
    [[nodiscard]] virtual QImage pictureOf(const QRect& area) {
        const QImage picture = session.picture();
        const double ratio = picture.devicePixelRatio();
        return picture.copy(
            QRectF(QPointF(area.topLeft()) * ratio, QSizeF(area.size()) * ratio).toRect());
    }
    /// Where the panel's large picture of a layout has the zone in the upper left corner. Fails the
    /// test where the open panel has none.
    [[nodiscard]] QPoint firstZoneInPanel() {
        const QRect frame = session.frame(panelTitle);
        const int unit = unitsPerPoint(frame.center());
        // The shadow, and what lies to the right of that picture's corner, left out.
        const QRect part = frame.adjusted(30 * unit, 30 * unit, -200 * unit, 0);
        const auto isAmber = [](QColor colour) {
            return colour.red() - colour.blue() > 60 && colour.red() > colour.green();
        };
        std::optional<QPoint> corner;
        EXPECT_TRUE(waitUntil([&] {
            const QImage panel = pictureOfPanelAtRest();
            for (int y = part.top(); y < part.bottom() && !corner; ++y) {
                for (int x = part.left(); x < part.right() && !corner; ++x) {
                    if (isAmber(colorIn(panel, frame, {x, y})))
                        corner = QPoint(x, y);
                }
            }
            return corner.has_value();
        })) << session.describe();
        return corner.value_or(QPoint()) + QPoint(30, 30) * unit;
    }
    /// A picture of the panel's window, taken once it has faded in: until then it looks otherwise
    /// in every picture.
    [[nodiscard]] QImage pictureOfPanelAtRest() {
        QImage now;
        QImage before;
        EXPECT_TRUE(waitUntil([&] {
            now = pictureOf(session.frame(panelTitle));
            return !now.isNull() && std::exchange(before, now) == now;
        })) << session.describe();
        return now;
    }
    /// The colour of a place in a picture of an area.
    [[nodiscard]] static QColor colorIn(const QImage& picture, const QRect& area, QPoint at) {
        const double ratio = double(picture.width()) / area.width();
        return picture.pixelColor((QPointF(at - area.topLeft()) * ratio).toPoint());
    }
    /// What of the open panel is seen as such: its light ground, without the shadow around it. What
    /// lies beneath has to be darker, the bar left out, which is above the given line.
    [[nodiscard]] QRect panelGround(int bar = 0) {
        const QRect frame = session.frame(panelTitle);
        const QImage panel = pictureOfPanelAtRest();
        const auto isGround = [&](QPoint at) {
            return colorIn(panel, frame, at).lightness() > 160;
        };
        QRect ground = frame;
        ground.setTop(std::max(ground.top(), bar));
        const auto inset = [&](auto shrink, auto edge) {
            while (!ground.isEmpty() && !isGround(edge()))
                shrink();
        };
        const QPoint middle = frame.center();
        inset([&] { ground.setTop(ground.top() + 1); },
              [&] { return QPoint(middle.x(), ground.top()); });
        inset([&] { ground.setBottom(ground.bottom() - 1); },
              [&] { return QPoint(middle.x(), ground.bottom()); });
        inset([&] { ground.setLeft(ground.left() + 1); },
              [&] { return QPoint(ground.left(), middle.y()); });
        inset([&] { ground.setRight(ground.right() - 1); },
              [&] { return QPoint(ground.right(), middle.y()); });
        return ground;
    }
    /// Clicks a zone in the panel while the settings have the focus, and expects the window that
    /// had it before them to end there, and another one to stay.
    void expectToSnapTheLastActiveWindowByAClickInThePanel(const QRect& start) {
        const QString other = session.startClient(CompositorClient::gtk4, start);
        const QString last = session.startClient(CompositorClient::qt, start.translated(-200, 100));
        ASSERT_TRUE(waitUntil([&] { return isInFront(last); })) << session.describe();
        openSettings();
        openPanel();
        session.input().move(firstZoneInPanel());
        session.input().click();
        EXPECT_TRUE(endsIn(last, zone(0))) << session.describe();
        EXPECT_EQ(session.frame(other), start);
    }
    /// Asks for the settings twice, another window in front of them meanwhile.
    void expectToBringTheSettingsForwardAgain(const QRect& start) {
        openSettings();
        static_cast<void>(session.startClient(CompositorClient::gtk4, start));
        ASSERT_TRUE(waitUntil([&] { return !isInFront(settingsTitle); }));
        openSettings();
    }
    [[nodiscard]] bool isPanelOpen() { return !session.frame(panelTitle).isEmpty(); }
    /// Whether it is to the unit, its shadow left out, what is below the pointer's place.
    void expectPanelBelow(QPoint pointer) {
        const QRect ground = panelGround();
        EXPECT_EQ(ground.width(), panelWidth);
        EXPECT_EQ(ground.left(), pointer.x() - panelWidth / 2);
        EXPECT_EQ(ground.top(), pointer.y() + panelGap);
    }

    /// In points: how wide the panel's ground is, and how far from what it belongs to and from the
    /// edges of the work area.
    static constexpr int panelWidth = 300;
    static constexpr int panelGap = 4;

    Session session;
    const QString panelTitle = QStringLiteral("Tilewright");
    const QString settingsTitle = QStringLiteral("Tilewright Settings");
};

} // namespace tilewright::testing
