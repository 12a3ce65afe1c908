#include "JSONReader.h"

#include <QUtf8StringView>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

namespace tilewright {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Appends UTF-8 as it is: the decoder would take a byte order mark at its start away.
void appendUTF8(QString& text, std::string_view bytes) {
    while (bytes.starts_with(byteOrderMark)) {
        text += QChar(QChar::ByteOrderMark);
        bytes.remove_prefix(byteOrderMark.size());
    }
    text += QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).toString();
}

/// The value of four hexadecimal digits; none for anything else.
std::optional<char16_t> codeUnit(std::string_view digits) {
    unsigned value = 0;
    for (const char digit : digits) {
        value *= 16;
        if (digit >= '0' && digit <= '9')
            value += static_cast<unsigned>(digit - '0');
        else if (digit >= 'a' && digit <= 'f')
            value += static_cast<unsigned>(digit - 'a' + 10);
        else if (digit >= 'A' && digit <= 'F')
            value += static_cast<unsigned>(digit - 'A' + 10);
        else
            return std::nullopt;
    }
    return digits.size() == 4 ? std::optional(static_cast<char16_t>(value)) : std::nullopt;
}

/// The double nearest to a well-formed number: 0 for one that is too small, infinite for one that
/// is too large, both with its sign.
double nearestDouble(std::string_view number) {
    bool isInRange = false;
    const double result =
        QByteArrayView(number.data(), static_cast<qsizetype>(number.size())).toDouble(&isInRange);
    if (isInRange)
        return result;
    // Qt takes both for errors and tells them apart no further.
    std::istringstream stream{std::string(number)};
    stream.imbue(std::locale::classic());
    double limit = 0;
    stream >> limit;
    return std::copysign(std::abs(limit) > 1 ? std::numeric_limits<double>::infinity() : 0, limit);
}

} // namespace

JSONReader::JSONReader(QByteArrayView document)
    : rest_(document.data(), static_cast<std::size_t>(document.size())) {
    if (!QUtf8StringView(document).isValidUtf8())
        fail();
    if (rest_.starts_with(byteOrderMark))
        rest_.remove_prefix(byteOrderMark.size());
}

std::optional<QString> JSONReader::text() {
    if (next() != '"') {
        skip();
        return std::nullopt;
    }
    rest_.remove_prefix(1);
    QString result;
    for (;;) {
        std::size_t length = 0;
        while (length < rest_.size() && rest_[length] != '"' && rest_[length] != '\\' &&
               static_cast<unsigned char>(rest_[length]) >= 0x20)
            ++length;
        appendUTF8(result, rest_.substr(0, length));
        rest_.remove_prefix(length);
        if (take("\""))
            return result;
        if (!take("\\") || !takeEscape(result)) {
            fail();
            return std::nullopt;
        }
    }
}

std::optional<double> JSONReader::number() {
    const char first = next();
    if (first != '-' && (first < '0' || first > '9')) {
        skip();
        return std::nullopt;
    }
    const std::string_view start = rest_;
    if (!takeNumber()) {
        fail();
        return std::nullopt;
    }
    return nearestDouble(start.substr(0, start.size() - rest_.size()));
}

std::optional<bool> JSONReader::boolean() {
    const char first = next();
    if (first == 't' && takeWord("true"))
        return true;
    if (first == 'f' && takeWord("false"))
        return false;
    skip();
    return std::nullopt;
}

void JSONReader::skip() {
    switch (next()) {
    case '"':
        (void)text();
        break;
    case '[':
        (void)array([this] { skip(); });
        break;
    case '{':
        (void)object([this](const QString&) { skip(); });
        break;
    default:
        if (!takeWord("null") && !takeWord("true") && !takeWord("false") && !takeNumber())
            fail();
    }
}

bool JSONReader::isAtEnd() {
    (void)next();
    return rest_.empty() && !hasFailed_;
}

char JSONReader::next() {
    const auto start = rest_.find_first_not_of(" \t\n\r");
    rest_.remove_prefix(start == std::string_view::npos ? rest_.size() : start);
    return rest_.empty() ? '\0' : rest_.front();
}

bool JSONReader::expect(char character) {
    if (next() == character) {
        rest_.remove_prefix(1);
        return true;
    }
    fail();
    return false;
}

bool JSONReader::take(std::string_view choice) {
    if (rest_.empty() || choice.find(rest_.front()) == std::string_view::npos)
        return false;
    rest_.remove_prefix(1);
    return true;
}

bool JSONReader::takeWord(std::string_view word) {
    if (!rest_.starts_with(word))
        return false;
    rest_.remove_prefix(word.size());
    return true;
}

bool JSONReader::takeDigits() {
    const auto end = rest_.find_first_not_of("0123456789");
    const auto count = end == std::string_view::npos ? rest_.size() : end;
    rest_.remove_prefix(count);
    return count > 0;
}

bool JSONReader::takeNumber() {
    (void)take("-");
    if (!take("0") && !takeDigits())
        return false;
    if (take(".") && !takeDigits())
        return false;
    if (take("eE")) {
        (void)take("+-");
        return takeDigits();
    }
    return true;
}

bool JSONReader::takeEscape(QString& text) {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    if (take("u")) {
        const auto unit = codeUnit(rest_.substr(0, 4));
        if (!unit)
            return false;
        rest_.remove_prefix(4);
        text += QChar(*unit);
        return true;
    }
    const auto which = rest_.empty() ? std::string_view::npos : letters.find(rest_.front());
    if (which == std::string_view::npos)
        return false;
    rest_.remove_prefix(1);
    text += QLatin1Char(meanings[which]);
    return true;
}

void JSONReader::fail() {
    hasFailed_ = true;
    rest_ = {};
}

} // namespace tilewright
