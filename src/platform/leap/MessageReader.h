#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

namespace Leap {

/// How deep a message may be nested: a frame needs six levels.
constexpr int deepestMessage = 16;
/// How many values, lists and objects a message may have: two hands with all fingers have a
/// thousand.
constexpr int mostMessageValues = 50000;

/// A JSON text as values: discarded when it is not exactly one JSON value of UTF-8, or over the
/// limits above. Reading stops where a limit is reached, and of objects only the fields of these
/// names are kept, so that memory and time are bounded. Of several fields of one name the first one
/// counts. A number that no double holds spoils the whole text.
nlohmann::json readJson(std::string_view text, const std::set<std::string_view>& names);

}  // namespace Leap
