#include <WindowManager/LayoutCoding.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace tilewright;
using namespace Qt::StringLiterals;

namespace {

const QString id = u"0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D"_s;
const QString otherID = u"FFFFFFFF-FFFF-4FFF-8FFF-FFFFFFFFFFFF"_s;

QJsonObject zoneObject() {
    return {{u"id"_s, id}, {u"name"_s, u"Left"_s}, {u"x"_s, 0.25},
            {u"y"_s, 0.5}, {u"width"_s, 0.125},    {u"height"_s, 1}};
}

QJsonObject layoutObject() {
    return {{u"id"_s, otherID},
            {u"name"_s, u"Mine"_s},
            {u"systemImage"_s, u"square"_s},
            {u"isBuiltIn"_s, false},
            {u"zones"_s, QJsonArray{zoneObject()}}};
}

Zone sampleZone() {
    return {QUuid::fromString(id), u"Left"_s, 0.25, 0.5, 0.125, 1};
}

ZoneLayout sampleZoneLayout() {
    return {QUuid::fromString(otherID), u"Mine"_s, u"square"_s, false, {sampleZone()}};
}

QByteArray bytesOf(const QJsonObject& object) {
    return QJsonDocument(object).toJson();
}

/// What another reader makes of what was written.
QJsonObject objectOf(const std::optional<QByteArray>& written) {
    return QJsonDocument::fromJson(written.value_or(QByteArray())).object();
}

/// A document with one layout, whose text may be given in part.
QByteArray document(const QByteArray& layouts, const QByteArray& assignments = "{}") {
    return "{\"customLayouts\":" + layouts + ",\"assignments\":" + assignments + "}";
}

QByteArray layoutText(const QByteArray& zones) {
    return "[{\"id\":\"" + otherID.toLatin1() +
           "\",\"name\":\"n\",\"systemImage\":\"s\",\"isBuiltIn\":false,\"zones\":" + zones + "}]";
}

QByteArray zoneText(const QByteArray& name, const QByteArray& x) {
    return "{\"id\":\"" + id.toLatin1() + "\",\"name\":" + name + ",\"x\":" + x +
           ",\"y\":0,\"width\":1,\"height\":1}";
}

/// The one zone of a document that holds a zone with such a name and x, as texts.
std::optional<Zone> decodedZone(const QByteArray& name, const QByteArray& x = "0") {
    const auto persisted =
        LayoutCoding::decodePersisted(document(layoutText("[" + zoneText(name, x) + "]")));
    return persisted ? std::optional(persisted->customLayouts.at(0).zones.at(0)) : std::nullopt;
}

bool decodes(const QByteArray& bytes) {
    return LayoutCoding::decodePersisted(bytes).has_value();
}

const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(LayoutCoding, WritesTheObjectsKeyByKey) {
    EXPECT_EQ(objectOf(LayoutCoding::encode(sampleZone())), zoneObject());
    EXPECT_EQ(objectOf(LayoutCoding::encode(sampleZoneLayout())), layoutObject());
    EXPECT_EQ(objectOf(LayoutCoding::encode(ZoneRect{1, 2.5, 3, -4})),
              (QJsonObject{{u"x"_s, 1}, {u"y"_s, 2.5}, {u"width"_s, 3}, {u"height"_s, -4}}));
}

TEST(LayoutCoding, ReadsTheObjectsKeyByKey) {
    EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(zoneObject())), sampleZone());
    EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(layoutObject())), sampleZoneLayout());
    EXPECT_EQ(LayoutCoding::decodeZoneRect(
                  bytesOf({{u"x"_s, 1}, {u"y"_s, 2.5}, {u"width"_s, 3}, {u"height"_s, -4}})),
              (ZoneRect{1, 2.5, 3, -4}));
}

TEST(LayoutCoding, WritesCompactUTF8) {
    const auto bytes = LayoutCoding::encode(LayoutCoding::Persisted{
        {{QUuid::fromString(otherID), u"Größe 😀"_s, u"square"_s, false, {}}},
        {{u"display-2"_s, QUuid::fromString(id)}}});
    ASSERT_TRUE(bytes);
    EXPECT_FALSE(bytes->contains('\n'));
    EXPECT_FALSE(bytes->contains(' ') && !bytes->contains("e \xF0\x9F\x98\x80"));
    EXPECT_TRUE(bytes->contains("\"Gr\xC3\xB6\xC3\x9F"
                                "e \xF0\x9F\x98\x80\""));
    const QJsonObject object = QJsonDocument::fromJson(*bytes).object();
    EXPECT_EQ(object.keys(), (QStringList{u"assignments"_s, u"customLayouts"_s}));
    EXPECT_EQ(object[u"assignments"], (QJsonObject{{u"display-2"_s, id}}));
}

