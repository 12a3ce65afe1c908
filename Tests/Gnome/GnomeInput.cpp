#include "GnomeInput.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <Waiting.h>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

const QString service = QStringLiteral("org.gnome.Mutter.RemoteDesktop");

} // namespace

GnomeInput::GnomeInput(const QDBusConnection& bus, std::function<QPoint()> pointer,
                       std::function<int(QPoint)> reach)
    : bus_(bus)
    , pointer_(std::move(pointer))
    , reach_(std::move(reach)) {
    const QDBusMessage answer = bus_.call(
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/gnome/Mutter/RemoteDesktop"),
                                       service, QStringLiteral("CreateSession")));
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    session_ = answer.arguments().value(0).value<QDBusObjectPath>().path();
    call(QStringLiteral("Start"));
}

GnomeInput::~GnomeInput() {
    call(QStringLiteral("Stop"));
}

void GnomeInput::step(QPoint by) {
    call(QStringLiteral("NotifyPointerMotionRelative"), {double(by.x()), double(by.y())});
}

void GnomeInput::move(QPoint to) {
    constexpr std::chrono::milliseconds oneStep{200};
    EXPECT_TRUE(waitUntil([&] {
        const QPoint from = pointer_();
        if (from == to)
            return true;
        call(QStringLiteral("NotifyPointerMotionRelative"),
             {double(to.x() - from.x()) / reach_(from), double(to.y() - from.y()) / reach_(from)});
        // The shell takes the step a little later; a second one before it would lead beyond.
        static_cast<void>(waitUntil([&] { return pointer_() != from; }, oneStep));
        return false;
    })) << "the pointer does not get to "
        << to.x() << ", " << to.y();
}

void GnomeInput::button(State state) {
    call(QStringLiteral("NotifyPointerButton"), {leftButton, state == State::down});
}

void GnomeInput::key(KernelKey key, State state) {
    call(QStringLiteral("NotifyKeyboardKeycode"), {unsigned(key), state == State::down});
}

void GnomeInput::call(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, session_, service + QStringLiteral(".Session"), method);
    message.setArguments(arguments);
    const QDBusMessage answer = bus_.call(message);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << answer.errorMessage().toStdString();
}

} // namespace tilewright::testing
