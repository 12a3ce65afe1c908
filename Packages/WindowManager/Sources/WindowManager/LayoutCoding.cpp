#include "LayoutCoding.h"

#include "JSONTokens.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <cmath>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

const auto idKey = "id"_L1;
const auto nameKey = "name"_L1;
const auto systemImageKey = "systemImage"_L1;
const auto isBuiltInKey = "isBuiltIn"_L1;
const auto zonesKey = "zones"_L1;
const auto xKey = "x"_L1;
const auto yKey = "y"_L1;
const auto widthKey = "width"_L1;
const auto heightKey = "height"_L1;
const auto customLayoutsKey = "customLayouts"_L1;
const auto assignmentsKey = "assignments"_L1;

QString encodeUUID(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

bool isCanonicalUUID(QStringView text) {
    if (text.size() != 36)
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        const bool isHyphenPlace = i == 8 || i == 13 || i == 18 || i == 23;
        const bool isHexDigit =
            (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
        if (isHyphenPlace ? c != u'-' : !isHexDigit)
            return false;
    }
    return true;
}

std::optional<QString> decodeText(const QJsonValue& value) {
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<bool> decodeBoolean(const QJsonValue& value) {
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<double> decodeNumber(const QJsonValue& value) {
    if (!value.isDouble() || !std::isfinite(value.toDouble()))
        return std::nullopt;
    return value.toDouble();
}

std::optional<QUuid> decodeUUID(const QJsonValue& value) {
    // QUuid's own parser also takes braces and trailing characters.
    if (!value.isString() || !isCanonicalUUID(value.toString()))
        return std::nullopt;
    return QUuid::fromString(value.toString());
}

std::optional<QJsonObject> encodeGeometry(double x, double y, double width, double height) {
    // QJsonDocument would write null for these.
    if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(width) || !std::isfinite(height))
        return std::nullopt;
    return QJsonObject{{xKey, x}, {yKey, y}, {widthKey, width}, {heightKey, height}};
}

} // namespace

std::optional<QJsonObject> LayoutCoding::encode(const ZoneRect& rect) {
    return encodeGeometry(rect.x, rect.y, rect.width, rect.height);
}

std::optional<QJsonObject> LayoutCoding::encode(const Zone& zone) {
    auto object = encodeGeometry(zone.x, zone.y, zone.width, zone.height);
    if (object) {
        object->insert(idKey, encodeUUID(zone.id));
        object->insert(nameKey, zone.name);
    }
    return object;
}

std::optional<QJsonObject> LayoutCoding::encode(const ZoneLayout& layout) {
    QJsonArray zones;
    for (const Zone& zone : layout.zones) {
        const auto encoded = encode(zone);
        if (!encoded)
            return std::nullopt;
        zones.append(*encoded);
    }
    return QJsonObject{{idKey, encodeUUID(layout.id)},
                       {nameKey, layout.name},
                       {systemImageKey, layout.systemImage},
                       {isBuiltInKey, layout.isBuiltIn},
                       {zonesKey, zones}};
}

std::optional<QByteArray> LayoutCoding::encode(const Persisted& persisted) {
    QJsonArray layouts;
    for (const ZoneLayout& layout : persisted.customLayouts) {
        const auto encoded = encode(layout);
        if (!encoded)
            return std::nullopt;
        layouts.append(*encoded);
    }
    QJsonObject assignments;
    for (const auto& [key, id] : persisted.assignments)
        assignments.insert(key, encodeUUID(id));
    return QJsonDocument(QJsonObject{{customLayoutsKey, layouts}, {assignmentsKey, assignments}})
        .toJson(QJsonDocument::Compact);
}

std::optional<ZoneRect> LayoutCoding::decodeZoneRect(const QJsonValue& value) {
    // A missing key reads as undefined, which has none of the types asked for.
    const auto x = decodeNumber(value[xKey]);
    const auto y = decodeNumber(value[yKey]);
    const auto width = decodeNumber(value[widthKey]);
    const auto height = decodeNumber(value[heightKey]);
    if (!x || !y || !width || !height)
        return std::nullopt;
    return ZoneRect{*x, *y, *width, *height};
}

std::optional<Zone> LayoutCoding::decodeZone(const QJsonValue& value) {
    const auto id = decodeUUID(value[idKey]);
    const auto name = decodeText(value[nameKey]);
    const auto geometry = decodeZoneRect(value);
    if (!id || !name || !geometry)
        return std::nullopt;
    return Zone{*id, *name, geometry->x, geometry->y, geometry->width, geometry->height};
}

std::optional<ZoneLayout> LayoutCoding::decodeZoneLayout(const QJsonValue& value) {
    const auto id = decodeUUID(value[idKey]);
    const auto name = decodeText(value[nameKey]);
    const auto systemImage = decodeText(value[systemImageKey]);
    const auto isBuiltIn = decodeBoolean(value[isBuiltInKey]);
    const QJsonValue zones = value[zonesKey];
    if (!id || !name || !systemImage || !isBuiltIn || !zones.isArray())
        return std::nullopt;
    ZoneLayout layout{*id, *name, *systemImage, *isBuiltIn, {}};
    const QJsonArray array = zones.toArray();
    layout.zones.reserve(static_cast<std::size_t>(array.size()));
    for (const auto& element : array) {
        const auto zone = decodeZone(element);
        if (!zone)
            return std::nullopt;
        layout.zones.push_back(*zone);
    }
    return layout;
}

std::optional<LayoutCoding::Persisted> LayoutCoding::decodePersisted(const QByteArray& bytes) {
    const QJsonObject document = QJsonDocument::fromJson(bytes).object();
    if (!JSONTokens::areWellFormed(bytes))
        return std::nullopt;
    const QJsonValue layouts = document[customLayoutsKey];
    const QJsonValue assignments = document[assignmentsKey];
    if (!layouts.isArray() || !assignments.isObject())
        return std::nullopt;
    Persisted persisted;
    const QJsonArray array = layouts.toArray();
    persisted.customLayouts.reserve(static_cast<std::size_t>(array.size()));
    for (const auto& element : array) {
        const auto layout = decodeZoneLayout(element);
        if (!layout)
            return std::nullopt;
        persisted.customLayouts.push_back(*layout);
    }
    const QJsonObject members = assignments.toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        const auto id = decodeUUID(member.value());
        if (!id)
            return std::nullopt;
        persisted.assignments.emplace(member.key(), *id);
    }
    return persisted;
}

} // namespace tilewright
