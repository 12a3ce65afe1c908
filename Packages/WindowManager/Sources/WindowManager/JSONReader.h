#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>
#include <string_view>

namespace tilewright {

/// Reads a JSON document value by value, from its start to its end.
///
/// Strict: what RFC 8259 does not allow is an error, from which on every value reads as none. A
/// value of another kind than the one asked for reads as none too, and is passed over. Texts are
/// whatever code units they spell, halves of surrogate pairs and byte order marks included. A
/// number is the nearest double; one too large for any reads as infinite. Arrays and objects may
/// be nested 1,024 deep. The bytes have to outlive the reader.
class JSONReader {
public:
    explicit JSONReader(QByteArrayView document);

    [[nodiscard]] std::optional<QString> text();
    [[nodiscard]] std::optional<double> number();
    [[nodiscard]] std::optional<bool> boolean();
    /// Reads an array; `element` is called for each element and has to read it. Answers whether the
    /// value was an array.
    template<class Element>
    [[nodiscard]] bool array(Element element) {
        return collection('[', ']', element);
    }
    /// Reads an object; `member` is called with the key of each member and has to read its value.
    /// Answers whether the value was an object.
    template<class Member>
    [[nodiscard]] bool object(Member member) {
        return collection('{', '}', [&] {
            const auto key = text();
            if (!key)
                fail();
            expect(':');
            member(key.value_or(QString()));
        });
    }
    /// Passes over a value of any kind.
    void skip();

    /// Whether nothing but blanks follows, and there has been no error.
    [[nodiscard]] bool isAtEnd();

private:
    static constexpr int deepest = 1024;

    template<class Item>
    bool collection(char open, char close, Item item) {
        if (next() != open) {
            skip();
            return false;
        }
        rest_.remove_prefix(1);
        if (++depth_ > deepest)
            fail();
        if (next() != close) {
            item();
            while (next() == ',') {
                rest_.remove_prefix(1);
                item();
            }
        }
        --depth_;
        return expect(close);
    }
    /// The first character that is no blank, which stays; 0 at the end and after an error.
    char next();
    bool expect(char character);
    bool take(std::string_view choice);
    bool takeWord(std::string_view word);
    bool takeDigits();
    bool takeNumber();
    /// Appends what an escape after its backslash stands for.
    bool takeEscape(QString& text);
    void fail();

    std::string_view rest_;
    int depth_ = 0;
    bool hasFailed_ = false;
};

} // namespace tilewright
