#include "FreeDesktopAppearance.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

namespace tilewright {

namespace {

QString portal() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString settingsInterface() {
    return QStringLiteral("org.freedesktop.portal.Settings");
}

QString appearance() {
    return QStringLiteral("org.freedesktop.appearance");
}

QString interfaceSettings() {
    return QStringLiteral("org.gnome.desktop.interface");
}

QString kdeSettings() {
    return QStringLiteral("org.kde.kdeglobals.KDE");
}

/// Of the standard's colour schemes: 0 is no preference, 2 light.
constexpr uint darkScheme = 1;

/// The setting that all desktops are to have in the end; its 0 means no preference.
std::optional<bool> standardWish(const QVariant& value) {
    return value.isValid() && value.toUInt() == 1 ? std::optional(true) : std::nullopt;
}

std::optional<bool> wishFromAnimations(const QVariant& areEnabled) {
    if (areEnabled.metaType() != QMetaType::fromType<bool>())
        return std::nullopt;
    return !areEnabled.toBool();
}

std::optional<bool> wishFromDuration(const QVariant& factor) {
    bool isNumber = false;
    const double number = factor.toDouble(&isNumber);
    return isNumber ? std::optional(number <= 0) : std::nullopt;
}

} // namespace

std::optional<bool> combinedMotionWish(std::optional<bool> first, std::optional<bool> second) {
    if (first && second)
        return *first || *second;
    return first ? first : second;
}

FreeDesktopAppearance::FreeDesktopAppearance(QDBusConnection bus)
    : bus_(std::move(bus)) {
    if (!bus_.isConnected())
        return;
    auto* watch =
        new QDBusServiceWatcher(portal(), bus_, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watch, &QDBusServiceWatcher::serviceRegistered, this, [this] { readAll(); });
    // Slots that take it cannot be connected before Qt knows the type.
    qRegisterMetaType<QDBusVariant>();
    // Any sender: naming one would look up its owner, blocking.
    bus_.connect(QString(), portalPath(), settingsInterface(), QStringLiteral("SettingChanged"),
                 this, SLOT(settingChanged(QString, QString, QDBusVariant)));
    readAll();
}

FreeDesktopAppearance::~FreeDesktopAppearance() = default;

std::optional<bool> FreeDesktopAppearance::prefersReducedMotion() const {
    const auto value = [this](const QString& group, const char* key) {
        return groups_.value(group).value(QString::fromLatin1(key));
    };
    return combinedMotionWish(
        standardWish(value(appearance(), "reduced-motion")),
        combinedMotionWish(wishFromAnimations(value(interfaceSettings(), "enable-animations")),
                           wishFromDuration(value(kdeSettings(), "AnimationDurationFactor"))));
}

bool FreeDesktopAppearance::prefersDark() const {
    return groups_.value(appearance()).value(QStringLiteral("color-scheme")).toUInt() == darkScheme;
}

void FreeDesktopAppearance::readAll() {
    QDBusMessage call = QDBusMessage::createMethodCall(portal(), portalPath(), settingsInterface(),
                                                       QStringLiteral("ReadAll"));
    // Most desktops start it at login; where none did, nobody needs it for this.
    call.setAutoStartService(false);
    call << QStringList{appearance(), interfaceSettings(), kdeSettings()};
    changedSince_.clear();
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, generation = ++generation_](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusMessage reply = finished->reply();
                if (generation != generation_ || reply.type() != QDBusMessage::ReplyMessage ||
                    reply.signature() != QStringLiteral("a{sa{sv}}"))
                    return;
                // A change is handed out at once, a reply only later: what has been heard of is
                // never older.
                auto groups = qdbus_cast<Groups>(reply.arguments().value(0));
                for (auto group = changedSince_.cbegin(); group != changedSince_.cend(); ++group)
                    groups[group.key()].insert(group.value());
                take(std::move(groups));
            });
}

void FreeDesktopAppearance::settingChanged(const QString& group, const QString& key,
                                           const QDBusVariant& value) {
    if (group != appearance() && group != interfaceSettings() && group != kdeSettings())
        return;
    changedSince_[group][key] = value.variant();
    Groups groups = groups_;
    groups[group][key] = value.variant();
    take(std::move(groups));
}

void FreeDesktopAppearance::take(Groups groups) {
    const std::optional<bool> reducedMotionBefore = prefersReducedMotion();
    const bool darkBefore = prefersDark();
    groups_ = std::move(groups);
    if (prefersReducedMotion() != reducedMotionBefore)
        Q_EMIT reducedMotionChanged();
    if (prefersDark() != darkBefore)
        Q_EMIT darkChanged();
}

} // namespace tilewright