TEST(LayoutCoding, WritesUUIDsInUpperCaseAndReadsLowerCaseToo) {
    const Zone zone{QUuid::fromString(id.toLower()), u"z"_s, 0, 0, 1, 1};
    EXPECT_EQ(objectOf(LayoutCoding::encode(zone))[u"id"].toString(), id);
    QJsonObject object = zoneObject();
    object[u"id"] = id.toLower();
    EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(object)), sampleZone());
    EXPECT_TRUE(decodes(document("[]", "{\"display-1\":\"" + id.toLower().toLatin1() + "\"}")));
}

TEST(LayoutCoding, ReadsAndWritesTheNilUUID) {
    QJsonObject object = zoneObject();
    object[u"id"] = u"00000000-0000-0000-0000-000000000000"_s;
    const auto zone = LayoutCoding::decodeZone(bytesOf(object));
    ASSERT_TRUE(zone);
    EXPECT_EQ(zone->id, QUuid());
    EXPECT_EQ(objectOf(LayoutCoding::encode(*zone)), object);
}

TEST(LayoutCoding, RefusesUUIDsInAnyOtherForm) {
    const QStringList wrong{u""_s,
                            u"{"_s + id + u"}"_s,
                            id + u"x"_s,
                            id + u" "_s,
                            u" "_s + id,
                            id.chopped(1),
                            QString(id).remove(u'-'),
                            QString(id).replace(u'-', u'_'),
                            QString(id).replace(0, 1, u"G"_s),
                            QString(id).replace(0, 1, u"\uFF10"_s),
                            QString(id).replace(8, 1, u"0"_s),
                            QString(id).replace(7, 2, u"-D"_s),
                            u"urn:uuid:"_s + id};
    for (const QString& text : wrong) {
        QJsonObject zone = zoneObject();
        zone[u"id"] = text;
        EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(zone)), std::nullopt) << text.toStdString();
        QJsonObject layout = layoutObject();
        layout[u"id"] = text;
        EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(layout)), std::nullopt)
            << text.toStdString();
        const QJsonObject whole{{u"customLayouts"_s, QJsonArray{}},
                                {u"assignments"_s, QJsonObject{{u"display-1"_s, text}}}};
        EXPECT_FALSE(decodes(QJsonDocument(whole).toJson())) << text.toStdString();
    }
}

TEST(LayoutCoding, RequiresEveryKey) {
    for (const QString& key : zoneObject().keys()) {
        QJsonObject object = zoneObject();
        object.remove(key);
        EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(object)), std::nullopt) << key.toStdString();
    }
    for (const QString& key : layoutObject().keys()) {
        QJsonObject object = layoutObject();
        object.remove(key);
        EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(object)), std::nullopt)
            << key.toStdString();
    }
    for (const QString& key : {u"x"_s, u"y"_s, u"width"_s, u"height"_s}) {
        QJsonObject object{{u"x"_s, 1}, {u"y"_s, 2}, {u"width"_s, 3}, {u"height"_s, 4}};
        object.remove(key);
        EXPECT_EQ(LayoutCoding::decodeZoneRect(bytesOf(object)), std::nullopt) << key.toStdString();
    }
    EXPECT_TRUE(decodes(document("[]")));
    EXPECT_FALSE(decodes("{\"customLayouts\":[]}"));
    EXPECT_FALSE(decodes("{\"assignments\":{}}"));
    EXPECT_FALSE(decodes("{}"));
}

TEST(LayoutCoding, RefusesValuesOfTheWrongTypeUnderEveryKey) {
    // Of these each key takes one or two kinds; all the others are wrong for it.
    const QJsonArray values{QJsonValue::Null, true,          1,      0,         u"text"_s,    id,
                            QJsonArray{},     QJsonObject{}, u"1"_s, u"true"_s, QJsonArray{1}};
    const auto isRight = [](const QString& key, const QJsonValue& value) {
        if (key == u"id")
            return value == id;
        if (key == u"name" || key == u"systemImage")
            return value.isString();
        if (key == u"isBuiltIn")
            return value.isBool();
        if (key == u"zones")
            return value.isArray() && value.toArray().isEmpty();
        return value.isDouble();
    };
    for (const auto& value : values) {
        for (const QString& key : zoneObject().keys()) {
            QJsonObject object = zoneObject();
            object[key] = value;
            EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(object)).has_value(), isRight(key, value))
                << key.toStdString();
        }
        for (const QString& key : layoutObject().keys()) {
            QJsonObject object = layoutObject();
            object[key] = value;
            EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(object)).has_value(),
                      isRight(key, value))
                << key.toStdString();
        }
    }
}

