#include "platform/leap/MessageReader.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

using Json = nlohmann::json;

namespace {

Json read(std::string_view text)
{
    return Leap::readJson(text, {"a", "b", "c"});
}

bool isRead(std::string_view text)
{
    return !read(text).is_discarded();
}

double number(std::string_view text)
{
    const Json value = read(text);
    return value.is_number() ? value.get<double>() : -12345.0;
}

}  // namespace

TEST(MessageReader, ReadsEveryKindOfValue)
{
    const Json value =
        read(" {\"a\" : [1, -2.5e1 ,true,false,null,\"x\"],\n\"b\":{} , \"c\":[ ]}\r");
    ASSERT_TRUE(value.is_object());
    EXPECT_EQ(value.size(), 3u);
    EXPECT_EQ(value["a"], Json({1, -25.0, true, false, nullptr, "x"}));
    EXPECT_EQ(value["b"], Json::object());
    EXPECT_EQ(value["c"], Json::array());
}

TEST(MessageReader, RefusesWhatTheGrammarRefuses)
{
    for (const char* text :
         {"",      " ",    "{",       "}",           "[",           "]",      "[1",
          "[1,]",  "[,1]", "[1 2]",   "{\"a\"}",     "{\"a\":}",    "{a:1}",  "{\"a\":1,}",
          "{1:2}", "\"",   "\"\\x\"", "\"\\u12g4\"", "\"\\u12",     "\"\n\"", "tru",
          "truee", "nul",  "nan",     "NaN",         "inf",         "-",      "+1",
          "01",    ".5",   "1.",      "1e",          "1e+",         "0x10",   "1,5",
          "1 1",   "[1]]", "'a'",     "--1",         "\"a\" \"b\"", "// a\n1"})
        EXPECT_FALSE(isRead(text)) << text;
    EXPECT_FALSE(isRead(std::string_view("[1\0]", 4)));
    EXPECT_FALSE(isRead(std::string_view("1\0", 2)));
}

TEST(MessageReader, ReadsNumbersInAnyLocaleAndRefusesThoseThatDoNotFit)
{
    const char* const before = std::setlocale(LC_NUMERIC, nullptr);
    const std::string kept = before ? before : "C";
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_EQ(number("-0.5"), -0.5);
    EXPECT_EQ(number("1E3"), 1000.0);
    EXPECT_EQ(number("1e-2"), 0.01);
    EXPECT_EQ(number("-0"), 0.0);
    std::setlocale(LC_NUMERIC, kept.c_str());
    EXPECT_FALSE(isRead("1e999"));
    EXPECT_FALSE(isRead("-1e999"));
}

TEST(MessageReader, ReadsEscapesAndUtf8)
{
    EXPECT_EQ(read("\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00e9\""),
              Json("\"\\/\b\f\n\r\tA\xc3\xa9"));
    EXPECT_EQ(read("\"\xc3\xa9\""), Json("\xc3\xa9"));
    EXPECT_FALSE(isRead("\"\xc3\""));
}

TEST(MessageReader, TakesTheFirstOfFieldsOfOneName)
{
    EXPECT_EQ(read("{\"a\":1,\"a\":{\"b\":1,\"b\":[2],\"c\":3},\"c\":4,\"a\":[5]}"),
              Json({{"a", 1}, {"c", 4}}));
}

TEST(MessageReader, LeavesOutFieldsThatNobodyAskedFor)
{
    EXPECT_EQ(read("{\"x\":1,\"a\":[{\"y\":{\"a\":2}},[3]],\"z\":[{\"a\":4},[],\"s\"],\"b\":5}"),
              Json({{"a", {Json::object(), {3}}}, {"b", 5}}));
    EXPECT_FALSE(isRead("{\"x\":[1,{\"a\":}]}"));
}

TEST(MessageReader, StopsAtItsLimits)
{
    const auto nested = [](int levels) {
        return std::string(std::size_t(levels), '[') + std::string(std::size_t(levels), ']');
    };
    EXPECT_TRUE(isRead(nested(16)));
    EXPECT_FALSE(isRead(nested(17)));
    EXPECT_FALSE(isRead(std::string(1000000, '[')));
    std::string list = "[0";
    for (int i = 2; i < 50000; ++i)
        list += ",0";
    EXPECT_TRUE(isRead(list + "]"));
    EXPECT_FALSE(isRead(list + ",0]"));
}
