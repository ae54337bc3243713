#include "platform/leap/MessageReader.h"

#include <string>
#include <utility>
#include <vector>

namespace Leap {

namespace {

using Json = nlohmann::json;

/// Builds the values, and stops the reader by an answer of false.
class BoundedBuilder : public nlohmann::json_sax<Json>
{
public:
    explicit BoundedBuilder(const std::set<std::string_view>& fieldNames) : names(fieldNames) {}

    bool null() override { return put(nullptr); }
    bool boolean(bool value) override { return put(value); }
    bool number_integer(number_integer_t value) override { return put(value); }
    bool number_unsigned(number_unsigned_t value) override { return put(value); }
    bool number_float(number_float_t value, const string_t&) override { return put(value); }
    bool string(string_t& value) override { return put(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(Json::object()); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override
    {
        Json* const object = holders.back();
        next = nullptr;
        if (object && names.count(name) && !object->contains(name))
            next = &(*object)[name];
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override
    {
        return false;
    }

    Json takeResult() { return std::move(result); }

private:
    bool put(Json value)
    {
        if (++values > mostMessageValues)
            return false;
        if (Json* const place = placeOfNext())
            *place = std::move(value);
        return true;
    }

    bool open(Json holder)
    {
        if (holders.size() == deepestMessage || ++values > mostMessageValues)
            return false;
        Json* const place = placeOfNext();
        if (place)
            *place = std::move(holder);
        holders.push_back(place);
        return true;
    }

    bool close()
    {
        holders.pop_back();
        return true;
    }

    /// Null for what is left out.
    Json* placeOfNext()
    {
        Json* const holder = holders.empty() ? nullptr : holders.back();
        return holder && holder->is_array() ? &holder->emplace_back() : next;
    }

    const std::set<std::string_view>& names;
    Json result;
    Json* next = &result;        // where a value goes that is no entry of a list
    std::vector<Json*> holders;  // lists and objects that are not closed yet, outermost first
    int values = 0;
};

}  // namespace

Json readJson(std::string_view text, const std::set<std::string_view>& names)
{
    // The library takes a zero for the end of the text.
    if (text.find('\0') != text.npos)
        return Json::value_t::discarded;
    BoundedBuilder builder(names);
    if (!Json::sax_parse(text, &builder))
        return Json::value_t::discarded;
    return builder.takeResult();
}

}  // namespace Leap
