#include "CompanionDecoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <array>
#include <cmath>

namespace tilewright {

namespace {

using Key = QLatin1StringView;

constexpr int deepest = 16;
/// Doubles hold every whole number up to here.
constexpr double largestWhole = 9007199254740991.0;
constexpr double largestProcess = 2147483647.0;
constexpr double smallestScale = 0.25;
constexpr double largestScale = 16;
constexpr int knownKeys = 15;

/// Whether brackets lie deeper in each other than in any message. The reader behind has a bound of
/// its own, but takes room for each level.
bool isTooDeep(const QByteArray& text) {
    int depth = 0;
    bool isInText = false;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (isInText) {
            if (character == '\\')
                ++at;
            else if (character == '"')
                isInText = false;
        } else if (character == '"') {
            isInText = true;
        } else if (character == '[' || character == '{') {
            if (++depth > deepest)
                return true;
        } else if (character == ']' || character == '}') {
            --depth;
        }
    }
    return false;
}

/// The fields of an object. Whatever is amiss is remembered, and answered by something harmless.
class Fields {
public:
    Fields(const QJsonValue& value, bool& isGood)
        : object_(value.toObject())
        , isGood_(isGood) {
        require(value.isObject());
    }

    [[nodiscard]] bool has(Key key) const {
        return !object_[key].isNull() && object_.contains(key);
    }
    [[nodiscard]] double number(Key key, double low, double high) {
        return numberIn(object_[key], low, high);
    }
    [[nodiscard]] double whole(Key key, double high) {
        const double value = number(key, 0, high);
        require(std::floor(value) == value);
        return value;
    }
    [[nodiscard]] bool truth(Key key) {
        require(object_[key].isBool());
        return object_[key].toBool();
    }
    [[nodiscard]] std::optional<bool> truthIfAny(Key key) {
        return has(key) ? std::optional(truth(key)) : std::nullopt;
    }
    /// Empty where there is none.
    [[nodiscard]] QString text(Key key) {
        QString value = object_[key].toString();
        require((!has(key) || object_[key].isString()) &&
                value.size() <= CompanionDecoder::longestText);
        return value;
    }
    [[nodiscard]] CompanionPoint point(Key key) {
        const auto numbers = this->numbers<2>(key);
        return {numbers[0], numbers[1]};
    }
    [[nodiscard]] CompanionRect rect(Key key) {
        const auto numbers = this->numbers<4>(key);
        require(numbers[2] >= 0 && numbers[3] >= 0);
        return {numbers[0], numbers[1], numbers[2], numbers[3]};
    }
    [[nodiscard]] CompanionWindowID windowID(Key key) {
        return CompanionWindowID{static_cast<quint64>(whole(key, largestWhole))};
    }
    [[nodiscard]] ModifierFlags keys() {
        const auto bits = static_cast<unsigned>(whole(Key("keys"), largestProcess)) & knownKeys;
        quint32 flags = 0;
        constexpr std::array order{ModifierFlag::shift, ModifierFlag::control, ModifierFlag::option,
                                   ModifierFlag::command};
        for (std::size_t i = 0; i < order.size(); ++i)
            flags |= (bits & (1U << i)) != 0 ? static_cast<quint32>(order[i]) : 0;
        return ModifierFlags(flags);
    }
    [[nodiscard]] CompanionWindow window(Key key) {
        Fields fields(object_[key], isGood_);
        CompanionWindow window;
        window.id = fields.windowID(Key("id"));
        // Compositors say -1 or 0 where they do not know it.
        window.process = static_cast<ProcessID>(
            std::max(0.0, std::floor(fields.number(Key("pid"), -1, largestProcess))));
        window.isX11 = fields.truth(Key("x11"));
        window.isOurs = fields.truth(Key("ours"));
        window.frame = fields.rect(Key("frame"));
        return window;
    }
    [[nodiscard]] std::optional<CompanionWindow> windowIfAny(Key key) {
        require(object_.contains(key));
        return has(key) ? std::optional(window(key)) : std::nullopt;
    }
    [[nodiscard]] std::vector<CompanionDisplay> displays() {
        const QJsonValue value = object_[Key("displays")];
        const QJsonArray array = value.toArray();
        require(value.isArray() && array.size() <= CompanionDecoder::mostDisplays);
        std::vector<CompanionDisplay> displays;
        for (qsizetype i = 0; i < array.size() && isGood_; ++i)
            displays.push_back(Fields(array[i], isGood_).display());
        return displays;
    }

private:
    void require(bool isTrue) { isGood_ = isGood_ && isTrue; }
    [[nodiscard]] double numberIn(const QJsonValue& value, double low, double high) {
        const double number = value.toDouble();
        // Also what is not a number is not in the range.
        const bool isInRange = value.isDouble() && number >= low && number <= high;
        require(isInRange);
        return isInRange ? number : 0;
    }
    template<std::size_t count>
    [[nodiscard]] std::array<double, count> numbers(Key key) {
        const QJsonArray array = object_[key].toArray();
        require(static_cast<std::size_t>(array.size()) == count);
        std::array<double, count> numbers{};
        for (std::size_t i = 0; i < count; ++i)
            numbers[i] = numberIn(array[static_cast<qsizetype>(i)], -CompanionDecoder::furthest,
                                  CompanionDecoder::furthest);
        return numbers;
    }
    [[nodiscard]] CompanionDisplay display() {
        CompanionDisplay display;
        display.isPrimary = truth(Key("primary"));
        display.frame = rect(Key("frame"));
        require(display.frame.width >= 1 && display.frame.height >= 1);
        display.workArea = inside(rect(Key("work")), display.frame);
        display.scale = number(Key("scale"), smallestScale, largestScale);
        display.unitsPerPoint = number(Key("unit"), smallestScale, largestScale);
        display.connector = text(Key("connector"));
        display.vendor = text(Key("vendor"));
        display.product = text(Key("product"));
        display.serial = text(Key("serial"));
        return display;
    }
    /// Compositors tell work areas of a moment ago: what is not on the display is none of it.
    [[nodiscard]] static CompanionRect inside(const CompanionRect& area,
                                              const CompanionRect& frame) {
        const double left = std::max(area.x, frame.x);
        const double top = std::max(area.y, frame.y);
        const double right = std::min(area.x + area.width, frame.x + frame.width);
        const double bottom = std::min(area.y + area.height, frame.y + frame.height);
        if (right - left < 1 || bottom - top < 1)
            return frame;
        return {left, top, right - left, bottom - top};
    }

