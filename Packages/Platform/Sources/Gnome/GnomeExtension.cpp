#include "GnomeExtension.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <utility>

namespace tilewright {

namespace {

// As the shell numbers the states of extensions.
constexpr int shellsActive = 1;
constexpr int shellsInactive = 2;
constexpr int shellsError = 3;
constexpr int shellsOutOfDate = 4;
constexpr int shellsInitialized = 6;
constexpr int shellsDeactivating = 7;
constexpr int shellsActivating = 8;

QString extensionsInterface() {
    return QStringLiteral("org.gnome.Shell.Extensions");
}

QString shellPath() {
    return QStringLiteral("/org/gnome/Shell");
}

/// Calls go to the shell itself: the name of the interface belongs to a program that the bus
/// starts.
QDBusMessage callToShell(const QString& shell, const QString& interface, const QString& method) {
    QDBusMessage message = QDBusMessage::createMethodCall(shell, shellPath(), interface, method);
    message.setAutoStartService(false);
    return message;
}

GnomeExtension::State stateFor(int told) {
    using State = GnomeExtension::State;
    switch (told) {
    case shellsActive:
    case shellsActivating:
        return State::active;
    case shellsInactive:
    case shellsInitialized:
    case shellsDeactivating:
        return State::off;
    case shellsError:
    case shellsOutOfDate:
        return State::refused;
    default:
        return State::unknown;
    }
}

} // namespace

QString GnomeExtension::shellName() {
    return QStringLiteral("org.gnome.Shell");
}

GnomeExtension::GnomeExtension(MessageBus& bus, GnomeCompanionFiles files, QString settingsProgram)
    : bus_(bus)
    , files_(std::move(files))
    , startList_(std::move(settingsProgram))
    , signals_(bus, shellPath(), extensionsInterface(), {QStringLiteral("ExtensionStateChanged")}) {
    connect(&signals_, &BusSignals::heard, this, &GnomeExtension::stateChanged);
    connect(&bus_, &MessageBus::joined, this, &GnomeExtension::joinBus);
    connect(&bus_, &MessageBus::left, this, &GnomeExtension::leaveBus);
    if (bus_.isJoined())
        joinBus();
}

GnomeExtension::~GnomeExtension() = default;

void GnomeExtension::joinBus() {
    shell_ = std::make_unique<BusNameOwner>(bus_.connection(), shellName());
    connect(shell_.get(), &BusNameOwner::changed, this, &GnomeExtension::shellChanged);
}

void GnomeExtension::leaveBus() {
    shell_.reset();
    ask();
}

void GnomeExtension::shellChanged() {
    signals_.listenTo(shell_->owner());
    ask();
}

void GnomeExtension::stateChanged(const QDBusMessage& notice) {
    if (notice.arguments().value(0).toString() == files_.name())
        refresh();
}

void GnomeExtension::refresh() {
    // One question at a time, however often things change.
    if (isAsked_)
        isStale_ = true;
    else
        ask();
}

void GnomeExtension::ask() {
    ++generation_;
    isStale_ = false;
    isAsked_ = !signals_.sender().isEmpty();
    if (!isAsked_) {
        settle(State::unknown);
        return;
    }
    QDBusMessage get =
        callToShell(signals_.sender(), extensionsInterface(), QStringLiteral("GetExtensionInfo"));
    get << files_.name();
    whenAnswered(bus_.connection().asyncCall(get), this,
                 [this, generation = generation_](const QDBusMessage& reply) {
                     if (generation != generation_)
                         return;
                     isAsked_ = false;
                     settle(stateIn(reply));
                     if (isStale_)
                         ask();
                 });
}

GnomeExtension::State GnomeExtension::stateIn(const QDBusMessage& reply) const {
    if (reply.type() != QDBusMessage::ReplyMessage)
        return State::unknown;
    const auto info = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    bool isNumber = false;
    const int told = info.value(QStringLiteral("state")).toInt(&isNumber);
    if (isNumber)
        return stateFor(told);
    // Nothing at all is said of what is not known.
    return files_.areInstalled() ? State::notSeen : State::notInstalled;
}

void GnomeExtension::settle(State state) {
    const State before = std::exchange(state_, state);
    // Also where it was seen in no other state: it may have run and ended since the last answer.
    // Of a shell that does not answer nothing is known; if it is gone, all hear of that.
    const bool isKnownToRest = state == State::off || state == State::refused;
    if (isKnownToRest ||
        (before == State::active && state != State::active && state != State::unknown))
        Q_EMIT stopped();
    if (before == state_)
        return;
    if (state_ == State::notSeen)
        startList_.add(files_.name());
    Q_EMIT changed();
}

void GnomeExtension::turnOn() {
    if (state_ != State::off)
        return;
    QDBusMessage set =
        callToShell(signals_.sender(), QStringLiteral("org.freedesktop.DBus.Properties"),
                    QStringLiteral("Set"));
    set << extensionsInterface() << QStringLiteral("UserExtensionsEnabled")
        << QVariant::fromValue(QDBusVariant(true));
    bus_.connection().send(set);
    QDBusMessage enable =
        callToShell(signals_.sender(), extensionsInterface(), QStringLiteral("EnableExtension"));
    enable << files_.name();
    whenAnswered(bus_.connection().asyncCall(enable), this,
                 [this](const QDBusMessage&) { refresh(); });
}

} // namespace tilewright
