#pragma once

#include <QByteArray>
#include <QStringView>
#include <optional>

namespace tilewright {

/// Writes a JSON document value by value: compact UTF-8, which a `JSONReader` reads as the very
/// same values, halves of surrogate pairs and the sign of a zero included.
///
/// The caller sees to it that every value within an object follows a key, and closes what it opens.
class JSONWriter {
public:
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    void key(QStringView key);

    void text(QStringView text);
    void boolean(bool value);
    /// JSON has no form for a number that is not finite: none is written then, and `bytes` are
    /// none from there on.
    void number(double value);

    /// What has been written; none after a number that is not finite.
    [[nodiscard]] std::optional<QByteArray> bytes() const;

private:
    void begin(char bracket);
    void end(char bracket);
    /// Sets a value apart from the one before.
    void separate();
    void quote(QStringView text);

    QByteArray bytes_;
    bool needsComma_ = false;
    bool hasFailed_ = false;
};

} // namespace tilewright