TEST(LayoutCoding, TakesANumericOneForNoBoolean) {
    QJsonObject object = layoutObject();
    object[u"isBuiltIn"] = 1;
    EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(object)), std::nullopt);
    object[u"isBuiltIn"] = 0;
    EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(object)), std::nullopt);
}

TEST(LayoutCoding, RefusesAWholeDocumentForOneWrongValueAnywhere) {
    const QByteArray good = zoneText("\"a\"", "0");
    EXPECT_TRUE(decodes(document(layoutText("[" + good + "," + good + "]"))));
    EXPECT_FALSE(decodes(document(layoutText("[" + good + "," + zoneText("1", "0") + "]"))));
    EXPECT_FALSE(decodes(document(layoutText("[" + good + ",null]"))));
    EXPECT_FALSE(decodes(document(layoutText("[" + good + ",[]]"))));
    EXPECT_FALSE(decodes(document("[null]")));
    EXPECT_FALSE(decodes(document("{}")));
    EXPECT_FALSE(decodes(document("null")));
    EXPECT_FALSE(decodes(document("[]", "[]")));
    EXPECT_FALSE(decodes(document("[]", "null")));
    EXPECT_FALSE(decodes(document("[]", "{\"display-1\":null}")));
    EXPECT_FALSE(decodes(document("[]", "{\"display-1\":1}")));
    EXPECT_FALSE(decodes("[" + document("[]") + "]"));
}

TEST(LayoutCoding, IgnoresUnknownKeys) {
    QJsonObject zone = zoneObject();
    zone[u"colour"] = QJsonArray{1, QJsonValue::Null};
    EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(zone)), sampleZone());
    QJsonObject layout = layoutObject();
    layout[u"version"] = 2;
    EXPECT_EQ(LayoutCoding::decodeZoneLayout(bytesOf(layout)), sampleZoneLayout());
    EXPECT_TRUE(decodes("{\"customLayouts\":[],\"assignments\":{},\"version\":{\"a\":[1]}}"));
    // Keys are told apart by case.
    EXPECT_FALSE(decodes("{\"customlayouts\":[],\"assignments\":{}}"));
}

TEST(LayoutCoding, DecodesAnyFiniteNumbersAsTheyAre) {
    QJsonObject object = zoneObject();
    object[u"width"] = 1.7;
    object[u"x"] = -0.5;
    object[u"height"] = 0;
    object[u"y"] = 1e300;
    const auto zone = LayoutCoding::decodeZone(bytesOf(object));
    ASSERT_TRUE(zone);
    EXPECT_EQ(zone->width, 1.7);
    EXPECT_EQ(zone->x, -0.5);
    EXPECT_EQ(zone->height, 0);
    EXPECT_EQ(zone->y, 1e300);
}

TEST(LayoutCoding, DoesNotCompareTheBuiltInMarkWithThePresets) {
    QJsonObject object = layoutObject();
    object[u"isBuiltIn"] = true;
    EXPECT_TRUE(LayoutCoding::decodeZoneLayout(bytesOf(object))->isBuiltIn);
    object[u"isBuiltIn"] = false;
    object[u"id"] = u"00000000-0000-0000-0000-000000000001"_s;
    EXPECT_FALSE(LayoutCoding::decodeZoneLayout(bytesOf(object))->isBuiltIn);
}

TEST(LayoutCoding, RefusesNumbersThatNoFiniteDoubleHolds) {
    for (const char* number : {"1e999", "-1e999", "1.8e308", "NaN", "Infinity", "-Infinity"})
        EXPECT_EQ(decodedZone("\"z\"", number), std::nullopt) << number;
    EXPECT_EQ(decodedZone("\"z\"", QByteArray(400, '9')), std::nullopt);
    QJsonObject object = zoneObject();
    for (const double number : {infinity, -infinity, notANumber}) {
        object[u"x"] = number;
        EXPECT_EQ(LayoutCoding::decodeZone(bytesOf(object)), std::nullopt);
    }
}

