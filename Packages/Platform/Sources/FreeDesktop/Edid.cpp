#include "Edid.h"

namespace tilewright {
namespace {

constexpr qsizetype blockLength = 128;
constexpr qsizetype descriptorLength = 18;
constexpr qsizetype firstDescriptor = 54;
constexpr quint8 serialTextTag = 0xff;
constexpr quint8 nameTag = 0xfc;

quint8 byteAt(const QByteArray& block, qsizetype at) {
    return static_cast<quint8>(block.at(at));
}

/// A descriptor's text ends at a line feed and is padded with blanks.
QString descriptorText(const QByteArray& block, qsizetype at) {
    QByteArray text = block.mid(at + 5, descriptorLength - 5);
    if (const qsizetype end = text.indexOf('\n'); end >= 0)
        text.truncate(end);
    QString result;
    for (const char character : text) {
        if (character >= 0x20 && character < 0x7f)
            result += QLatin1Char(character);
    }
    return result.trimmed();
}

} // namespace

std::optional<Edid> Edid::parse(const QByteArray& block) {
    static const QByteArray header("\x00\xff\xff\xff\xff\xff\xff\x00", 8);
    if (block.size() < blockLength || !block.startsWith(header))
        return std::nullopt;
    Edid edid;
    edid.manufacturer = static_cast<quint16>((byteAt(block, 8) << 8) | byteAt(block, 9));
    edid.product = static_cast<quint16>(byteAt(block, 10) | (byteAt(block, 11) << 8));
    edid.serialNumber = quint32{byteAt(block, 12)} | (quint32{byteAt(block, 13)} << 8U) |
                        (quint32{byteAt(block, 14)} << 16U) | (quint32{byteAt(block, 15)} << 24U);
    for (qsizetype at = firstDescriptor; at + descriptorLength < blockLength;
         at += descriptorLength) {
        // A descriptor that starts otherwise is a display timing.
        if (byteAt(block, at) != 0 || byteAt(block, at + 1) != 0 || byteAt(block, at + 2) != 0)
            continue;
        if (byteAt(block, at + 3) == serialTextTag)
            edid.serialText = descriptorText(block, at);
        else if (byteAt(block, at + 3) == nameTag)
            edid.name = descriptorText(block, at);
    }
    return edid;
}

QString Edid::manufacturerLetters() const {
    QString letters;
    for (const int shift : {10, 5, 0}) {
        const int letter = (manufacturer >> shift) & 0x1f;
        if (letter < 1 || letter > 26)
            return {};
        letters += QChar(u'A' + letter - 1);
    }
    return letters;
}

QByteArray Edid::identity() const {
    return QByteArray::number(manufacturer) + '/' + QByteArray::number(product) + '/' +
           QByteArray::number(serialNumber) + '/' + serialText.toUtf8();
}

} // namespace tilewright