    const QJsonObject object_;
    bool& isGood_;
};

CompanionHello hello(Fields& fields) {
    CompanionHello message;
    message.protocol = static_cast<int>(fields.whole(Key("protocol"), largestProcess));
    if (message.protocol != CompanionDecoder::protocol)
        return message;
    message.shell = fields.text(Key("shell"));
    message.displays = fields.displays();
    message.focus = fields.windowIfAny(Key("focus"));
    message.pointer = fields.point(Key("pointer"));
    message.keys = fields.keys();
    message.reducedMotion = fields.truthIfAny(Key("reducedMotion"));
    message.tellsKeys = fields.truthIfAny(Key("tellsKeys")).value_or(true);
    return message;
}

CompanionDrag drag(Fields& fields, CompanionDrag::Step step) {
    CompanionDrag message;
    message.step = step;
    message.serial = static_cast<quint64>(fields.whole(Key("drag"), largestWhole));
    message.window = fields.window(Key("window"));
    message.pointer = fields.point(Key("pointer"));
    message.keys = fields.keys();
    return message;
}

std::optional<CompanionMessage> read(QStringView method, Fields& fields) {
    using Step = CompanionDrag::Step;
    if (method == u"Hello")
        return hello(fields);
    if (method == u"Displays")
        return CompanionDisplays{fields.displays()};
    if (method == u"Focus")
        return CompanionFocus{fields.windowIfAny(Key("focus"))};
    if (method == u"MotionWish")
        return CompanionMotionWish{fields.truth(Key("reduced"))};
    if (method == u"DragBegin")
        return drag(fields, Step::begin);
    if (method == u"DragMotion")
        return drag(fields, Step::motion);
    if (method == u"DragEnd")
        return drag(fields, fields.truth(Key("cancelled")) ? Step::cancellation : Step::drop);
    if (method == u"FrameSettled")
        return CompanionFrameSettled{fields.windowID(Key("window")), fields.rect(Key("frame"))};
    if (method == u"ItemClicked")
        return CompanionItemClick{fields.rect(Key("item")), fields.point(Key("pointer"))};
    if (method == u"PanelAwaited")
        return CompanionPanelAwaited{};
    if (method == u"PressOutside")
        return CompanionPressOutside{fields.truth(Key("overview"))};
    if (method == u"Pointer")
        return CompanionPointerPlace{fields.point(Key("pointer")), fields.keys()};
    if (method == u"Gone")
        return CompanionGone{fields.windowID(Key("window"))};
    if (method == u"NextCommand")
        return CompanionPoll{};
    return std::nullopt;
}

} // namespace

std::optional<CompanionMessage> CompanionDecoder::decode(QStringView method,
                                                         const QByteArray& argument) {
    if (argument.size() > longestMessage || isTooDeep(argument))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(argument);
    if (!document.isObject())
        return std::nullopt;
    bool isGood = true;
    Fields fields(document.object(), isGood);
    auto message = read(method, fields);
    return isGood ? message : std::nullopt;
}

} // namespace tilewright
