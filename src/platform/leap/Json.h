#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Leap {

/// A JSON text as values. It is read here and not by the library, whose reader loses memory with
/// every text that breaks off inside a list and takes a tenth of a second for a megabyte of empty
/// ones; both would be at the mercy of whoever listens at the service's port.
class JsonValue
{
public:
    enum class Kind { Null, Boolean, Number, String, Array, Object };

    Kind kind = Kind::Null;
    bool boolean = false;
    double number = 0.0;  ///< not a number when it does not fit
    std::string text;
    std::vector<JsonValue> items;    ///< of an array, or the values of an object
    std::vector<std::string> names;  ///< of an object's values

    bool isArray() const { return kind == Kind::Array; }
    bool isObject() const { return kind == Kind::Object; }
    bool has(std::string_view name) const;
    /// A null value when this is no object or has no such name; the first of several.
    const JsonValue& operator[](std::string_view name) const;
};

struct JsonLimits
{
    int deepest = 16;
    int mostValues = 50000;
};

/// Nothing when the text is not exactly one JSON value, or is over the limits. Independent of the
/// locale. Characters beyond ASCII written as escapes become question marks: no name of the
/// protocol has any.
std::optional<JsonValue> parseJson(std::string_view text, const JsonLimits& limits);

}  // namespace Leap
