#include "platform/leap/Json.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <string>

using Leap::JsonValue;

namespace {

std::optional<JsonValue> parse(std::string_view text)
{
    return Leap::parseJson(text, Leap::JsonLimits());
}

double number(std::string_view text)
{
    const auto value = parse(text);
    return value && value->kind == JsonValue::Kind::Number ? value->number : -12345.0;
}

}  // namespace

TEST(Json, ReadsEveryKindOfValue)
{
    const auto value =
        parse(" {\"a\" : [1, -2.5e1 ,true,false,null,\"x\"],\n\"b\":{} , \"c\":[ ]}\r");
    ASSERT_TRUE(value);
    const JsonValue& list = (*value)["a"];
    ASSERT_EQ(list.items.size(), 6u);
    EXPECT_EQ(list.items[0].number, 1.0);
    EXPECT_EQ(list.items[1].number, -25.0);
    EXPECT_TRUE(list.items[2].boolean);
    EXPECT_EQ(list.items[3].kind, JsonValue::Kind::Boolean);
    EXPECT_FALSE(list.items[3].boolean);
    EXPECT_EQ(list.items[4].kind, JsonValue::Kind::Null);
    EXPECT_EQ(list.items[5].text, "x");
    EXPECT_TRUE((*value)["b"].isObject());
    EXPECT_TRUE((*value)["c"].isArray());
    EXPECT_FALSE(value->has("d"));
    EXPECT_EQ((*value)["d"]["e"].kind, JsonValue::Kind::Null);
}

TEST(Json, RefusesWhatTheGrammarRefuses)
{
    for (const char* text :
         {"",      " ",    "{",       "}",           "[",          "]",      "[1",
          "[1,]",  "[,1]", "[1 2]",   "{\"a\"}",     "{\"a\":}",   "{a:1}",  "{\"a\":1,}",
          "{1:2}", "\"",   "\"\\x\"", "\"\\u12g4\"", "\"\\u12",    "\"\n\"", "tru",
          "truee", "nul",  "nan",     "NaN",         "inf",        "-",      "+1",
          "01",    ".5",   "1.",      "1e",          "1e+",        "0x10",   "1,5",
          "1 1",   "[1]]", "'a'",     "--1",         "\"a\" \"b\""}) {
        EXPECT_FALSE(parse(text)) << text;
    }
    EXPECT_FALSE(parse(std::string_view("[1\0]", 4)));
    EXPECT_FALSE(parse(std::string_view("1\0", 2)));
}

TEST(Json, ReadsNumbersInAnyLocaleAndMarksThoseThatDoNotFit)
{
    const char* const before = std::setlocale(LC_NUMERIC, nullptr);
    const std::string kept = before ? before : "C";
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_EQ(number("-0.5"), -0.5);
    EXPECT_EQ(number("1E3"), 1000.0);
    EXPECT_EQ(number("1e-2"), 0.01);
    EXPECT_EQ(number("-0"), 0.0);
    std::setlocale(LC_NUMERIC, kept.c_str());
    EXPECT_TRUE(std::isnan(number("1e999")));
    EXPECT_TRUE(std::isnan(number("-1e999")));
}

TEST(Json, ReadsEscapes)
{
    EXPECT_EQ(parse("\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00e9\"")->text, "\"\\/\b\f\n\r\tA?");
    EXPECT_EQ(parse("\"\xc3\xa9\"")->text, "\xc3\xa9");
}

TEST(Json, StopsAtItsLimits)
{
    const auto nested = [](int levels) {
        return std::string(static_cast<std::size_t>(levels), '[') +
               std::string(static_cast<std::size_t>(levels), ']');
    };
    EXPECT_TRUE(parse(nested(16)));
    EXPECT_FALSE(parse(nested(17)));
    EXPECT_FALSE(parse(std::string(1000000, '[')));
    std::string list = "[0";
    for (int i = 2; i < 50000; ++i) {
        list += ",0";
    }
    EXPECT_TRUE(parse(list + "]"));
    EXPECT_FALSE(parse(list + ",0]"));
}