TEST(LayoutCoding, ReadsEveryFormOfNumberThatJSONHas) {
    const std::vector<std::pair<QByteArray, double>> forms{
        {"0", 0.0},
        {"-0", -0.0},
        {"0.5", 0.5},
        {"-0.5", -0.5},
        {"5e-1", 0.5},
        {"5E-1", 0.5},
        {"0.05e+1", 0.5},
        {"1e2", 100},
        {"9007199254740993", 9007199254740992.0},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
        {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
        {"1e-400", 0.0},
        {"-1e-400", -0.0},
        {"0e999", 0.0},
        {"0.1000000000000000055511151231257827021181583404541015625", 0.1}};
    for (const auto& [text, number] : forms) {
        const auto zone = decodedZone("\"z\"", text);
        ASSERT_TRUE(zone) << text.constData();
        EXPECT_EQ(zone->x, number) << text.constData();
        EXPECT_EQ(std::signbit(zone->x), std::signbit(number)) << text.constData();
    }
}

TEST(LayoutCoding, KeepsTheSignOfAZero) {
    Zone zone = sampleZone();
    zone.x = -0.0;
    EXPECT_TRUE(std::signbit(LayoutCoding::decodeZone(*LayoutCoding::encode(zone))->x));
}

TEST(LayoutCoding, RefusesNumbersThatJSONHasNoFormFor) {
    for (const char* text : {"1.", ".5", "-.5", "+1", "01", "-01", "1e", "1e+", "1.e5", "0x10", "-",
                             "1_000", "1,5", "--1", "1.2.3", "1e5.5", "00"})
        EXPECT_EQ(decodedZone("\"z\"", text), std::nullopt) << text;
}

TEST(LayoutCoding, ReadsEveryEscapeThatJSONHas) {
    EXPECT_EQ(decodedZone(R"("\"\\\/\b\f\n\r\t\u0041\u00e4\ud83d\ude00")")->name,
              u"\"\\/\b\f\n\r\tA\u00E4😀"_s);
    EXPECT_EQ(decodedZone(R"("\u0000")")->name, QString(QChar(0)));
    EXPECT_EQ(decodedZone(R"("1. .5 -x 01")")->name, u"1. .5 -x 01"_s);
}

TEST(LayoutCoding, RefusesStringsThatAreNone) {
    for (const QByteArray& text :
         {QByteArray("\"a\nb\""), QByteArray("\"a\tb\""), QByteArray("\"a\0b\"", 5),
          QByteArray("\"\\q\""), QByteArray("\"\\v\""), QByteArray("\"\x1F\""),
          QByteArray("\"\\u12\""), QByteArray("\"\\u12G4\""), QByteArray("\"\\"), QByteArray("\"a"),
          QByteArray("'a'"), QByteArray("a")})
        EXPECT_EQ(decodedZone(text), std::nullopt) << text.constData();
}

TEST(LayoutCoding, RefusesBytesThatAreNoUTF8) {
    for (const char* text :
         {"\"\xFF\"", "\"\xC0\x80\"", "\"\xED\xA0\x80\"", "\"\xF5\x80\x80\x80\"", "\"\xC3\""})
        EXPECT_EQ(decodedZone(text), std::nullopt) << text;
}

TEST(LayoutCoding, KeepsHalfAPairOfSurrogatesInAName) {
    Zone zone = sampleZone();
    zone.name = QString(QChar(0xD800)) + u"x"_s + QChar(0xDC00);
    const LayoutCoding::Persisted persisted{
        {{QUuid::fromString(otherID), zone.name, u"s"_s, false, {zone}}},
        {{zone.name, QUuid::fromString(id)}}};
    EXPECT_EQ(LayoutCoding::decodePersisted(*LayoutCoding::encode(persisted)), persisted);
}

TEST(LayoutCoding, KeepsAByteOrderMarkAnywhereInAText) {
    const QString mark(QChar(QChar::ByteOrderMark));
    for (const QString& text :
         {mark, mark + mark, mark + u"a"_s, u"a"_s + mark, mark + u"\n"_s + mark + u"\n"_s}) {
        Zone zone = sampleZone();
        zone.name = text;
        const LayoutCoding::Persisted persisted{
            {{QUuid::fromString(otherID), text, text, false, {zone}}},
            {{text, QUuid::fromString(id)}}};
        const QByteArray written = *LayoutCoding::encode(persisted);
        EXPECT_EQ(LayoutCoding::decodePersisted(written), persisted);
        EXPECT_FALSE(written.contains("\xEF\xBB\xBF")) << "other readers would drop it";
    }
    // However others write it.
    const QByteArray bytes = mark.toUtf8();
    EXPECT_EQ(decodedZone("\"" + bytes + "a\"")->name, mark + u"a"_s);
    EXPECT_EQ(decodedZone("\"" + bytes + bytes + "a\"")->name, mark + mark + u"a"_s);
    EXPECT_EQ(decodedZone("\"\\ufeffa\"")->name, mark + u"a"_s);
    EXPECT_EQ(decodedZone("\"\\uFEFFa\"")->name, mark + u"a"_s);
    EXPECT_FALSE(decodes("{\"\xEF\xBB\xBF"
                         "customLayouts\":[],\"assignments\":{}}"));
}

TEST(LayoutCoding, ReadsADocumentWithAByteOrderMark) {
    EXPECT_TRUE(decodes("\xEF\xBB\xBF" + document("[]")));
}

TEST(LayoutCoding, RefusesDocumentsThatAreNoJSON) {
    const QByteArray good = document("[]");
    for (const QByteArray& bytes :
         {QByteArray(),
          QByteArray(" "),
          QByteArray("null"),
          QByteArray("true"),
          QByteArray("1"),
          QByteArray("\"\""),
          QByteArray("[]"),
          good + "x",
          good + good,
          good.chopped(1),
          good.mid(1),
          good + QByteArray(1, '\0'),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},}"),
          QByteArray("{\"customLayouts\":[,],\"assignments\":{}}"),
          QByteArray("{\"customLayouts\":[]/**/,\"assignments\":{}}"),
          QByteArray("{customLayouts:[],assignments:{}}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},1:2}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},\"a\"}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},\"a\":}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},\"a\":tru}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},\"a\":[1 2]}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},\"a\":[1}}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{},\"a\":\"\\u12\"}"),
          QByteArray("{\"customLayouts\":[],\"assignments\":{}\v}")})
        EXPECT_FALSE(decodes(bytes)) << bytes.constData();
}

