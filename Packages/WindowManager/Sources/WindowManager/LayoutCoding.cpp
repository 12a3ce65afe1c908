#include "LayoutCoding.h"

#include "JSONReader.h"
#include "JSONWriter.h"

#include <cmath>

namespace tilewright {

namespace {

constexpr QStringView idKey = u"id";
constexpr QStringView nameKey = u"name";
constexpr QStringView systemImageKey = u"systemImage";
constexpr QStringView isBuiltInKey = u"isBuiltIn";
constexpr QStringView zonesKey = u"zones";
constexpr QStringView xKey = u"x";
constexpr QStringView yKey = u"y";
constexpr QStringView widthKey = u"width";
constexpr QStringView heightKey = u"height";
constexpr QStringView customLayoutsKey = u"customLayouts";
constexpr QStringView assignmentsKey = u"assignments";

void write(JSONWriter& out, const QUuid& id) {
    out.text(id.toString(QUuid::WithoutBraces).toUpper());
}

void writeGeometry(JSONWriter& out, double x, double y, double width, double height) {
    out.key(xKey);
    out.number(x);
    out.key(yKey);
    out.number(y);
    out.key(widthKey);
    out.number(width);
    out.key(heightKey);
    out.number(height);
}

void write(JSONWriter& out, const ZoneRect& rect) {
    out.beginObject();
    writeGeometry(out, rect.x, rect.y, rect.width, rect.height);
    out.endObject();
}

void write(JSONWriter& out, const Zone& zone) {
    out.beginObject();
    out.key(idKey);
    write(out, zone.id);
    out.key(nameKey);
    out.text(zone.name);
    writeGeometry(out, zone.x, zone.y, zone.width, zone.height);
    out.endObject();
}

void write(JSONWriter& out, const ZoneLayout& layout) {
    out.beginObject();
    out.key(idKey);
    write(out, layout.id);
    out.key(nameKey);
    out.text(layout.name);
    out.key(systemImageKey);
    out.text(layout.systemImage);
    out.key(isBuiltInKey);
    out.boolean(layout.isBuiltIn);
    out.key(zonesKey);
    out.beginArray();
    for (const Zone& zone : layout.zones)
        write(out, zone);
    out.endArray();
    out.endObject();
}

template<class Value>
std::optional<QByteArray> written(const Value& value) {
    JSONWriter out;
    write(out, value);
    return out.bytes();
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

std::optional<QUuid> readUUID(JSONReader& in) {
    const auto text = in.text();
    // QUuid's own parser also takes braces and trailing characters.
    return text && isCanonicalUUID(*text) ? std::optional(QUuid::fromString(*text)) : std::nullopt;
}

std::optional<double> readFiniteNumber(JSONReader& in) {
    const auto number = in.number();
    return number && std::isfinite(*number) ? number : std::nullopt;
}

/// What a zone's object holds, and a rectangle's, while it is read. Of two equal keys the later one
/// counts, whatever the earlier one held.
struct ZoneFields {
    std::optional<QUuid> id;
    std::optional<QString> name;
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> width;
    std::optional<double> height;

    void readMember(QStringView key, JSONReader& in) {
        if (key == idKey)
            id = readUUID(in);
        else if (key == nameKey)
            name = in.text();
        else if (key == xKey)
            x = readFiniteNumber(in);
        else if (key == yKey)
            y = readFiniteNumber(in);
        else if (key == widthKey)
            width = readFiniteNumber(in);
        else if (key == heightKey)
            height = readFiniteNumber(in);
        else
            in.skip();
    }
    /// Reads an object; nothing is in the fields for anything else.
    void read(JSONReader& in) {
        if (!in.object([&](QStringView key) { readMember(key, in); }))
            *this = {};
    }
};

std::optional<ZoneRect> readZoneRect(JSONReader& in) {
    ZoneFields fields;
    fields.read(in);
    if (!fields.x || !fields.y || !fields.width || !fields.height)
        return std::nullopt;
    return ZoneRect{*fields.x, *fields.y, *fields.width, *fields.height};
}

std::optional<Zone> readZone(JSONReader& in) {
    ZoneFields fields;
    fields.read(in);
    if (!fields.id || !fields.name || !fields.x || !fields.y || !fields.width || !fields.height)
        return std::nullopt;
    return Zone{*fields.id, *fields.name, *fields.x, *fields.y, *fields.width, *fields.height};
}

/// Reads an array; none when it is none, or when one of its elements is wrong.
template<class Element>
std::optional<std::vector<Element>> readArray(JSONReader& in,
                                              std::optional<Element> (*readElement)(JSONReader&)) {
    std::vector<Element> elements;
    bool isGood = true;
    const bool isArray = in.array([&] {
        auto element = readElement(in);
        isGood = isGood && element;
        if (isGood)
            elements.push_back(*std::move(element));
    });
    return isArray && isGood ? std::optional(std::move(elements)) : std::nullopt;
}

std::optional<ZoneLayout> readZoneLayout(JSONReader& in) {
    std::optional<QUuid> id;
    std::optional<QString> name;
    std::optional<QString> systemImage;
    std::optional<bool> isBuiltIn;
    std::optional<std::vector<Zone>> zones;
    const bool isObject = in.object([&](QStringView key) {
        if (key == idKey)
            id = readUUID(in);
        else if (key == nameKey)
            name = in.text();
        else if (key == systemImageKey)
            systemImage = in.text();
        else if (key == isBuiltInKey)
            isBuiltIn = in.boolean();
        else if (key == zonesKey)
            zones = readArray(in, readZone);
        else
            in.skip();
    });
    if (!isObject || !id || !name || !systemImage || !isBuiltIn || !zones)
        return std::nullopt;
    return ZoneLayout{*id, *name, *systemImage, *isBuiltIn, *std::move(zones)};
}

std::optional<std::map<QString, QUuid>> readAssignments(JSONReader& in) {
    std::map<QString, std::optional<QUuid>> members;
    if (!in.object([&](const QString& key) { members[key] = readUUID(in); }))
        return std::nullopt;
    std::map<QString, QUuid> assignments;
    for (const auto& [key, id] : members) {
        if (!id)
            return std::nullopt;
        assignments.emplace_hint(assignments.end(), key, *id);
    }
    return assignments;
}

std::optional<LayoutCoding::Persisted> readPersisted(JSONReader& in) {
    std::optional<std::vector<ZoneLayout>> layouts;
    std::optional<std::map<QString, QUuid>> assignments;
    const bool isObject = in.object([&](QStringView key) {
        if (key == customLayoutsKey)
            layouts = readArray(in, readZoneLayout);
        else if (key == assignmentsKey)
            assignments = readAssignments(in);
        else
            in.skip();
    });
    if (!isObject || !layouts || !assignments)
        return std::nullopt;
    return LayoutCoding::Persisted{*std::move(layouts), *std::move(assignments)};
}

template<class Value>
std::optional<Value> readWhole(QByteArrayView bytes, std::optional<Value> (*read)(JSONReader&)) {
    JSONReader in(bytes);
    auto value = read(in);
    return in.isAtEnd() ? std::move(value) : std::nullopt;
}

} // namespace

std::optional<QByteArray> LayoutCoding::encode(const ZoneRect& rect) {
    return written(rect);
}

std::optional<QByteArray> LayoutCoding::encode(const Zone& zone) {
    return written(zone);
}

std::optional<QByteArray> LayoutCoding::encode(const ZoneLayout& layout) {
    return written(layout);
}

std::optional<QByteArray> LayoutCoding::encode(const Persisted& persisted) {
    JSONWriter out;
    out.beginObject();
    out.key(customLayoutsKey);
    out.beginArray();
    for (const ZoneLayout& layout : persisted.customLayouts)
        write(out, layout);
    out.endArray();
    out.key(assignmentsKey);
    out.beginObject();
    for (const auto& [key, id] : persisted.assignments) {
        out.key(key);
        write(out, id);
    }
    out.endObject();
    out.endObject();
    return out.bytes();
}

std::optional<ZoneRect> LayoutCoding::decodeZoneRect(QByteArrayView bytes) {
    return readWhole(bytes, readZoneRect);
}

std::optional<Zone> LayoutCoding::decodeZone(QByteArrayView bytes) {
    return readWhole(bytes, readZone);
}

std::optional<ZoneLayout> LayoutCoding::decodeZoneLayout(QByteArrayView bytes) {
    return readWhole(bytes, readZoneLayout);
}

std::optional<LayoutCoding::Persisted> LayoutCoding::decodePersisted(QByteArrayView bytes) {
    return readWhole(bytes, readPersisted);
}

} // namespace tilewright
