#include "JSONWriter.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace tilewright {

namespace {

/// Whether a code unit may not stand for itself in a text. A byte order mark might, but there are
/// readers that drop it.
bool isSpecial(QChar unit) {
    return unit < u' ' || unit == u'"' || unit == u'\\' || unit.isSurrogate() ||
           unit == QChar(QChar::ByteOrderMark);
}

void appendEscape(QByteArray& bytes, char16_t unit) {
    constexpr char digits[] = "0123456789abcdef";
    if (unit == u'"' || unit == u'\\') {
        bytes += '\\';
        bytes += static_cast<char>(unit);
        return;
    }
    bytes += "\\u";
    for (const int shift : {12, 8, 4, 0})
        bytes += digits[(unit >> shift) & 0xF];
}

} // namespace

void JSONWriter::key(QStringView key) {
    separate();
    quote(key);
    bytes_ += ':';
    needsComma_ = false;
}

void JSONWriter::text(QStringView text) {
    separate();
    quote(text);
}

void JSONWriter::boolean(bool value) {
    separate();
    bytes_ += value ? "true" : "false";
}

void JSONWriter::number(double value) {
    separate();
    if (value == 0)
        bytes_ += std::signbit(value) ? "-0" : "0";
    else if (std::isfinite(value))
        bytes_ += QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
    else
        hasFailed_ = true;
}

std::optional<QByteArray> JSONWriter::bytes() const {
    return hasFailed_ ? std::nullopt : std::optional(bytes_);
}

void JSONWriter::begin(char bracket) {
    separate();
    bytes_ += bracket;
    needsComma_ = false;
}

void JSONWriter::end(char bracket) {
    bytes_ += bracket;
    needsComma_ = true;
}

void JSONWriter::separate() {
    if (needsComma_)
        bytes_ += ',';
    needsComma_ = true;
}

void JSONWriter::quote(QStringView text) {
    bytes_ += '"';
    while (!text.isEmpty()) {
        const auto* special = std::find_if(text.begin(), text.end(), isSpecial);
        const auto plain = special - text.begin();
        if (plain > 0)
            bytes_ += text.first(plain).toUtf8();
        text = text.sliced(plain);
        // Halves of pairs have no UTF-8 of their own.
        if (text.size() >= 2 && text[0].isHighSurrogate() && text[1].isLowSurrogate()) {
            bytes_ += text.first(2).toUtf8();
            text = text.sliced(2);
        } else if (!text.isEmpty()) {
            appendEscape(bytes_, text.front().unicode());
            text = text.sliced(1);
        }
    }
    bytes_ += '"';
}

} // namespace tilewright
