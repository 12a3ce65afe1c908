#include "MixedSoak.h"

#include <AccessibilityReader.h>
#include <DragScript.h>
#include <ProcessFigures.h>
#include <ProgramWindows.h>
#include <ShellDesktop.h>
#include <Waiting.h>

#include <QFile>
#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <vector>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

#ifdef TILEWRIGHT_MEMORY_IS_KEPT
constexpr bool memoryIsKept = true;
#else
constexpr bool memoryIsKept = false;
#endif

constexpr int eventsPerRound = 13;

/// Where controls are, by their names, from the top-left corner of their window.
using Places = std::map<QString, QPoint>;

/// What the calmest eighth of the batches does not exceed.
long calmestOf(std::vector<long> values) {
    const auto eighth = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 8);
    std::nth_element(values.begin(), eighth, values.end());
    return *eighth;
}

/// A user of the program who does not tire.
class Soak {
public:
    Soak() {
        desktop_.startTray(TrayHost::systemTray);
        learnPlaces();
        program_ = &startWatched();
        item_ = desktop_.item();
        client_ = startClient(desktop_.session(), ClientKind::qt, {300, 200, 640, 420});
        // Once: a window manager that works it out anew tells for a moment of the whole screen.
        EXPECT_TRUE(waitUntil([&] {
            area_ = workArea(desktop_.inspector());
            return area_.top() > 0;
        })) << "the bar takes no room";
    }

    /// False, and a failed test, when something does not do what it should.
    bool rounds(int count) {
        for (int round = 0; round < count; ++round) {
            for (int drag = 0; drag < 4; ++drag)
                dragIntoNextZone();
            openAndClosePanel(PanelEnd::escape);
            openAndClosePanel(PanelEnd::clickElsewhere);
            keepAwake();
            editLayout();
            if (::testing::Test::HasFailure())
                return false;
        }
        return true;
    }