TEST(LayoutCoding, RefusesADocumentCutOffAnywhere) {
    const QByteArray whole = *LayoutCoding::encode(
        LayoutCoding::Persisted{{sampleZoneLayout()}, {{u"display-1"_s, QUuid::fromString(id)}}});
    ASSERT_TRUE(decodes(whole));
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decodes(whole.first(length))) << length;
}

TEST(LayoutCoding, SurvivesNestingOfAnyDepth) {
    for (const int depth : {100, 1000, 1023, 1024, 1025, 100000, 1000000}) {
        const QByteArray arrays = QByteArray(depth, '[') + QByteArray(depth, ']');
        QByteArray objects;
        for (int i = 0; i < depth; ++i)
            objects += "{\"a\":";
        objects += "1" + QByteArray(depth, '}');
        for (const QByteArray& nested : {arrays, objects}) {
            EXPECT_FALSE(decodes(nested));
            EXPECT_FALSE(decodes(nested.first(depth)));
            EXPECT_FALSE(decodes(document(nested)));
            // Under an unknown key it does no harm, up to a depth that nobody writes.
            const QByteArray ignored =
                "{\"customLayouts\":[],\"assignments\":{},\"more\":" + nested + "}";
            EXPECT_EQ(decodes(ignored), depth < 1024) << depth;
        }
    }
}

TEST(LayoutCoding, TakesTheLastOfTwoEqualKeys) {
    const auto persisted = LayoutCoding::decodePersisted(
        document("[]", "{\"a\":\"" + id.toLatin1() + "\",\"a\":\"" + otherID.toLatin1() + "\"}"));
    ASSERT_TRUE(persisted);
    EXPECT_EQ(persisted->assignments.at(u"a"_s), QUuid::fromString(otherID));
    EXPECT_FALSE(decodes("{\"customLayouts\":[],\"assignments\":{},\"assignments\":1}"));
    EXPECT_TRUE(decodes("{\"customLayouts\":1,\"assignments\":{},\"customLayouts\":[]}"));
    EXPECT_EQ(decodedZone("\"a\",\"name\":\"b\"")->name, u"b"_s);
    EXPECT_EQ(decodedZone("\"a\",\"name\":1"), std::nullopt);
}

TEST(LayoutCoding, CannotWriteNumbersThatAreNotFinite) {
    for (const double number : {infinity, -infinity, notANumber}) {
        for (double Zone::*field : {&Zone::x, &Zone::y, &Zone::width, &Zone::height}) {
            Zone zone = sampleZone();
            zone.*field = number;
            EXPECT_EQ(LayoutCoding::encode(zone), std::nullopt);
            ZoneLayout layout = sampleZoneLayout();
            layout.zones.push_back(zone);
            EXPECT_EQ(LayoutCoding::encode(layout), std::nullopt);
            EXPECT_EQ(LayoutCoding::encode(LayoutCoding::Persisted{
                          {sampleZoneLayout(), layout, sampleZoneLayout()}, {}}),
                      std::nullopt);
        }
        EXPECT_EQ(LayoutCoding::encode(ZoneRect{number, 0, 0, 0}), std::nullopt);
    }
}
