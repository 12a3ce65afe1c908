#include "DisplayKeys.h"

#include <QUuid>
#include <algorithm>
#include <numeric>

namespace tilewright {
namespace {

/// The namespace of this program's display UUIDs. Changing it would orphan every stored choice.
const QUuid& displayNamespace() {
    static const QUuid uuid(QStringLiteral("8f0d4a4e-2c1b-5d37-9a6e-41c7b3d95e02"));
    return uuid;
}

QString uuidFor(const QByteArray& identity) {
    return QUuid::createUuidV5(displayNamespace(), identity)
        .toString(QUuid::WithoutBraces)
        .toUpper();
}

} // namespace

std::vector<std::optional<QString>> DisplayKeys::update(const std::vector<Display>& displays) {
    std::map<QString, Held> next;
    const auto isTaken = [&](const QString& uuid) {
        return std::any_of(next.begin(), next.end(),
                           [&](const auto& entry) { return entry.second.uuid == uuid; });
    };
    // Who stays keeps what it has, before any newcomer is looked at.
    for (const Display& display : displays) {
        const auto before = held_.find(display.connector);
        if (display.edid && before != held_.end() &&
            before->second.identity == display.edid->identity())
            next.insert(*before);
    }
    std::vector<std::size_t> order(displays.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return displays[a].connector < displays[b].connector;
    });
    for (const std::size_t index : order) {
        const Display& display = displays[index];
        if (!display.edid || next.contains(display.connector))
            continue;
        const QByteArray identity = display.edid->identity();
        QString uuid = uuidFor(identity);
        if (!display.edid->hasSerial() || isTaken(uuid))
            uuid = uuidFor(identity + '@' + display.connector.toUtf8());
        next.insert({display.connector, {identity, uuid}});
    }
    held_ = std::move(next);

    std::vector<std::optional<QString>> keys;
    keys.reserve(displays.size());
    for (const Display& display : displays) {
        const auto found = held_.find(display.connector);
        keys.push_back(found == held_.end() ? std::nullopt
                                            : std::optional<QString>(found->second.uuid));
    }
    return keys;
}

quint32 displayNumber(const QString& connector) {
    quint32 hash = 2166136261U;
    for (const char byte : connector.toUtf8())
        hash = (hash ^ static_cast<quint8>(byte)) * 16777619U;
    return hash == 0 ? 1 : hash;
}

QString displayName(const QString& connector, const std::optional<Edid>& edid) {
    if (!edid)
        return connector;
    if (!edid->name.isEmpty())
        return edid->name;
    const QString letters = edid->manufacturerLetters();
    return letters.isEmpty() ? connector : letters + u' ' + connector;
}

} // namespace tilewright
