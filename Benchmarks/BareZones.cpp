#include "BareZones.h"

#include <QJsonDocument>

namespace tilewright::testing {

namespace {

QJsonArray numbers(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QRect rect(const QJsonValue& numbers) {
    return {numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt()};
}

} // namespace

QString BareZones::toText() const {
    QJsonArray rects{numbers(area_)};
    for (const QRect& zone : zones_)
        rects.append(numbers(zone));
    return QString::fromUtf8(QJsonDocument(rects).toJson(QJsonDocument::Compact));
}

BareZones BareZones::fromText(const QString& text) {
    std::vector<QRect> rects;
    for (const auto& numbers : QJsonDocument::fromJson(text.toUtf8()).array())
        rects.push_back(rect(numbers));
    const QRect area = rects.front();
    rects.erase(rects.begin());
    return {area, rects};
}

QJsonArray BareZones::answer(const CompanionCall& call) const {
    constexpr int control = 2;
    if (!call.method.startsWith(QStringLiteral("Drag")))
        return {};
    const bool isHeld = (call.body[QStringLiteral("keys")].toInt() & control) != 0;
    const QJsonValue place = call.body[QStringLiteral("pointer")];
    const QPoint pointer(place[0].toInt(), place[1].toInt());
    if (call.method != QStringLiteral("DragEnd"))
        return {isHeld ? overlay(pointer)
                       : QJsonObject{{QStringLiteral("c"), QStringLiteral("overlayGone")}}};
    for (const QRect& zone : zones_) {
        if (isHeld && zone.contains(pointer))
            return {QJsonObject{{QStringLiteral("c"), QStringLiteral("frame")},
                                {QStringLiteral("window"),
                                 call.body[QStringLiteral("window")][QStringLiteral("id")]},
                                {QStringLiteral("frame"), numbers(zone)}}};
    }
    return {};
}

QJsonObject BareZones::overlay(QPoint pointer) const {
    QJsonArray tiles;
    QJsonArray lines;
    for (const QRect& zone : zones_) {
        const bool isHighlighted = zone.contains(pointer);
        QJsonArray tile = numbers(zone.translated(-area_.topLeft()));
        for (const QJsonValue& value :
             {QJsonValue(12), QJsonValue(QJsonArray{isHighlighted ? 200 : 0, 0, 0, 0.5}),
              QJsonValue(QJsonArray{255, 255, 255, 1}), QJsonValue(2), QJsonValue(1)})
            tile.append(value);
        tiles.append(tile);
        const QJsonArray noLine{0, QJsonArray{0, 0, 0, 0}};
        lines.append(QJsonArray{noLine, noLine});
    }
    return {{QStringLiteral("c"), QStringLiteral("overlay")},
            {QStringLiteral("area"), numbers(area_)},
            {QStringLiteral("transition"), 0},
            {QStringLiteral("tiles"), tiles},
            {QStringLiteral("lines"), lines}};
}

} // namespace tilewright::testing
