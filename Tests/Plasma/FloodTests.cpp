// The real program while a stranger on the session's bus calls it without a pause, and KWin while
// what it takes for the program floods it.

#include "ProgramInPlasma.h"
#include "StandInProgram.h"

#include <FreeDesktop/FreeDesktopInstanceActivation.h>

namespace tilewright::testing {
namespace {

struct KWinWithAMadProgram : KWinWithAStandIn {
    [[nodiscard]] bool hasCompanion() { return session.hasScript(KWinCompanion::scriptName()); }
    void glideTo(QPoint to) {
        session.input().glide(to, 40);
        EXPECT_TRUE(waitUntil([&] { return session.frame(title).contains(to + QPoint(0, 10)); }))
            << session.describe();
    }
    void drop() {
        session.input().release();
        EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    }
    /// An answer with a frame for the dragged window in every command, the first so wide and each
    /// one after that wider by one.
    [[nodiscard]] static QString answerOf(int commands, const QJsonObject& drag, int firstWidth) {
        QJsonArray list;
        for (int i = 0; i < commands; ++i)
            list.append(
                StandInProgram::frameFor(drag[QStringLiteral("window")][QStringLiteral("id")],
                                         {10, 20, firstWidth + i, 400}));
        return StandInProgram::textOf(list);
    }

    const QString title = session.startClient(CompositorClient::qt, ProgramInPlasma::start);
};

} // namespace

TEST_F(ProgramInPlasma, ListensToNoStrangerHoweverOftenHeCallsDuringADrag) {
    // By this name it is found; the companion knows it by its address.
    MessageBus bus(session.bus());
    QDBusMessage call = QDBusMessage::createMethodCall(
        FreeDesktopInstanceActivation(QStringLiteral("wayland-test"), bus).serviceName(),
        CompanionBus::objectPath(), CompanionBus::interfaceName(), QStringLiteral("Hello"));
    call << QStringLiteral(
        R"({"protocol":1,"shell":"5","displays":[],"focus":null,"pointer":[0,0],"keys":0})");
    expectToSnapUnderAFloodOf(call, session.startClient(CompositorClient::qt, start));
}

TEST_F(KWinWithAMadProgram, CarriesOutNoMoreThanSoManyCommandsOfAnAnswerAndDragsOn) {
    constexpr int inAllowedSize = 600;
    constexpr int firstWidth = 500;
    constexpr int mostCommands = 32;
    program.answer = [](const QString&, const QJsonObject& body) {
        return answerOf(inAllowedSize, body, firstWidth);
    };
    session.grab(title);
    glideTo({1300, 700});
    EXPECT_EQ(session.frame(title).size(), ProgramInPlasma::start.size());
    drop();
    const QRect last(10, 20, firstWidth + mostCommands - 1, 400);
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == last; })) << session.describe();
    EXPECT_TRUE(
        staysTrue([&] { return session.frame(title) == last; }, std::chrono::milliseconds(400)));
    EXPECT_TRUE(hasCompanion());
}

TEST_F(KWinWithAMadProgram, ListensNoMoreAfterAnAnswerThatIsLargerThanAnyOfOursAndDragsOn) {
    program.answer = [](const QString& method, const QJsonObject& body) {
        return method == u"DragBegin" ? answerOf(100'000, body, 500) : QStringLiteral("{}");
    };
    session.grab(title);
    EXPECT_TRUE(waitUntil([&] { return !hasCompanion(); })) << session.describe();
    const std::map<QString, int> before = program.calls;
    glideTo({1300, 700});
    drop();
    EXPECT_EQ(session.frame(title).size(), ProgramInPlasma::start.size());
    session.grab(title);
    glideTo({700, 600});
    drop();
    EXPECT_EQ(program.calls, before);
}

} // namespace tilewright::testing
