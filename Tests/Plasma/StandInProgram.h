#pragma once

#include "PlasmaSession.h"

#include <Companion/CompanionBus.h>
#include <Plasma/KWinCompanion.h>

#include <QDBusVirtualObject>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <Waiting.h>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <utility>
#include <vector>

namespace tilewright::testing {

/// Has KWin take the companion, and answers that in the program's place.
class StandInProgram final : public QDBusVirtualObject {
public:
    explicit StandInProgram(const CompositorSession& session)
        : bus_(session.bus())
        , companion_(bus_, session.home() + QStringLiteral("/run")) {
        QDBusConnection bus = bus_.connection();
        EXPECT_TRUE(bus.registerVirtualObject(CompanionBus::objectPath(), this));
    }
    ~StandInProgram() override {
        QDBusConnection bus = bus_.connection();
        bus.unregisterObject(CompanionBus::objectPath());
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const QString method = message.member();
        ++calls[method];
        last[method] =
            QJsonDocument::fromJson(message.arguments().value(0).toString().toUtf8()).object();
        const QDBusMessage reply =
            message.createReply(answer ? answer(method, last[method]) : QStringLiteral("{}"));
        if (answersAtOnce)
            bus.send(reply);
        else
            waiting_.push_back(reply);
        return true;
    }
    void answerThoseThatWait() {
        for (const QDBusMessage& reply : std::exchange(waiting_, {}))
            bus_.connection().send(reply);
    }
    /// Commands as the text of an answer.
    [[nodiscard]] static QString textOf(const QJsonArray& commands) {
        const QJsonObject text{{QStringLiteral("do"), commands}};
        return QString::fromUtf8(QJsonDocument(text).toJson(QJsonDocument::Compact));
    }
    /// The command that gives a window a frame.
    [[nodiscard]] static QJsonObject frameFor(const QJsonValue& window, const QRect& frame) {
        return {{QStringLiteral("c"), QStringLiteral("frame")},
                {QStringLiteral("window"), window},
                {QStringLiteral("frame"),
                 QJsonArray{frame.x(), frame.y(), frame.width(), frame.height()}}};
    }
    /// Has KWin carry out commands that no call has brought about.
    void carry(const QJsonArray& commands) { companion_.carry(textOf(commands)); }

    /// What it answers to a call.
    std::function<QString(const QString& method, const QJsonObject& body)> answer;
    /// Or keeps the answers to itself.
    bool answersAtOnce = true;
    std::map<QString, int> calls;
    /// What the newest call of each kind had to tell.
    std::map<QString, QJsonObject> last;

private:
    MessageBus bus_;
    KWinCompanion companion_;
    std::vector<QDBusMessage> waiting_;
};

/// A session of KWin whose companion has greeted a stand-in.
struct KWinWithAStandIn : ::testing::Test {
    explicit KWinWithAStandIn(const PlasmaDisplays& displays = {})
        : session(displays) {
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It greets once it has heard of the effects, which KWin tells one after the other.
        session.tell(QStringLiteral("0"));
        EXPECT_TRUE(waitUntil([&] { return program.calls[QStringLiteral("Hello")] == 1; }));
    }

    PlasmaSession session;
    StandInProgram program{session};
};

} // namespace tilewright::testing
