#include "XSettings.h"

#include <QtEndian>

namespace tilewright {

namespace {

enum class Kind : std::uint8_t { integer = 0, string = 1, color = 2 };

/// Reads numbers in the byte order of the manager's machine, and never beyond the end.
class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : bytes_(bytes)
        , isBigEndian_(!bytes.isEmpty() && bytes[0] == 1) {}

    [[nodiscard]] bool isWithin() const { return isWithin_; }

    void skip(std::uint32_t count) { static_cast<void>(take(count)); }

    template<class Number>
    Number number() {
        const char* place = take(sizeof(Number));
        if (!place)
            return 0;
        return isBigEndian_ ? qFromBigEndian<Number>(place) : qFromLittleEndian<Number>(place);
    }
    QByteArray text(std::uint32_t length) {
        const char* place = take(length);
        return place ? QByteArray(place, length) : QByteArray();
    }
    void skipPadding() { skip((4 - static_cast<std::uint32_t>(offset_ % 4)) % 4); }

private:
    const char* take(std::uint32_t count) {
        if (!isWithin_ || bytes_.size() - offset_ < static_cast<qsizetype>(count)) {
            isWithin_ = false;
            return nullptr;
        }
        const char* place = bytes_.constData() + offset_;
        offset_ += static_cast<qsizetype>(count);
        return place;
    }

    const QByteArray& bytes_;
    const bool isBigEndian_;
    qsizetype offset_ = 0;
    bool isWithin_ = true;
};

} // namespace

std::optional<std::int32_t> integerXSetting(const QByteArray& property, const QByteArray& name) {
    Reader reader(property);
    constexpr std::uint32_t byteOrderAndSerial = 8;
    reader.skip(byteOrderAndSerial);
    const auto count = reader.number<std::uint32_t>();
    for (std::uint32_t i = 0; i < count && reader.isWithin(); ++i) {
        const auto kind = static_cast<Kind>(reader.number<std::uint8_t>());
        reader.skip(1);
        const QByteArray settingName = reader.text(reader.number<std::uint16_t>());
        reader.skipPadding();
        constexpr std::uint32_t lastChange = 4;
        reader.skip(lastChange);
        constexpr std::uint32_t colorSize = 8;
        switch (kind) {
        case Kind::integer: {
            const auto value = reader.number<std::int32_t>();
            if (reader.isWithin() && settingName == name)
                return value;
            break;
        }
        case Kind::string:
            reader.skip(reader.number<std::uint32_t>());
            reader.skipPadding();
            break;
        case Kind::color:
            reader.skip(colorSize);
            break;
        default:
            return std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace tilewright
