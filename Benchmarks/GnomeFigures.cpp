// Measures the program with its companion in GNOME Shell, and beside it the companion with a
// program that answers at once and does nothing else: gnome_figures [idle|drags|hung|kill]. All of
// it takes less than five minutes. See Documentation/performance.md.

#include "BareZones.h"
#include "Samples.h"
#include "ShellWatch.h"

#include <ProcessFigures.h>
#include <WindowManager/ZoneLayout.h>

#include <QDBusConnectionInterface>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>

namespace tilewright::testing {
namespace {

using std::chrono::milliseconds;

/// As the program's argument it makes it the one that answers at once.
const QString bareProgram = QStringLiteral("--bare");

void wait(milliseconds duration) {
    QThread::msleep(static_cast<unsigned long>(duration.count()));
}

/// For as long as a frame of the shell at most. What begins afterwards begins anywhere in a frame:
/// begun as soon as the shell is ready, all of it would meet the same moment of its frames.
void waitWithinAFrame() {
    static std::minstd_rand random;
    static std::uniform_int_distribution<unsigned long> microseconds(0, 16'700);
    QThread::usleep(microseconds(random));
}

/// A shell with a client in it, and with a program that the companion there believes.
class Stand {
public:
    enum class Kind { ours, bare };

    explicit Stand(Kind kind)
        : session(kind == Kind::ours ? QStringLiteral(TILEWRIGHT_PROGRAM)
                                     : QCoreApplication::applicationFilePath())
        , watch(session)
        , kind_(kind) {
        // So that what is painted first is already what is meant.
        session.tell(QStringLiteral("new imports.gi.Gio.Settings({schema_id: "
                                    "'org.gnome.desktop.interface'})"
                                    ".set_boolean('enable-animations', false)"));
        client = session.startClient(CompositorClient::qt, {500, 300, 640, 420});
    }

    void startProgram() {
        program_ = kind_ == Kind::ours
                       ? &session.start(QStringLiteral(TILEWRIGHT_PROGRAM))
                       : &session.start(QCoreApplication::applicationFilePath(),
                                        {bareProgram, session.busAddress(),
                                         BareZones(session.workArea(), zones()).toText()});
        waitForGreeting();
    }
    void waitForGreeting() {
        const QString isOpen =
            QStringLiteral("Main.extensionManager.lookup('%1').stateObj._companion._outbox?._isOpen"
                           " ?? false")
                .arg(QString::fromLatin1(companionUuid));
        if (!waitUntil([&] { return session.ask(isOpen).toBool(); }))
            qFatal("The companion greets nobody: %s", session.describe().c_str());
    }
    void signalProgram(int number) const { program_->signal(number); }
    void endProgram() {
        program_->stop();
        program_ = nullptr;
    }
    [[nodiscard]] ProcessFigures ofProgram() const { return processFigures(program_->pid()); }
    [[nodiscard]] ProcessFigures ofShell() const {
        return processFigures(pid_t(
            session.bus().interface()->servicePid(QStringLiteral("org.gnome.Shell")).value()));
    }

    /// The frames that the program gives: those of the layout that every display begins with.
    [[nodiscard]] std::vector<QRect> zones() {
        const QRect area = session.workArea();
        const auto edge = [](double part, int whole) { return int(std::lround(part * whole)); };
        std::vector<QRect> frames;
        for (const Zone& zone : ZoneLayout::bentoBox().zones) {
            const QPoint start(edge(zone.x, area.width()), edge(zone.y, area.height()));
            const QPoint end(edge(zone.x + zone.width, area.width()),
                             edge(zone.y + zone.height, area.height()));
            frames.emplace_back(area.topLeft() + start, area.topLeft() + end - QPoint(1, 1));
        }
        return frames;
    }
    /// Within each of two of them.
    [[nodiscard]] std::array<QPoint, 2> places() {
        const auto frames = zones();
        return {frames[0].center(), frames[1].center()};
    }

    GnomeSession session;
    ShellWatch watch;
    QString client;

private:
    const Kind kind_;
    Subprocess* program_ = nullptr;
};

/// What the same is by the program and by the bare one, in milliseconds.
struct Pair {
    std::vector<double> ours;
    std::vector<double> bare;

    std::vector<double>& of(Stand::Kind kind) { return kind == Stand::Kind::ours ? ours : bare; }
    void print(const char* what) const {
        std::printf("%-46s median %6.2f ms, p95 %6.2f ms of %zu; bare %6.2f ms, %6.2f ms of %zu\n",
                    what, percentile(ours, 0.5), percentile(ours, 0.95), ours.size(),
                    percentile(bare, 0.5), percentile(bare, 0.95), bare.size());
        std::fflush(stdout);
    }
};

struct DragFigures {
    Pair shown;
    Pair highlighted;
    Pair asked;
    Pair final;
    Pair roundTrips;
};

/// From one zone into the other, looked at on its way.
void measureDrag(Stand& stand, Stand::Kind kind, int round, DragFigures& figures) {
    const auto places = stand.places();
    const QPoint from = places[std::size_t(round % 2)];
    const QPoint to = places[std::size_t((round + 1) % 2)];
    CompositorInput& input = stand.session.input();
    const auto note = [&](Pair& pair, double begin, const std::vector<double>& moments) {
        if (!moments.empty())
            pair.of(kind).push_back(moments.front() - begin);
    };
    stand.session.grab(stand.client);
    input.glide(from);
    wait(milliseconds(60));
    static_cast<void>(stand.watch.take());
    waitWithinAFrame();
    double begin = ShellWatch::now();
    input.pressKey(KernelKey::control);
    // The program shows its zones with the next move.
    stand.session.hands().step({3, 0});
    wait(milliseconds(150));
    ShellWatch::Notes notes = stand.watch.take();
    note(figures.shown, begin, notes.shown);

    waitWithinAFrame();
    begin = ShellWatch::now();
    stand.session.hands().step(to - from);
    wait(milliseconds(100));
    notes = stand.watch.take();
    note(figures.highlighted, begin, notes.changed);
    auto& trips = figures.roundTrips.of(kind);
    trips.insert(trips.end(), notes.roundTrips.begin(), notes.roundTrips.end());

    waitWithinAFrame();
    begin = ShellWatch::now();
    input.release();
    wait(milliseconds(450));
    notes = stand.watch.take();
    if (notes.frameAsked)
        figures.asked.of(kind).push_back(*notes.frameAsked - begin);
    if (notes.frameFinal)
        figures.final.of(kind).push_back(*notes.frameFinal - begin);
    input.releaseKey(KernelKey::control);
}

void measureDrags(Stand& ours, Stand& bare) {
    constexpr int rounds = 60;
    DragFigures figures;
    for (Stand* stand : {&ours, &bare})
        stand->watch.followCalls();
    for (int round = 0; round < rounds; ++round) {
        measureDrag(ours, Stand::Kind::ours, round, figures);
        measureDrag(bare, Stand::Kind::bare, round, figures);
    }
    figures.shown.print("modifier and move to the overlay's first frame");
    figures.highlighted.print("move to the next highlight's first frame");
    figures.asked.print("drop to the frame asked for");
    figures.final.print("drop to the window's final frame");
    figures.roundTrips.print("call of the companion to its answer");
}

void measureKills(Stand& ours, Stand& bare) {
    constexpr int rounds = 5;
    Pair gone;
    for (int round = 0; round < rounds; ++round) {
        for (const Stand::Kind kind : {Stand::Kind::ours, Stand::Kind::bare}) {
            Stand& stand = kind == Stand::Kind::ours ? ours : bare;
            CompositorInput& input = stand.session.input();
            stand.session.grab(stand.client);
            input.glide(stand.places()[0]);
            input.pressKey(KernelKey::control);
            stand.session.hands().step({3, 0});
            wait(milliseconds(200));
            static_cast<void>(stand.watch.take());
            const double begin = ShellWatch::now();
            stand.signalProgram(SIGKILL);
            wait(milliseconds(200));
            const ShellWatch::Notes notes = stand.watch.take();
            if (!notes.gone.empty())
                gone.of(kind).push_back(notes.gone.front() - begin);
            input.release();
            input.releaseKey(KernelKey::control);
            stand.endProgram();
            stand.startProgram();
        }
    }
    gone.print("kill -9 in mid-drag to the overlay's end");
}

/// Drags the client to and fro for some time, and adds how far apart the shell's frames were.
void dragAbout(Stand& stand, std::vector<double>& intervals, std::vector<double>& work) {
    constexpr milliseconds duration(3000);
    constexpr double oneMove = 8;
    stand.session.grab(stand.client);
    stand.session.input().glide({960, 600});
    static_cast<void>(stand.watch.take());
    const double begin = ShellWatch::now();
    int x = 0;
    for (double next = begin; next < begin + double(duration.count()); next += oneMove) {
        const int at = int(std::lround(400 * std::sin((next - begin) / 300)));
        stand.session.hands().step({at - x, 0});
        x = at;
        const double left = next + oneMove - ShellWatch::now();
        if (left > 0)
            QThread::usleep(static_cast<unsigned long>(left * 1000));
    }
    const ShellWatch::Notes notes = stand.watch.take();
    for (std::size_t frame = 1; frame < notes.painted.size(); ++frame)
        intervals.push_back(notes.painted[frame] - notes.painted[frame - 1]);
    work.insert(work.end(), notes.work.begin(), notes.work.end());
    stand.session.input().release();
    static_cast<void>(waitUntil([&] { return !stand.session.isDragging(); }));
}

/// In one shell, in turn: with the companion switched off, and with the program stopped before the
/// drag.
void measureHung(Stand& ours) {
    constexpr int rounds = 4;
    std::vector<double> without;
    std::vector<double> withoutWork;
    std::vector<double> hung;
    std::vector<double> hungWork;
    for (int round = 0; round < rounds; ++round) {
        ours.session.setCompanionEnabled(false);
        dragAbout(ours, without, withoutWork);
        ours.session.setCompanionEnabled(true);
        ours.waitForGreeting();
        ours.signalProgram(SIGSTOP);
        dragAbout(ours, hung, hungWork);
        ours.signalProgram(SIGCONT);
    }
    const auto print = [](const char* what, const std::vector<double>& off,
                          const std::vector<double>& on) {
        std::printf("%-46s without us %6.2f ms of %zu, hung %6.2f ms of %zu, ratio %.3f\n", what,
                    percentile(off, 0.99), off.size(), percentile(on, 0.99), on.size(),
                    percentile(on, 0.99) / percentile(off, 0.99));
    };
    print("p99 from one frame of the shell to the next", without, hung);
    print("p99 of the shell's work at a frame", withoutWork, hungWork);
    std::fflush(stdout);
}

struct Idle {
    ProcessFigures before;
    ProcessFigures after;

    [[nodiscard]] long wakeUps() const {
        return after.voluntarySwitches - before.voluntarySwitches;
    }
    [[nodiscard]] double milliseconds() const {
        return double(after.cpuMicroseconds - before.cpuMicroseconds) / 1e3;
    }
    void print(const char* what) const {
        std::printf("%-46s %4ld wake-ups in 60 s, %6.1f ms of processor, private %.1f MiB\n", what,
                    wakeUps(), milliseconds(), double(after.privateKiB) / 1024);
        std::fflush(stdout);
    }
};

/// Two shells side by side, one with the program and one with nothing of ours, then the other way
/// round; a third has the bare one all the time.
void measureIdle(Stand& first, Stand& second, Stand& bare) {
    constexpr unsigned long settling = 10;
    constexpr unsigned long minute = 60;
    std::array<Stand*, 2> stands{&first, &second};
    long shellWith = 0;
    long shellWithout = 0;
    long program = 0;
    double added = 0;
    for (int half = 0; half < 2; ++half) {
        Stand& with = *stands[std::size_t(half)];
        Stand& without = *stands[std::size_t(1 - half)];
        without.session.setCompanionEnabled(false);
        with.session.setCompanionEnabled(true);
        with.startProgram();
        QThread::sleep(settling);
        Idle ours{with.ofProgram(), {}};
        Idle ourShell{with.ofShell(), {}};
        Idle plainShell{without.ofShell(), {}};
        Idle bareOne{bare.ofProgram(), {}};
        Idle bareShell{bare.ofShell(), {}};
        QThread::sleep(minute);
        ours.after = with.ofProgram();
        ourShell.after = with.ofShell();
        plainShell.after = without.ofShell();
        bareOne.after = bare.ofProgram();
        bareShell.after = bare.ofShell();
        ours.print("idle: the program");
        bareOne.print("idle: the bare one");
        ourShell.print("idle: the shell with it");
        bareShell.print("idle: the shell with the bare one");
        plainShell.print("idle: the shell with nothing of ours");
        shellWith += ourShell.wakeUps();
        shellWithout += plainShell.wakeUps();
        program += ours.wakeUps();
        added += double(ourShell.after.privateKiB - plainShell.after.privateKiB) / 1024 / 2;
        with.endProgram();
    }
    std::printf(
        "idle, both minutes: the program %ld wake-ups, the shell %ld with it and %ld without; "
        "memory added to the shell %.1f MiB\n",
        program, shellWith, shellWithout, added);
    std::fflush(stdout);
}

void measure(const std::string& wanted) {
    const auto isWanted = [&](const char* part) { return wanted.empty() || wanted == part; };
    Stand ours(Stand::Kind::ours);
    Stand bare(Stand::Kind::bare);
    bare.startProgram();
    if (isWanted("idle")) {
        Stand other(Stand::Kind::ours);
        measureIdle(other, ours, bare);
    }
    ours.session.setCompanionEnabled(true);
    ours.startProgram();
    for (Stand* stand : {&ours, &bare})
        stand->watch.begin(stand->client);
    if (isWanted("drags"))
        measureDrags(ours, bare);
    if (isWanted("kill"))
        measureKills(ours, bare);
    if (isWanted("hung"))
        measureHung(ours);
}

/// Answers whoever speaks as the companion does, until it is ended.
int answer(const QString& busAddress, const QString& zones) {
    FakeProgram program(busAddress);
    program.answer = [zones = BareZones::fromText(zones)](const CompanionCall& call) {
        return zones.answer(call);
    };
    return QCoreApplication::exec();
}

} // namespace
} // namespace tilewright::testing

int main(int argc, char** argv) {
    using namespace tilewright::testing;
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == bareProgram)
        return answer(arguments.value(2), arguments.value(3));
    measure(arguments.value(1).toStdString());
    return 0;
}
