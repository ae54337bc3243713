#include "platform/leap/Json.h"

#include <charconv>
#include <limits>
#include <utility>

namespace Leap {

namespace {

const JsonValue nothing;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

int hexDigit(char c)
{
    if (isDigit(c)) {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

class Reader
{
public:
    Reader(std::string_view text_, const JsonLimits& limits_) : text(text_), limits(limits_) {}

    bool readWhole(JsonValue& value)
    {
        skipBlanks();
        if (!readValue(value, 0)) {
            return false;
        }
        skipBlanks();
        return at == text.size();
    }

private:
    char next() const { return at < text.size() ? text[at] : '\0'; }

    bool take(char c)
    {
        if (next() != c || at == text.size()) {
            return false;
        }
        ++at;
        return true;
    }

    bool takeWord(std::string_view word)
    {
        if (text.substr(at, word.size()) != word) {
            return false;
        }
        at += word.size();
        return true;
    }

    void skipBlanks()
    {
        while (next() == ' ' || next() == '\n' || next() == '\t' || next() == '\r') {
            ++at;
        }
    }

    bool readValue(JsonValue& value, int depth)
    {
        if (++values > limits.mostValues) {
            return false;
        }
        switch (next()) {
        case '{':
            return depth < limits.deepest && readObject(value, depth + 1);
        case '[':
            return depth < limits.deepest && readArray(value, depth + 1);
        case '"':
            value.kind = JsonValue::Kind::String;
            return readString(value.text);
        case 't':
            value.kind = JsonValue::Kind::Boolean;
            value.boolean = true;
            return takeWord("true");
        case 'f':
            value.kind = JsonValue::Kind::Boolean;
            return takeWord("false");
        case 'n':
            return takeWord("null");
        default:
            value.kind = JsonValue::Kind::Number;
            return readNumber(value.number);
        }
    }

    bool readArray(JsonValue& value, int depth)
    {
        value.kind = JsonValue::Kind::Array;
        take('[');
        skipBlanks();
        if (take(']')) {
            return true;
        }
        do {
            skipBlanks();
            if (!readValue(value.items.emplace_back(), depth)) {
                return false;
            }
            skipBlanks();
        } while (take(','));
        return take(']');
    }

    bool readObject(JsonValue& value, int depth)
    {
        value.kind = JsonValue::Kind::Object;
        take('{');
        skipBlanks();
        if (take('}')) {
            return true;
        }
        do {
            skipBlanks();
            if (!readString(value.names.emplace_back())) {
                return false;
            }
            skipBlanks();
            if (!take(':')) {
                return false;
            }
            skipBlanks();
            if (!readValue(value.items.emplace_back(), depth)) {
                return false;
            }
            skipBlanks();
        } while (take(','));
        return take('}');
    }

    bool readString(std::string& string)
    {
        if (!take('"')) {
            return false;
        }
        while (at < text.size()) {
            const char c = text[at++];
            if (c == '"') {
                return true;
            }
            if (static_cast<unsigned char>(c) < ' ') {
                return false;
            }
            if (c != '\\') {
                string += c;
            } else if (!readEscape(string)) {
                return false;
            }
        }
        return false;
    }

    bool readEscape(std::string& string)
    {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        if (take('u')) {
            int code = 0;
            for (int i = 0; i < 4; ++i) {
                const int digit = hexDigit(next());
                if (digit < 0) {
                    return false;
                }
                code = 16 * code + digit;
                ++at;
            }
            string += code < 0x80 ? static_cast<char>(code) : '?';
            return true;
        }
        const std::size_t letter = at < text.size() ? letters.find(text[at]) : letters.npos;
        if (letter == letters.npos) {
            return false;
        }
        ++at;
        string += meanings[letter];
        return true;
    }

    bool readDigits()
    {
        const std::size_t first = at;
        while (isDigit(next())) {
            ++at;
        }
        return at > first;
    }

    bool readNumber(double& number)
    {
        const std::size_t first = at;
        take('-');
        if (!take('0') && !readDigits()) {
            return false;
        }
        if (take('.') && !readDigits()) {
            return false;
        }
        if (take('e') || take('E')) {
            if (!take('+')) {
                take('-');
            }
            if (!readDigits()) {
                return false;
            }
        }
        const auto read = std::from_chars(text.data() + first, text.data() + at, number);
        if (read.ec != std::errc()) {
            number = std::numeric_limits<double>::quiet_NaN();
        }
        return true;
    }

    std::string_view text;
    JsonLimits limits;
    std::size_t at = 0;
    int values = 0;
};

}  // namespace

bool JsonValue::has(std::string_view name) const
{
    return &(*this)[name] != &nothing;
}

const JsonValue& JsonValue::operator[](std::string_view name) const
{
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) {
            return items[i];
        }
    }
    return nothing;
}

std::optional<JsonValue> parseJson(std::string_view text, const JsonLimits& limits)
{
    JsonValue value;
    if (!Reader(text, limits).readWhole(value)) {
        return std::nullopt;
    }
    return value;
}

}  // namespace Leap
