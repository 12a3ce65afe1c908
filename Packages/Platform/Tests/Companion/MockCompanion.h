#pragma once

#include "MockTeller.h"

#include <QDBusVirtualObject>

namespace tilewright::testing {

/// A shell with the program's companion inside, as it is on the bus: it owns the shell's name,
/// tells what it is told to tell, and does what the answers say.
class MockCompanion final : public MockTeller {
public:
    explicit MockCompanion(QDBusConnection bus)
        : MockTeller(std::move(bus))
        , extensions_(*this) {
        bus_.registerVirtualObject(QStringLiteral("/org/gnome/Shell"), &extensions_);
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.gnome.Shell")));
    }
    ~MockCompanion() { leave(); }

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
    /// The shell says that its extension's state is another one by now.
    void announceExtension() {
        QDBusMessage signal = QDBusMessage::createSignal(
            QStringLiteral("/org/gnome/Shell"), QStringLiteral("org.gnome.Shell.Extensions"),
            QStringLiteral("ExtensionStateChanged"));
        signal << QStringLiteral("tilewright@tilewright.org") << QVariantMap();
        bus_.send(signal);
    }

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

    Extensions extensions_;
    bool isPolling_ = false;
};

} // namespace tilewright::testing
