#include "CompanionBench.h"

namespace tilewright::testing {

namespace {

QJsonArray numbers(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QJsonArray tile(const QRect& place, bool isHighlighted) {
    const QJsonArray fill = isHighlighted ? QJsonArray{200, 100, 0, 0.5} : QJsonArray{0, 0, 0, 0.5};
    const QJsonArray border{255, 255, 255, 1};
    QJsonArray tile = numbers(place);
    for (const QJsonValue& value :
         {QJsonValue(12), QJsonValue(fill), QJsonValue(border), QJsonValue(isHighlighted ? 4 : 2),
          QJsonValue(isHighlighted ? 1.0 : 0.5)})
        tile.append(value);
    return tile;
}

/// Beside a tile's border: two wide and one wide.
QJsonArray lines(bool isHighlighted) {
    return {QJsonArray{isHighlighted ? 0 : 2, QJsonArray{200, 200, 200, 1}},
            QJsonArray{1, QJsonArray{0, 0, 0, 1}}};
}

} // namespace

const QColor CompanionTest::ground(0x20, 0x40, 0x60);
const QColor CompanionTest::plain(0x18, 0x30, 0x48);
const QColor CompanionTest::highlighted((200 + 0x20) / 2, (100 + 0x40) / 2, 0x60 / 2);
const QColor CompanionTest::border(255, 255, 255);

QJsonObject CompanionTest::overlay(int highlightedZone, int transition) {
    return {{QStringLiteral("c"), QStringLiteral("overlay")},
            {QStringLiteral("area"), numbers({0, 0, 1920, 1080})},
            {QStringLiteral("transition"), transition},
            {QStringLiteral("tiles"), QJsonArray{tile(leftZone, highlightedZone == 0),
                                                 tile(rightZone, highlightedZone == 1)}},
            {QStringLiteral("lines"),
             QJsonArray{lines(highlightedZone == 0), lines(highlightedZone == 1)}}};
}

void CompanionTest::snapWithControl() {
    program->answer = [](const CompanionCall& call) -> QJsonArray {
        if (!call.method.startsWith(QStringLiteral("Drag")))
            return {};
        constexpr int control = 2;
        const bool isHeld = (call.body[QStringLiteral("keys")].toInt() & control) != 0;
        const bool isLeft = call.body[QStringLiteral("pointer")][0].toInt() < 960;
        if (call.method != QStringLiteral("DragEnd"))
            return {isHeld ? overlay(isLeft ? 0 : 1)
                           : QJsonObject{{QStringLiteral("c"), QStringLiteral("overlayGone")}}};
        if (!isHeld || call.body[QStringLiteral("cancelled")].toBool())
            return {};
        return {QJsonObject{
            {QStringLiteral("c"), QStringLiteral("frame")},
            {QStringLiteral("window"), call.body[QStringLiteral("window")][QStringLiteral("id")]},
            {QStringLiteral("frame"), numbers(isLeft ? leftZone : rightZone)}}};
    };
}

void CompanionTest::dragToLeftZone(const QString& title) {
    session.grab(title);
    session.input().glide({700, 500});
    session.input().pressKey(KernelKey::control);
    ASSERT_TRUE(waitUntil([&] { return isHighlighted(inLeftTile); })) << session.describe();
}

bool CompanionTest::isNear(QColor one, QColor other) {
    const auto near = [](int a, int b) { return std::abs(a - b) <= 1; };
    return near(one.red(), other.red()) && near(one.green(), other.green()) &&
           near(one.blue(), other.blue());
}

bool CompanionTest::isInFront(const QString& title) {
    return session.ask(QStringLiteral("global.display.focus_window?.get_title()")).toString() ==
           title;
}

int CompanionTest::actorsOnStage() {
    // In the overview's dash newer shells have a label for each program that has windows.
    return session
        .ask(QStringLiteral("Main.layoutManager.uiGroup.get_children()"
                            ".filter(actor => actor.style_class !== 'dash-label').length"))
        .toInt();
}

} // namespace tilewright::testing
