#pragma once

#include "CompanionTexts.h"

#include <Companion/CompanionBus.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>

namespace tilewright::testing {

/// A companion as it is on the bus, whichever compositor it is in: it tells what it is told to
/// tell, and does what the answers say. One connection, like a real one.
class MockTeller {
public:
    explicit MockTeller(QDBusConnection bus)
        : bus_(std::move(bus)) {}
    MockTeller(const MockTeller&) = delete;
    MockTeller& operator=(const MockTeller&) = delete;

    /// Calls the program; what the answer says is done.
    void call(const char* method, const QByteArray& text) {
        ++asked;
        QDBusMessage message = QDBusMessage::createMethodCall(program, CompanionBus::objectPath(),
                                                              CompanionBus::interfaceName(),
                                                              QString::fromLatin1(method));
        message << QString::fromUtf8(text);
        send(message, [this](const QDBusMessage&) { ++answered; });
    }
    /// Whether every call but the one that waits has been answered.
    [[nodiscard]] bool isAnswered() const { return answered == asked; }
    [[nodiscard]] const QDBusConnection& connection() const { return bus_; }

    /// Where the program is called.
    QString program = CompanionBus::serviceName();
    int asked = 0;
    int answered = 0;
    QStringList errors;
    /// The answers' texts, in their order.
    QStringList answers;
    // What it shows by now.
    std::optional<QJsonObject> overlay;
    std::optional<QJsonObject> item;
    std::optional<QJsonObject> panel;
    QStringList fronts;
    int pointerQuestions = 0;
    std::map<int, QJsonArray> frames;
    /// Called for each command, after it was done.
    std::function<void(const QJsonObject&)> onCommand;

protected:
    ~MockTeller() = default;

    void send(const QDBusMessage& message, std::function<void(const QDBusMessage&)> then) {
        constexpr int noTimeLimit = 0x7fffffff;
        auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeLimit), &owner_);
        QObject::connect(pending, &QDBusPendingCallWatcher::finished, &owner_,
                         [this, then = std::move(then)](QDBusPendingCallWatcher* finished) {
                             finished->deleteLater();
                             const QDBusMessage reply = finished->reply();
                             if (reply.type() == QDBusMessage::ErrorMessage)
                                 errors.append(reply.errorName());
                             else
                                 obey(reply.arguments().value(0).toString());
                             then(reply);
                         });
    }
    /// Does what an answer's text says.
    void obey(const QString& answer) {
        answers.append(answer);
        const QJsonObject object = QJsonDocument::fromJson(answer.toUtf8()).object();
        for (const auto& value : object[QStringLiteral("do")].toArray())
            obey(value.toObject());
    }
    void obey(const QJsonObject& command) {
        const QString name = command[QStringLiteral("c")].toString();
        if (name == QStringLiteral("overlay"))
            overlay = command;
        else if (name == QStringLiteral("overlayGone"))
            overlay.reset();
        else if (name == QStringLiteral("item"))
            item = command;
        else if (name == QStringLiteral("panel"))
            panel = command;
        else if (name == QStringLiteral("frame"))
            frames[command[QStringLiteral("window")].toInt()] =
                command[QStringLiteral("frame")].toArray();
        else if (name == QStringLiteral("front"))
            fronts.append(command[QStringLiteral("title")].toString());
        else if (name == QStringLiteral("pointer"))
            ++pointerQuestions;
        else
            ADD_FAILURE() << "an unknown command: " << name.toStdString();
        if (onCommand)
            onCommand(command);
    }

    QDBusConnection bus_;

private:
    /// Ends the calls on their way.
    QObject owner_;
};

} // namespace tilewright::testing
