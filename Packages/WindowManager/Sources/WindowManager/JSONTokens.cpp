#include "JSONTokens.h"

#include <string_view>

namespace tilewright {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Walks over the tokens of a document from its start to its end.
class Scanner {
public:
    explicit Scanner(std::string_view text)
        : rest_(text) {}

    bool scan() {
        while (!rest_.empty()) {
            const char c = rest_.front();
            if (c == '"') {
                if (!scanString())
                    return false;
            } else if (isDigit(c) || c == '-' || c == '.') {
                if (!scanNumber())
                    return false;
            } else {
                rest_.remove_prefix(1);
            }
        }
        return true;
    }

private:
    [[nodiscard]] bool take(std::string_view choice) {
        if (rest_.empty() || choice.find(rest_.front()) == std::string_view::npos)
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    [[nodiscard]] bool takeDigits() {
        const auto end = rest_.find_first_not_of("0123456789");
        const auto count = end == std::string_view::npos ? rest_.size() : end;
        rest_.remove_prefix(count);
        return count > 0;
    }

    bool scanString() {
        rest_.remove_prefix(1);
        while (!rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            if (c == '"')
                return true;
            if (static_cast<unsigned char>(c) < 0x20)
                return false;
            // The digits after \u are ordinary characters here: their number has been checked.
            if (c == '\\' && !take("\"\\/bfnrtu"))
                return false;
        }
        return false;
    }

    bool scanNumber() {
        (void)take("-");
        if (!take("0") && !takeDigits())
            return false;
        if (take(".") && !takeDigits())
            return false;
        if (take("eE")) {
            (void)take("+-");
            if (!takeDigits())
                return false;
        }
        return true;
    }

    std::string_view rest_;
};

} // namespace

bool JSONTokens::areWellFormed(QByteArrayView document) {
    return Scanner({document.data(), static_cast<std::size_t>(document.size())}).scan();
}

} // namespace tilewright