    [[nodiscard]] ProcessFigures figures() const { return processFigures(program_->pid()); }
    [[nodiscard]] Holdings holdings() {
        return {figures().fileDescriptors,
                xResources(desktop_.session().display(), program_->pid()),
                desktop_.inspector().allWindows().size()};
    }
    /// Waits for two seconds in which nothing wakes the program.
    bool waitForRest() {
        return waitUntil(
            [&] {
                const long before = figures().voluntarySwitches;
                return staysTrue([&] { return figures().voluntarySwitches == before; },
                                 std::chrono::seconds(2));
            },
            std::chrono::seconds(60));
    }
    /// How often the panel had to be asked once more to close, a session to begin or the editor to
    /// save.
    [[nodiscard]] int repeated() const { return repeated_; }
    void expectOrderlyEnd() {
        program_->signal(SIGTERM);
        EXPECT_TRUE(program_->waitForEnd(60'000));
        QFile log(desktop_.session().logFile());
        const QByteArray printed = log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
        EXPECT_EQ(program_->exitCode(), 0) << printed.constData();
        EXPECT_FALSE(printed.contains("Sanitizer") || printed.contains("runtime error"))
            << printed.constData();
    }

private:
    enum class PanelEnd { escape, clickElsewhere };

    Subprocess& startWatched() {
        QStringList command =
            qEnvironmentVariable("TILEWRIGHT_WATCHED_BY").split(u' ', Qt::SkipEmptyParts);
        if (command.isEmpty())
            return desktop_.startProgram();
        command.append(ShellDesktop::program());
        const QString first = command.takeFirst();
        return desktop_.startProgram(first, {}, command);
    }

    /// Reads where everything is from a program that tells assistive tools. The one that is
    /// measured does not: the telling would be measured with it.
    void learnPlaces() {
        QProcessEnvironment enabling;
        AccessibilityReader::enable(enabling);
        std::map<QString, QString> environment;
        const QStringList keys = enabling.keys();
        for (const QString& key : keys)
            environment[key] = enabling.value(key);
        AccessibilityReader reader(desktop_.session().environment());
        Subprocess& program = desktop_.startProgram({}, environment);
        const auto learn = [&](Places& places, const QString& awaited,
                               const std::function<QRect()>& window) {
            EXPECT_TRUE(waitUntil(
                [&] {
                    places.clear();
                    bool isInPlace = false;
                    const QRect frame = window();
                    for (const AccessibleNode& node : reader.showing(program.pid())) {
                        isInPlace = isInPlace || (node.depth == 1 && node.frame == frame);
                        if (node.is(u"focusable"_s))
                            places.emplace(node.name, node.frame.center() - frame.topLeft());
                    }
                    return isInPlace && places.contains(awaited);
                },
                std::chrono::seconds(60)))
                << awaited.toStdString();
        };
        QRect panel;
        learn(panelPlaces_, u"Quit"_s, [&] {
            // A window that the window manager makes the active one meanwhile closes it.
            panel = desktop_.panel().value_or(QRect());
            return panel.isNull() ? panel = desktop_.openPanel() : panel;
        });
        desktop_.input().click(panel.topLeft() + panelPlaces_[u"Settings…"_s]);
        learn(settingsPlaces_, u"Save Layout"_s, [&] { return settingsFrame(); });
        program.stop();
        EXPECT_TRUE(waitUntil([&] { return !desktop_.showsItem(); }));
    }

    [[nodiscard]] QRect settingsFrame() {
        const auto window = desktop_.settingsWindow();
        return window ? desktop_.inspector().clientFrame(*window) : QRect();
    }

    [[nodiscard]] bool overlayShows() {
        const XInspector& look = desktop_.inspector();
        if (overlay_ == 0 || !look.exists(overlay_))
            overlay_ = overlayWindow(look, program_->pid()).value_or(0);
        return overlay_ != 0 && look.isMapped(overlay_);
    }

    void dragIntoNextZone() {
        XInputInjector& input = desktop_.input();
        const XInspector& look = desktop_.inspector();
        const auto& zones = ZoneLayout::bentoBox().zones;
        const QRect zone = zoneFrame(zones[nextZone_++ % zones.size()], area_);
        const QRect outer = look.outerFrame(client_.window);
        const QPoint grip(outer.x() + outer.width() / 3, outer.y() + 8);
        input.move(grip);
        input.pressKey(keysym::control);
        input.press();
        EXPECT_TRUE(waitUntil([&] {
            input.move(grip + QPoint(3, 3));
            input.move(grip + QPoint(2, 2));
            return overlayShows();
        })) << "the overlay does not show";
        input.glide(grip, zone.center(), 4);
        input.release();
        input.releaseKey(keysym::control);
        EXPECT_TRUE(waitUntil([&] { return !overlayShows(); })) << "the overlay stays";
        expectFills(look, ClientKind::qt, client_, zone);
    }

    QRect openPanel() {
        std::optional<QRect> frame;
        desktop_.input().click(item_);
        EXPECT_TRUE(waitUntil([&] {
            frame = desktop_.panel();
            return frame.has_value();
        })) << "the panel does not open";
        return frame.value_or(QRect());
    }
    void openAndClosePanel(PanelEnd end) {
        openPanel();
        closePanel(end);
    }
    void closePanel(PanelEnd end) {
        const bool isClosed = waitUntil([&] {
            ++repeated_;
            if (end == PanelEnd::escape)
                desktop_.input().tapKey(keysym::escape);
            else
                desktop_.input().click({900, 1000});
            // No user is that fast: a panel that shows only since some milliseconds may not have
            // the keyboard yet, since the bar still holds it.
            return waitUntil([&] { return !desktop_.panel(); }, std::chrono::seconds(1));
        });
        EXPECT_TRUE(isClosed) << "the panel does not close by "
                              << (end == PanelEnd::escape ? "Escape" : "a press outside")
                              << desktop_.session().describe();
        --repeated_;
    }

    void keepAwake() {
        const QPoint corner = openPanel().topLeft();
        // A click on a switch means the other state than the one it shows.
        const QPoint toggle = corner + panelPlaces_[u"Keep Awake"_s];
        const auto isOn = [&] {
            const QColor seen = desktop_.inspector().pixel(toggle - QPoint(10, 0));
            return idle_.isInhibited() && seen.red() - seen.blue() > 30;
        };
        // The service is this process: on a machine that is busy it may answer later than the
        // program waits, which then refuses the session and gives back what it is granted.
        const bool isBegun = waitUntil([&] {
            ++repeated_;
            desktop_.input().click(corner + panelPlaces_[u"15m"_s]);
            return waitUntil(isOn, std::chrono::seconds(3));
        });
        EXPECT_TRUE(isBegun) << "no session begins, or the switch does not show it";
        --repeated_;
        desktop_.input().click(toggle);
        EXPECT_TRUE(waitUntil([&] { return !idle_.isInhibited(); })) << "the session does not end";
        closePanel(PanelEnd::escape);
    }

    void editLayout() {
        XInputInjector& input = desktop_.input();
        const QPoint panel = openPanel().topLeft();
        input.click(panel + panelPlaces_[u"Settings…"_s]);
        EXPECT_TRUE(waitUntil([&] {
            const auto window = desktop_.settingsWindow();
            return window && desktop_.inspector().activeWindow() == *window;
        })) << "the settings do not open";
        // Painted, and in the place that the window manager gives it.
        QPoint corner;
        EXPECT_TRUE(waitUntil([&] {
            corner = settingsFrame().topLeft();
            const QColor seen = desktop_.inspector().pixel(
                corner + settingsPlaces_[u"Save Layout"_s] - QPoint(48, 0));
            return seen.red() - seen.blue() > 100;
        })) << "the settings are not painted";
        const auto click = [&](const QString& name) {
            input.click(corner + settingsPlaces_[name]);
        };
        click(u"New"_s);
        click(u"Add Zone"_s);
        // The right half, dragged away and back.
        const QPoint tile = corner + settingsPlaces_[u"Top Right, 38 % × 55 %"_s];
        input.move(tile);
        input.press();
        input.glide(tile, tile - QPoint(60, 0), 5);
        input.glide(tile - QPoint(60, 0), tile, 5);
        input.release();
        click(u"Delete"_s);
        // Its name is taken from the second time on, and a message says so.
        const bool isSaved = waitUntil([&] {
            ++repeated_;
            click(u"Save Layout"_s);
            return waitUntil([&] { return desktop_.layouts().contains("My Layout"); },
                             std::chrono::seconds(2));
        });
        EXPECT_TRUE(isSaved);
        --repeated_;
        input.pressKey(keysym::alt);
        input.tapKey(keysymF4);
        input.releaseKey(keysym::alt);
        EXPECT_TRUE(waitUntil([&] { return !desktop_.settingsWindow(); }))
            << "the settings do not close";
    }

    static constexpr quint32 keysymF4 = 0xffc1;

    ShellDesktop desktop_;
    RecordingIdleService idle_{desktop_.session().busAddress()};
    Places panelPlaces_;
    Places settingsPlaces_;
    Subprocess* program_ = nullptr;
    QPoint item_;
    TestClient client_;
    QRect area_;
    std::size_t nextZone_ = 0;
    int repeated_ = 0;
    XInspector::Window overlay_ = 0;
};

/// `wakeUps` are those since the line before, by the event.
void print(int events, const ProcessFigures& figures, const Holdings& holdings, double wakeUps) {
    long resources = 0;
    for (const auto& [type, count] : holdings.resources)
        resources += count;
    std::printf(
        "%6d events: own memory %ld KiB, resident %ld KiB, %d descriptors, %ld X resources, "
        "%zu windows, %.1f wake-ups an event\n",
        events, figures.anonymousKiB, figures.residentKiB, holdings.fileDescriptors, resources,
        holdings.windows, wakeUps);
    std::fflush(stdout);
}

} // namespace

void expectNothingPilesUpInUse(SoakLength length) {
    Soak soak;
    ASSERT_FALSE(::testing::Test::HasFailure());
    // What is made on first use, and the allocator's caches, settle first.
    ASSERT_TRUE(soak.rounds(3));
    const Holdings before = soak.holdings();
    EXPECT_FALSE(before.resources.empty());
    ProcessFigures held = soak.figures();
    print(0, held, before, 0);

    const int eventsPerBatch = length.roundsPerBatch * eventsPerRound;

    std::vector<long> growth;
    for (int batch = 1; batch <= length.batches; ++batch) {
        ASSERT_TRUE(soak.rounds(length.roundsPerBatch)) << "in batch " << batch;
        const ProcessFigures now = soak.figures();
        growth.push_back(now.anonymousKiB - held.anonymousKiB);
        print(batch * eventsPerBatch, now, soak.holdings(),
              static_cast<double>(now.voluntarySwitches - held.voluntarySwitches) / eventsPerBatch);
        held = now;
    }
    // An allocator takes a large step now and then and keeps it; what leaks grows in every batch.
    if (!memoryIsKept && !qEnvironmentVariableIsSet("TILEWRIGHT_WATCHED_BY")) {
        EXPECT_LE(calmestOf(growth), length.bytesPerEvent * eventsPerBatch / 1024)
            << ::testing::PrintToString(growth);
    }
    // Some is given back only a moment after its use.
    EXPECT_TRUE(waitUntil([&] { return soak.holdings().isWithin(before); }))
        << ::testing::PrintToString(before) << "\n is now "
        << ::testing::PrintToString(soak.holdings());
    std::printf("%d closings, sessions and savings asked for once more\n", soak.repeated());
    EXPECT_TRUE(soak.waitForRest()) << "something goes on waking the program";
    soak.expectOrderlyEnd();
}

} // namespace tilewright::testing
