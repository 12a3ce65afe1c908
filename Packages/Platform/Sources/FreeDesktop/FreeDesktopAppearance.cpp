#include "FreeDesktopAppearance.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMap>
#include <QVariantMap>

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

struct Setting {
    const char* group;
    const char* key;
    /// What a value of it says of the wish; none where it says nothing, or is none of its values.
    std::optional<bool> (*wish)(const QVariant& value);
};

/// The standard's settings have 0 for no preference.
std::optional<bool> wishFromChoice(const QVariant& choice) {
    return choice.isValid() && choice.toUInt() == 1 ? std::optional(true) : std::nullopt;
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

/// In the order of `FreeDesktopAppearance::SettingID`.
constexpr std::array settings{
    Setting{"org.freedesktop.appearance", "reduced-motion", wishFromChoice},
    Setting{"org.gnome.desktop.interface", "enable-animations", wishFromAnimations},
    Setting{"org.kde.kdeglobals.KDE", "AnimationDurationFactor", wishFromDuration},
    // 1 is dark, 2 light.
    Setting{"org.freedesktop.appearance", "color-scheme", wishFromChoice},
};

} // namespace

std::optional<bool> combinedMotionWish(std::optional<bool> first, std::optional<bool> second) {
    if (first && second)
        return *first || *second;
    return first ? first : second;
}

FreeDesktopAppearance::FreeDesktopAppearance(MessageBus& bus)
    : bus_(bus)
    , signals_(bus, portalPath(), settingsInterface(), {QStringLiteral("SettingChanged")}) {
    static_assert(settings.size() == settingCount);
    connect(&signals_, &BusSignals::heard, this, &FreeDesktopAppearance::settingChanged);
    connect(&bus_, &MessageBus::joined, this, &FreeDesktopAppearance::joinBus);
    if (bus_.isJoined())
        joinBus();
}

void FreeDesktopAppearance::joinBus() {
    portal_ = std::make_unique<BusNameOwner>(bus_.connection(), portal());
    connect(portal_.get(), &BusNameOwner::changed, this, &FreeDesktopAppearance::followPortal);
}

FreeDesktopAppearance::~FreeDesktopAppearance() = default;

std::optional<bool> FreeDesktopAppearance::prefersReducedMotion() const {
    return combinedMotionWish(
        wishes_[standardMotion],
        combinedMotionWish(wishes_[animationsEnabled], wishes_[animationDuration]));
}

bool FreeDesktopAppearance::prefersDark() const {
    return wishes_[colorScheme].value_or(false);
}

void FreeDesktopAppearance::followPortal() {
    signals_.listenTo(portal_->owner());
    if (!signals_.sender().isEmpty())
        readAll();
}

void FreeDesktopAppearance::readAll() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        signals_.sender(), portalPath(), settingsInterface(), QStringLiteral("ReadAll"));
    QStringList groups;
    for (const Setting& setting : settings)
        groups.append(QString::fromLatin1(setting.group));
    groups.removeDuplicates();
    call << groups;
    changedSince_.reset();
    whenAnswered(bus_.connection().asyncCall(call), this,
                 [this, generation = ++generation_](const QDBusMessage& answer) {
                     if (generation == generation_)
                         takeAll(answer);
                 });
}

void FreeDesktopAppearance::takeAll(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage ||
        answer.signature() != QStringLiteral("a{sa{sv}}"))
        return;
    const auto told = qdbus_cast<QMap<QString, QVariantMap>>(answer.arguments().value(0));
    Wishes wishes = wishes_;
    for (std::size_t i = 0; i < settings.size(); ++i) {
        const auto& [group, key, wish] = settings[i];
        // A change is handed out at once, an answer only later: what has been heard of is never
        // older.
        if (!changedSince_[i])
            wishes[i] =
                wish(told.value(QString::fromLatin1(group)).value(QString::fromLatin1(key)));
    }
    take(wishes);
}

void FreeDesktopAppearance::settingChanged(const QDBusMessage& notice) {
    if (notice.signature() != u"ssv")
        return;
    const QVariantList told = notice.arguments();
    const QString group = told[0].toString();
    const QString key = told[1].toString();
    const QVariant value = told[2].value<QDBusVariant>().variant();
    for (std::size_t i = 0; i < settings.size(); ++i) {
        if (group != QLatin1String(settings[i].group) || key != QLatin1String(settings[i].key))
            continue;
        changedSince_.set(i);
        Wishes wishes = wishes_;
        wishes[i] = settings[i].wish(value);
        take(wishes);
    }
}

void FreeDesktopAppearance::take(const Wishes& wishes) {
    const std::optional<bool> reducedMotionBefore = prefersReducedMotion();
    const bool darkBefore = prefersDark();
    wishes_ = wishes;
    if (prefersReducedMotion() != reducedMotionBefore)
        Q_EMIT reducedMotionChanged();
    if (prefersDark() != darkBefore)
        Q_EMIT darkChanged();
}

} // namespace tilewright
