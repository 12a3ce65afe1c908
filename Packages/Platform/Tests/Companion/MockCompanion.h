#pragma once

#include "CompanionTexts.h"

#include <Companion/CompanionBus.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>

namespace tilewright::testing {

/// A shell with the program's companion inside, as it is on the bus: it owns the shell's name,
/// tells what it is told to tell, and does what the answers say. One connection, like a real one.
class MockCompanion {
public:
    explicit MockCompanion(QDBusConnection bus)
        : bus_(std::move(bus))
        , extensions_(*this) {
        bus_.registerVirtualObject(QStringLiteral("/org/gnome/Shell"), &extensions_);
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.gnome.Shell")));
    }
    ~MockCompanion() { leave(); }
    MockCompanion(const MockCompanion&) = delete;
    MockCompanion& operator=(const MockCompanion&) = delete;

    /// The shell's end.
    void leave() {
        bus_.unregisterService(QStringLiteral("org.gnome.Shell"));
        bus_.unregisterObject(QStringLiteral("/org/gnome/Shell"));
        isPolling_ = false;
    }

    /// Whether the program is there to be called.
    [[nodiscard]] bool seesProgram() {
        QDBusMessage question = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
        question << CompanionBus::serviceName();
        return bus_.call(question).arguments().value(0).toBool();
    }
    /// Introduces itself and waits for commands from then on.
    void greet(const QByteArray& hello = helloText()) {
        call("Hello", hello);
        if (!isPolling_) {
            isPolling_ = true;
            poll();
        }
    }
    /// Calls the program; what the answer says is done.
    void call(const char* method, const QByteArray& text) {
        ++asked;
        QDBusMessage message = QDBusMessage::createMethodCall(
            CompanionBus::serviceName(), CompanionBus::objectPath(), CompanionBus::interfaceName(),
            QString::fromLatin1(method));
        message << QString::fromUtf8(text);
        send(message, [this](const QDBusMessage&) { ++answered; });
    }
    /// Whether every call but the one that waits has been answered.
    [[nodiscard]] bool isAnswered() const { return answered == asked; }
    /// The shell says that its extension's state is another one by now.
    void announceExtension() {
        QDBusMessage signal = QDBusMessage::createSignal(
            QStringLiteral("/org/gnome/Shell"), QStringLiteral("org.gnome.Shell.Extensions"),
            QStringLiteral("ExtensionStateChanged"));
        signal << QStringLiteral("tilewright@tilewright.org") << QVariantMap();
        bus_.send(signal);
    }

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
    // The shell's extensions: none is known unless there is a state.
    std::optional<int> extensionState;
    bool areExtensionsOn = true;
    int enablings = 0;

private:
    class Extensions final : public QDBusVirtualObject {
    public:
        explicit Extensions(MockCompanion& shell)
            : shell_(shell) {}
        QString introspect(const QString&) const override { return {}; }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
            if (message.member() == QStringLiteral("GetExtensionInfo")) {
                QVariantMap info;
                const bool isPackaged = message.arguments().value(0).toString() ==
                                        QStringLiteral("tilewright@tilewright.org");
                if (shell_.extensionState && isPackaged)
                    info.insert(QStringLiteral("state"), double(*shell_.extensionState));
                bus.send(message.createReply(info));
            } else if (message.member() == QStringLiteral("EnableExtension")) {
                ++shell_.enablings;
                if (shell_.extensionState && shell_.areExtensionsOn)
                    shell_.extensionState = 1;
                bus.send(message.createReply(shell_.extensionState.has_value()));
            } else if (message.member() == QStringLiteral("Set")) {
                shell_.areExtensionsOn = true;
                bus.send(message.createReply());
            } else {
                return false;
            }
            return true;
        }

    private:
        MockCompanion& shell_;
    };

    void poll() {
        QDBusMessage message = QDBusMessage::createMethodCall(
            CompanionBus::serviceName(), CompanionBus::objectPath(), CompanionBus::interfaceName(),
            QStringLiteral("NextCommand"));
        message << QStringLiteral("{}");
        send(message, [this](const QDBusMessage& reply) {
            if (isPolling_ && reply.type() == QDBusMessage::ReplyMessage)
                poll();
            else
                isPolling_ = false;
        });
    }
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
    Extensions extensions_;
    bool isPolling_ = false;
    /// Ends the calls on their way.
    QObject owner_;
};

} // namespace tilewright::testing
