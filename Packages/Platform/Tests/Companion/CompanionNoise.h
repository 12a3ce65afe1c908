#pragma once

#include "CompanionTexts.h"

#include <random>
#include <utility>
#include <vector>

namespace tilewright::testing {

/// What a companion gone mad tells: in no order, much of it of things that there are not. The same
/// for the same seed.
class CompanionNoise {
public:
    explicit CompanionNoise(unsigned seed)
        : random_(seed) {}

    /// From 0 on, the limit itself left out.
    [[nodiscard]] int upTo(int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random_);
    }
    [[nodiscard]] bool oneIn(int count) { return upTo(count) == 0; }
    /// The method and the text of anything that a companion may tell, twice in a row at times, and
    /// now and then spoilt.
    [[nodiscard]] std::pair<QString, QByteArray> anyMessage() {
        const int serial = upTo(8);
        const QByteArray pointer = anyNumbers(2);
        std::vector<std::pair<QString, QByteArray>> messages{
            {QStringLiteral("Hello"),
             R"({"protocol":)" + QByteArray(oneIn(6) ? "2" : "1") + R"(,"shell":"","displays":)" +
                 anyDisplays() + (oneIn(4) ? R"(,"tellsKeys":false)" : "") + R"(,"focus":)" +
                 (oneIn(2) ? "null" : anyWindow()) + R"(,"pointer":)" + pointer + R"(,"keys":0})"},
            {QStringLiteral("Displays"), R"({"displays":)" + anyDisplays() + "}"},
            {QStringLiteral("Focus"),
             R"({"focus":)" + (oneIn(3) ? QByteArray("null") : anyWindow()) + "}"},
            {QStringLiteral("MotionWish"),
             R"({"reduced":)" + QByteArray(oneIn(2) ? "true}" : "false}")},
            {QStringLiteral("DragBegin"), dragText(serial, pointer, upTo(20), anyWindow())},
            {QStringLiteral("DragMotion"), dragText(serial, pointer, upTo(20), anyWindow())},
            {QStringLiteral("DragMotion"), dragText(serial, pointer, upTo(20), anyWindow())},
            {QStringLiteral("DragEnd"),
             dragEndText(serial, pointer, upTo(20), oneIn(2), anyWindow())},
            {QStringLiteral("FrameSettled"),
             R"({"window":)" + anyNumber() + R"(,"frame":)" + anyRect() + "}"},
            {QStringLiteral("ItemClicked"),
             R"({"item":)" + anyRect() + R"(,"pointer":)" + pointer + "}"},
            {QStringLiteral("PanelAwaited"), "{}"},
            {QStringLiteral("PressOutside"), R"({"overview":true})"},
            {QStringLiteral("Pointer"), R"({"keys":1,"pointer":)" + pointer + "}"},
            {QStringLiteral("Gone"), R"({"window":)" + anyNumber() + "}"},
            {QStringLiteral("Nonsense"), "{}"}};
        auto message = oneIn(10) && !last_.first.isEmpty() ? last_ : anyOf(messages);
        last_ = message;
        return spoilt(message);
    }

private:
    template<class Item>
    [[nodiscard]] const Item& anyOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(upTo(static_cast<int>(items.size())))];
    }
    [[nodiscard]] QByteArray anyNumber() {
        static const std::vector<QByteArray> odd{"0",     "-1",    "1e6",    "-1e6", "1e7",
                                                 "1e308", "1e999", "0.5",    "null", "true",
                                                 "\"7\"", "[]",    "999999", "-0.0", "{}"};
        return oneIn(12) ? anyOf(odd) : QByteArray::number(upTo(2000) - 200);
    }
    [[nodiscard]] QByteArray anyNumbers(int count) {
        QByteArray text = "[";
        for (int i = 0; i < count; ++i)
            text += (i > 0 ? "," : "") + anyNumber();
        return text + "]";
    }
    [[nodiscard]] QByteArray anyRect() {
        return oneIn(8) ? anyNumbers(4)
                        : "[" + QByteArray::number(upTo(3000)) + ",5," +
                              QByteArray::number(upTo(900)) + ",700]";
    }
    [[nodiscard]] QByteArray anyWindow() {
        return windowText(upTo(6), anyRect(), oneIn(4), upTo(5) - 1);
    }
    [[nodiscard]] QByteArray anyDisplays() {
        QByteArray text = "[";
        const int count = oneIn(20) ? 40 : upTo(4);
        for (int i = 0; i < count; ++i)
            text += (i > 0 ? "," : "") + displayText(oneIn(2), anyRect(), anyRect());
        return text + "]";
    }
    [[nodiscard]] std::pair<QString, QByteArray> spoilt(std::pair<QString, QByteArray> message) {
        QByteArray& text = message.second;
        if (oneIn(15))
            text.truncate(upTo(static_cast<int>(text.size())));
        else if (oneIn(15))
            text[upTo(static_cast<int>(text.size()))] = static_cast<char>(upTo(256));
        else if (oneIn(200))
            text.append(QByteArray(100'000, ' '));
        else if (oneIn(200))
            text = QByteArray(60'000, '[');
        return message;
    }

    std::mt19937 random_;
    std::pair<QString, QByteArray> last_;
};

} // namespace tilewright::testing
