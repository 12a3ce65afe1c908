// What the companion inside a real KWin tells whom it takes for the program, and does for him.

#include "ProgramInPlasma.h"
#include "StandInProgram.h"

#include <QElapsedTimer>
#include <csignal>

namespace tilewright::testing {
namespace {

struct KWinWithErrands : KWinWithAStandIn {
    /// The number by which the companion knows a window.
    [[nodiscard]] QJsonValue numberOf(const QString& title) {
        return session.ask(
            QStringLiteral("parseInt(String(find('%1').internalId).replace(/[{}-]/g, '')"
                           ".slice(0, 12), 16)")
                .arg(title));
    }
    /// Has a window be given a frame; returns once it has been asked for.
    void ask(const QString& title, const QRect& frame) {
        const int before = program.calls[QStringLiteral("Pointer")];
        program.carry({StandInProgram::frameFor(numberOf(title), frame),
                       QJsonObject{{QStringLiteral("c"), QStringLiteral("pointer")}}});
        ASSERT_TRUE(waitUntil([&] {
            return program.calls[QStringLiteral("Pointer")] == before + 1;
        })) << session.describe();
    }
    void expectNoErrandSoon() {
        EXPECT_TRUE(waitUntil([&] { return !session.hasErrand(); })) << session.describe();
    }
};

struct KWinWithTwoDisplays : KWinWithAStandIn {
    KWinWithTwoDisplays()
        : KWinWithAStandIn({.scales = {1, 1}, .primary = 1}) {}

    /// Where the primary displays begin of which the newest such call has told.
    [[nodiscard]] std::vector<int> primariesIn(const char* call) {
        std::vector<int> primaries;
        const QJsonObject told = program.last[QString::fromLatin1(call)];
        for (const QJsonValue display : told[QStringLiteral("displays")].toArray())
            if (display[QStringLiteral("primary")].toBool())
                primaries.push_back(display[QStringLiteral("frame")][0].toInt());
        return primaries;
    }

    const std::vector<int> theFirst{session.displays()[0].left()};
    const std::vector<int> theSecond{session.displays()[1].left()};
};

} // namespace

TEST_F(KWinWithTwoDisplays, TellsOfThePrimaryOneThatTheUserChoosesWhereScriptsAreToldOfIt) {
    const bool isTold = session.generation() > 5;
    EXPECT_EQ(primariesIn("Hello"), isTold ? theSecond : theFirst);
    if (!isTold)
        return;
    session.changeSecondDisplay(QStringLiteral("priority.2"),
                                [&] { return primariesIn("Displays") == theFirst; });
    session.changeSecondDisplay(QStringLiteral("priority.1"),
                                [&] { return primariesIn("Displays") == theSecond; });
}

TEST_F(KWinWithAStandIn, TellsOfOneMotionAtATimeAndOfTheNewestNext) {
    const QString motion = QStringLiteral("DragMotion");
    session.grab(session.startClient(CompositorClient::qt, ProgramInPlasma::start));
    program.answersAtOnce = false;
    const int before = program.calls[motion];
    QElapsedTimer holding;
    holding.start();
    session.input().glide({1300, 700}, 40);
    session.tell(QStringLiteral("0"));
    // What has not been answered for a second is not waited for.
    EXPECT_LE(program.calls[motion] - before, 2 + int(holding.elapsed() / 1000));
    program.answersAtOnce = true;
    program.answerThoseThatWait();
    session.input().move({1310, 700});
    EXPECT_TRUE(waitUntil([&] {
        return program.last[motion][QStringLiteral("pointer")].toArray() == QJsonArray{1310, 700};
    })) << session.describe();
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return program.calls[QStringLiteral("DragEnd")] == 1; }));
}

TEST_F(KWinWithErrands, LeavesTheWindowToTheUserWhoHasItOrTakesItMeanwhile) {
    const QRect asked(ProgramInPlasma::start.translated(-200, -100));
    const QString title = session.startClient(CompositorClient::qt, ProgramInPlasma::start);
    session.grab(title);
    const QRect inHand = session.frame(title);
    ask(title, asked);
    expectNoErrandSoon();
    EXPECT_EQ(session.frame(title), inHand);
    session.input().release();
    ASSERT_TRUE(waitUntil([&] { return !session.isDragging(); }));

    const QString watch = session.begin(
        QStringLiteral(
            "const window = find('%1');"
            "const taking = new QTimer();"
            "taking.singleShot = true;"
            "taking.timeout.connect(() => {"
            " isTaken = true;"
            " workspace.slotWindowMove();"
            "});"
            "let isTaken = false;"
            "let returns = 0;"
            "window.frameGeometryChanged.connect(() => {"
            " if (!isTaken)"
            "  taking.start();"
            " else if (window.frameGeometry.x === %2 && window.frameGeometry.y === %3)"
            "  ++returns;"
            "});"
            "(window.interactiveMoveResizeFinished || window.clientFinishUserMovedResized)"
            ".connect(() => answer(returns))")
            .arg(title)
            .arg(asked.x())
            .arg(asked.y()));
    ask(title, asked);
    ASSERT_TRUE(waitUntil([&] { return session.isDragging(); })) << session.describe();
    session.input().glide({1300, 700}, 40);
    expectNoErrandSoon();
    session.input().tap(KernelKey::enter);
    EXPECT_EQ(session.answerTo(watch).toInt(-1), 0) << "it was pulled out of the hand";
    EXPECT_TRUE(session.frame(title).contains(1300, 700));
}

TEST_F(KWinWithErrands, GoWithTheWindowThatIsBeingGivenAFrame) {
    const QString title = session.startClient(CompositorClient::qt, ProgramInPlasma::start);
    const auto client = pid_t(session.ask(QStringLiteral("find('%1').pid").arg(title)).toInt());
    ASSERT_GT(client, 0);
    // What it is told it does not do.
    ASSERT_EQ(::kill(client, SIGSTOP), 0);
    ask(title, {100, 100, 900, 700});
    ASSERT_EQ(::kill(client, SIGKILL), 0);
    ASSERT_TRUE(waitUntil([&] { return session.frame(title).isEmpty(); }));
    expectNoErrandSoon();
}

} // namespace tilewright::testing
