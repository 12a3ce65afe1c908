#include "KWinCompanion.h"

#include "KWinCompanionScript.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <utility>

namespace tilewright {

namespace {

/// More are never on their way to KWin at a time.
constexpr std::size_t mostFiles = 8;

QString filesOfThisProcess() {
    return QStringLiteral("tilewright-%1-%2.js").arg(QCoreApplication::applicationPid());
}

QDBusMessage callToKWin(const QString& path, const QString& interface, const QString& method) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(KWinCompanion::compositorName(), path, interface, method);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage callToScripting(const QString& method) {
    return callToKWin(QStringLiteral("/Scripting"), QStringLiteral("org.kde.kwin.Scripting"),
                      method);
}

QDBusMessage unloading(const QString& script) {
    QDBusMessage unload = callToScripting(QStringLiteral("unloadScript"));
    unload << script;
    return unload;
}

/// What makes an object of the script, which is told whose it is.
QByteArray making(const char* type, const QDBusConnection& bus, const QString& name) {
    return QStringLiteral("new %1('%2', %3, '%4')")
        .arg(QLatin1String(type), bus.baseService())
        .arg(QCoreApplication::applicationPid())
        .arg(name)
        .toUtf8();
}

} // namespace

QString KWinCompanion::compositorName() {
    return QStringLiteral("org.kde.KWin");
}

QString KWinCompanion::scriptName() {
    return QStringLiteral("tilewright");
}

QStringList KWinCompanion::keyEffects() {
    return {QStringLiteral("tilewright_key_shift"), QStringLiteral("tilewright_key_control"),
            QStringLiteral("tilewright_key_alt"), QStringLiteral("tilewright_key_meta")};
}

QString KWinCompanion::runtimeFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

KWinCompanion::KWinCompanion(MessageBus& bus, QString folder)
    : bus_(bus)
    , folder_(std::move(folder))
    , compositing_(bus, QStringLiteral("/Compositor"), QStringLiteral("org.kde.kwin.Compositing"),
                   {QStringLiteral("compositingToggled")}) {
    // A former life of this process, or of one with its number, may have had no time to do so.
    QDir files(folder_, filesOfThisProcess().arg(QStringLiteral("*")));
    for (const QString& file : files.entryList(QDir::Files))
        files.remove(file);
    connect(&compositing_, &BusSignals::heard, this, &KWinCompanion::compositingToggled);
    connect(&bus_, &MessageBus::joined, this, &KWinCompanion::joinBus);
    connect(&bus_, &MessageBus::left, this, &KWinCompanion::leaveBus);
    if (bus_.isJoined())
        joinBus();
}

KWinCompanion::~KWinCompanion() {
    if (!kwin_ || kwin_->owner().isEmpty())
        return;
    bus_.connection().send(unloading(scriptName()));
    for (const QString& effect : keyEffects()) {
        QDBusMessage unload =
            callToKWin(QStringLiteral("/Effects"), QStringLiteral("org.kde.kwin.Effects"),
                       QStringLiteral("unloadEffect"));
        unload << effect;
        bus_.connection().send(unload);
    }
}

void KWinCompanion::joinBus() {
    QDBusConnection bus = bus_.connection();
    kwin_ = std::make_unique<BusNameOwner>(bus, compositorName());
    connect(kwin_.get(), &BusNameOwner::changed, this, [this] {
        compositing_.listenTo(kwin_->owner());
        reload();
    });
}

void KWinCompanion::compositingToggled(const QDBusMessage& notice) {
    // KWin 5 begins anew to paint when a display has been switched off, and forgets the effects
    // that were loaded into it.
    if (notice.arguments().value(0).toBool())
        reload();
}

void KWinCompanion::leaveBus() {
    kwin_.reset();
    onItsWayTo_.reset();
    reload();
}

void KWinCompanion::reload() {
    settle(State::unknown);
    const QString kwin = kwin_ ? kwin_->owner() : QString();
    if (kwin.isEmpty())
        return;
    if (onItsWayTo_ == kwin) {
        isStale_ = true;
        return;
    }
    onItsWayTo_ = kwin;
    isStale_ = false;
    start(scriptName(), making("Companion", bus_.connection(), scriptName()),
          [this, kwin](bool isLoaded) {
              // Whoever answers late is not the KWin of now.
              if (onItsWayTo_ != kwin)
                  return;
              onItsWayTo_.reset();
              if (isStale_)
                  reload();
              else if (kwin_ && kwin_->owner() == kwin)
                  settle(isLoaded ? State::loaded : State::refused);
          });
}

void KWinCompanion::carry(const QString& commands) {
    if (!kwin_ || kwin_->owner().isEmpty())
        return;
    const QString name = QStringLiteral("%1_errand_%2").arg(scriptName()).arg(++errands_);
    start(name,
          making("Errand", bus_.connection(), name) + ".run((" + commands.toUtf8() + ").do || [])",
          [](bool) {});
}

void KWinCompanion::settle(State state) {
    if (std::exchange(state_, state) != state_)
        Q_EMIT changed();
}

void KWinCompanion::start(const QString& name, const QByteArray& lastLine,
                          std::function<void(bool)> then) {
    const QString path = write(lastLine);
    if (path.isEmpty()) {
        then(false);
        return;
    }
    // One of that name may be there from an earlier run; until it has gone, no other is taken.
    whenAnswered(bus_.connection().asyncCall(unloading(name)), this,
                 [this, name, path, then = std::move(then)](const QDBusMessage&) {
                     load(name, path, then);
                 });
}

void KWinCompanion::load(const QString& name, const QString& path, std::function<void(bool)> then) {
    QDBusMessage load = callToScripting(QStringLiteral("loadScript"));
    load << path << name;
    whenAnswered(bus_.connection().asyncCall(load), this,
                 [this, then = std::move(then)](const QDBusMessage& reply) {
                     const bool isTaken = reply.type() == QDBusMessage::ReplyMessage &&
                                          reply.arguments().value(0).toInt() >= 0;
                     // Not by its number, which KWin may have given to another script as well: all
                     // those are started that do not run yet.
                     if (isTaken)
                         bus_.connection().send(callToScripting(QStringLiteral("start")));
                     then(isTaken);
                 });
}

QString KWinCompanion::write(const QByteArray& lastLine) {
    auto file = std::make_unique<QTemporaryFile>(
        folder_ + u'/' + filesOfThisProcess().arg(QStringLiteral("XXXXXX")));
    const QByteArray text = kwinCompanionScript() + lastLine + ";\n";
    if (!file->open() || file->write(text) != text.size() || !file->flush())
        return {};
    QString path = file->fileName();
    file->close();
    files_.push_back(std::move(file));
    if (files_.size() > mostFiles)
        files_.pop_front();
    return path;
}

} // namespace tilewright
