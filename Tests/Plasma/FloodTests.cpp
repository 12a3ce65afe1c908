// The real program while a stranger on the session's bus calls it without a pause, and KWin while
// what it takes for the program floods it.

#include "ProgramInPlasma.h"

#include <Companion/CompanionBus.h>
#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <Plasma/KWinCompanion.h>

#include <QDBusVirtualObject>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tilewright::testing {
namespace {

/// Answers the companion in the program's place.
class MadProgram final : public QDBusVirtualObject {
public:
    explicit MadProgram(const CompositorSession& session)
        : bus_(session.bus())
        , companion_(bus_, session.home() + QStringLiteral("/run")) {
        QDBusConnection bus = bus_.connection();
        EXPECT_TRUE(bus.registerVirtualObject(CompanionBus::objectPath(), this));
    }
    ~MadProgram() override {
        QDBusConnection bus = bus_.connection();
        bus.unregisterObject(CompanionBus::objectPath());
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const QString method = message.member();
        ++calls[method];
        const QJsonObject body =
            QJsonDocument::fromJson(message.arguments().value(0).toString().toUtf8()).object();
        bus.send(message.createReply(answer ? answer(method, body) : QStringLiteral("{}")));
        return true;
    }

    /// What it answers to a call.
    std::function<QString(const QString& method, const QJsonObject& body)> answer;
    std::map<QString, int> calls;

private:
    MessageBus bus_;
    KWinCompanion companion_;
};

struct KWinWithAMadProgram : ::testing::Test {
    KWinWithAMadProgram() {
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It greets once it has heard of the effects, which KWin tells one after the other.
        session.tell(QStringLiteral("0"));
        EXPECT_TRUE(waitUntil([&] { return program.calls[QStringLiteral("Hello")] == 1; }));
    }
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
            list.append(QJsonObject{
                {QStringLiteral("c"), QStringLiteral("frame")},
                {QStringLiteral("window"), drag[QStringLiteral("window")][QStringLiteral("id")]},
                {QStringLiteral("frame"), QJsonArray{10, 20, firstWidth + i, 400}}});
        return QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("do"), list}})
                                     .toJson(QJsonDocument::Compact));
    }

    PlasmaSession session;
    MadProgram program{session};
    const QString title = session.startClient(CompositorClient::qt, ProgramInPlasma::start);
};

} // namespace

TEST_F(ProgramInPlasma, ListensToNoStrangerHoweverOftenHeCallsDuringADrag) {
    // By this name it is found; the companion knows it by its address.
    QDBusMessage call = QDBusMessage::createMethodCall(
        FreeDesktopInstanceActivation(QStringLiteral("wayland-test"), session.bus()).serviceName(),
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
