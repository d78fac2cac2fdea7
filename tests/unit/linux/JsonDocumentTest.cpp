#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include "platform/linux/JsonDocument.hpp"

namespace quorvel::native {
namespace {

JsonDocument parsed(std::string_view text) {
    std::string error;
    auto document = JsonDocument::parse(text, error);
    EXPECT_TRUE(document) << text << ": " << error;
    return document.value_or(JsonDocument{});
}

std::string refusal(std::string_view text) {
    std::string error;
    return JsonDocument::parse(text, error) ? "accepted" : error;
}

TEST(JsonDocumentTest, ReadsEveryKindOfValue) {
    const JsonDocument document = parsed(
        R"({"b": true, "i": -7, "r": 0.5, "t": "ü\n", "a": [1, "x"], "d": {"k": {"n": false}}})");
    EXPECT_EQ(document.value("b"), Value(true));
    EXPECT_EQ(document.value("i"), Value(-7));
    EXPECT_EQ(document.value("r"), Value(0.5));
    EXPECT_EQ(document.value("t"), Value("ü\n"));
    EXPECT_EQ(document.value("a"), Value(Value::Array{1, "x"}));
    EXPECT_EQ(document.value("d"),
              Value(Value::Dictionary{{"k", Value::Dictionary{{"n", false}}}}));
    EXPECT_EQ(document.value("none"), std::nullopt);
    EXPECT_EQ(document.values().size(), 6U);
}

TEST(JsonDocumentTest, KindsOfNumbersStayApart) {
    const JsonDocument document = parsed(
        R"({"one": 1, "real": 1.0, "exponent": 1e3, "least": -9223372036854775808,
            "most": 9223372036854775807, "beyond": 9223372036854775808, "huge": 1000000000000000000000})");
    EXPECT_EQ(document.value("one"), Value(1));
    EXPECT_EQ(document.value("real"), Value(1.0));
    EXPECT_EQ(document.value("exponent"), Value(1000.0));
    EXPECT_EQ(document.value("least"), Value(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(document.value("most"), Value(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(document.value("beyond"), Value(9223372036854775808.0));
    EXPECT_EQ(document.value("huge"), Value(1e21));
}

TEST(JsonDocumentTest, NullIsAbsentAtEveryLevelAndKeptInTheText) {
    JsonDocument document =
        parsed(R"({"gone": null, "list": [null, 1], "map": {"x": null, "y": 2}})");
    EXPECT_EQ(document.value("gone"), std::nullopt);
    EXPECT_EQ(document.value("list"), Value(Value::Array{1}));
    EXPECT_EQ(document.value("map"), Value(Value::Dictionary{{"y", 2}}));
    EXPECT_FALSE(document.values().contains("gone"));
    EXPECT_TRUE(document.contains("gone"));
    std::string error;
    ASSERT_TRUE(document.set("new", 1, error));
    EXPECT_NE(document.text().find(R"("gone": null)"), std::string::npos);
    EXPECT_NE(document.text().find(R"([null, 1])"), std::string::npos);
}

TEST(JsonDocumentTest, WhatIsNotReplacedKeepsItsTextAndItsPlace) {
    JsonDocument document = parsed(
        "{\"z\":123456789012345678901234567890,\"m\" : [ 1.10,\n\t{\"deep\":[[],{}]} ],"
        "\"\\u0061\":\"\\u00fc \\\"}\",\"change\":1,\"e\":1E-7}");
    std::string error;
    ASSERT_TRUE(document.set("change", "text", error));
    ASSERT_TRUE(document.set("added", true, error));
    EXPECT_EQ(document.text(),
              "{\n"
              "  \"z\": 123456789012345678901234567890,\n"
              "  \"m\": [ 1.10,\n\t{\"deep\":[[],{}]} ],\n"
              "  \"\\u0061\": \"\\u00fc \\\"}\",\n"
              "  \"change\": \"text\",\n"
              "  \"e\": 1E-7,\n"
              "  \"added\": true\n"
              "}\n");
    EXPECT_EQ(document.value("a"), Value("ü \"}"));
}

TEST(JsonDocumentTest, WrittenValuesReadBackTheSame) {
    const Value::Dictionary values{
        {"", "empty key"},
        {"array", Value::Array{1, 2.5, "x", false, Value::Array{}, Value::Dictionary{}}},
        {"control \x01\n\"\\", "\x7f\t"},
        {"fraction", 0.1},
        {"integer", std::numeric_limits<std::int64_t>::min()},
        {"nested", Value::Dictionary{{"a", Value::Dictionary{{"b", "line\nbreak"}}}}},
        {"real", 3.0},
        {"smallest", std::numeric_limits<double>::denorm_min()},
        {"text", "日本 🙂"},
    };
    JsonDocument document;
    std::string error;
    for (const auto& [key, value] : values) ASSERT_TRUE(document.set(key, value, error)) << error;
    EXPECT_EQ(document.values(), values);
    EXPECT_EQ(parsed(document.text()).values(), values) << document.text();
    EXPECT_EQ(parsed(document.text()).text(), document.text());
}

TEST(JsonDocumentTest, WhatIsTooLargeWithBlanksIsWrittenWithoutThem) {
    // Each of the numbers stands on a line of its own, behind 180 blanks.
    std::string compact = R"({"a b":"c \" \\","number":1.50,"list":)" + std::string(89, '[');
    for (int i = 0; i < 50'000; ++i) compact += "1,";
    compact += "1" + std::string(89, ']') + R"(,"filling":")";
    compact += std::string(JsonDocument::largest - compact.size() - 100, 'x') + "\"}";
    const Value::Dictionary values = parsed(compact).values();
    JsonDocument document = parsed(R"({ "kept" : [ 1.10,
        { "deep  " : " \\" } ] })");
    std::string error;
    for (const auto& [key, value] : values) ASSERT_TRUE(document.set(key, value, error)) << error;
    const std::string text = document.text();
    EXPECT_LE(text.size(), JsonDocument::largest);
    const std::string head =
        R"({"kept":[1.10,{"deep  ":" \\"}],"a b":"c \" \\","number":1.5,"list":[[[)";
    EXPECT_EQ(text.substr(0, head.size()), head);
    const JsonDocument again = parsed(text);
    for (const auto& [key, value] : values) EXPECT_TRUE(again.value(key) == value) << key;

    document.remove("list");
    EXPECT_EQ(document.text().substr(0, 11), "{\n  \"kept\":") << "the eye is pleased again";
}

TEST(JsonDocumentTest, RemovingTakesOneMemberAway) {
    JsonDocument document = parsed(R"({"a": 1, "b": 2, "c": 3})");
    document.remove("b");
    document.remove("absent");
    EXPECT_EQ(document.text(), "{\n  \"a\": 1,\n  \"c\": 3\n}\n");
    document.remove("a");
    document.remove("c");
    EXPECT_EQ(document.text(), "{}\n");
}

TEST(JsonDocumentTest, OfRepeatedKeysTheLastCountsAndAWriteLeavesOne) {
    JsonDocument document = parsed(R"({"a": 1, "b": 0, "a": 2, "a": 3})");
    EXPECT_EQ(document.value("a"), Value(3));
    EXPECT_EQ(document.values(), (Value::Dictionary{{"a", 3}, {"b", 0}}));
    std::string error;
    ASSERT_TRUE(document.set("a", 4, error));
    EXPECT_EQ(document.text(), "{\n  \"a\": 4,\n  \"b\": 0\n}\n");

    JsonDocument other = parsed(R"({"a": 1, "a": null})");
    EXPECT_EQ(other.value("a"), std::nullopt);
    EXPECT_TRUE(other.values().empty());
    other.remove("a");
    EXPECT_EQ(other.text(), "{}\n");
}

TEST(JsonDocumentTest, OfRepeatedNamesInsideAValueTheLastCounts) {
    const JsonDocument document =
        parsed(R"({"d": {"a": 1, "b": {"x": 1}, "a": [2], "c": 3, "c": null}})");
    EXPECT_EQ(document.value("d"),
              Value(Value::Dictionary{{"a", Value::Array{2}}, {"b", Value::Dictionary{{"x", 1}}}}));
}

TEST(JsonDocumentTest, VeryManyNamesAreNoBurden) {
    std::string names;
    constexpr std::size_t count = 50'000;
    for (std::size_t i = 0; i < count; ++i) {
        names += (i == 0 ? "\"" : ",\"") + std::to_string(i) + "\":1";
    }
    // Of the processor, so that a busy machine makes no difference.
    const std::clock_t start = std::clock();
    JsonDocument document = parsed("{\"nested\":{" + names + "}," + names + "}");
    const auto nested = document.value("nested");
    ASSERT_TRUE(nested && nested->dictionary() != nullptr);
    EXPECT_EQ(nested->dictionary()->size(), count);
    EXPECT_EQ(document.values().size(), count + 1);
    std::string error;
    EXPECT_TRUE(document.set("copy", *nested, error));
    // With look-ups that walk all names it takes half a minute.
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 8);
}

TEST(JsonDocumentTest, BlankTextIsAnEmptyObject) {
    for (const char* text : {"", " \r\n\t", "\xEF\xBB\xBF", "{}", " { } \n"}) {
        EXPECT_EQ(parsed(text).text(), "{}\n");
    }
    EXPECT_EQ(parsed("\xEF\xBB\xBF{\"a\":1}").value("a"), Value(1));
}

TEST(JsonDocumentTest, WhatIsNoJsonIsRefused) {
    using namespace std::string_view_literals;
    for (const std::string_view text : {"{"sv,
                                        "}"sv,
                                        "{\"a\":1"sv,
                                        "{\"a\":1,}"sv,
                                        "{\"a\" 1}"sv,
                                        "{a:1}"sv,
                                        "{\"a\":1} x"sv,
                                        "{\"a\":1}{}"sv,
                                        "{\"a\":01}"sv,
                                        "{\"a\":\"\xff\"}"sv,
                                        "{\"\xc3\":1}"sv,
                                        "{\"a\":\"\n\"}"sv,
                                        "// {}"sv,
                                        "{\"a\":1}\0"sv,
                                        "\0\0\0\0"sv,
                                        "{\"a\":NaN}"sv,
                                        "\"unterminated"sv,
                                        "{\"a\":\"\\"sv,
                                        "{\"a\":1]"sv,
                                        "{\"a\":1e999}"sv}) {
        EXPECT_EQ(refusal(text), "not valid JSON") << text;
    }
    for (const char* text : {"[]", "1", "null", "\"text\"", "true"}) {
        EXPECT_EQ(refusal(text), "not a JSON object") << text;
    }
}

TEST(JsonDocumentTest, NestingHasALimit) {
    const auto nested = [](std::size_t depth) {
        return "{\"a\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    parsed(nested(JsonDocument::deepest));
    EXPECT_EQ(refusal(nested(JsonDocument::deepest + 1)), "nested too deeply");
    EXPECT_EQ(refusal(std::string(1'000'000, '[')), "nested too deeply");
    // Brackets in texts nest nothing.
    parsed("{\"a\": \"" + std::string(1000, '[') + "\"}");
}

TEST(JsonDocumentTest, WhatJsonCannotExpressIsRefusedAndChangesNothing) {
    JsonDocument document = parsed(R"({"a": 1})");
    const std::string before = document.text();
    std::string error;
    EXPECT_FALSE(document.set("a", std::nan(""), error));
    EXPECT_EQ(error, "a number that is not finite cannot be stored");
    EXPECT_FALSE(document.set("b", Value::Array{-std::numeric_limits<double>::infinity()}, error));
    EXPECT_FALSE(document.set("a", "\xff", error));
    EXPECT_EQ(error, "a text that is not UTF-8 cannot be stored");
    EXPECT_FALSE(document.set("\xff", 1, error));
    EXPECT_FALSE(document.set("a", Value::Dictionary{{"\xc3(", 1}}, error));
    Value deep = Value::Array{};
    for (int i = 1; i < JsonDocument::deepest; ++i) deep = Value::Array{deep};
    EXPECT_FALSE(document.set("a", deep, error));
    EXPECT_EQ(error, "nested too deeply");
    EXPECT_EQ(document.text(), before);
}

TEST(JsonDocumentTest, DeepestValueThatIsAcceptedReadsBack) {
    Value deep = Value::Array{};
    for (int i = 2; i < JsonDocument::deepest; ++i) deep = Value::Array{deep};
    JsonDocument document;
    std::string error;
    ASSERT_TRUE(document.set("a", deep, error)) << error;
    EXPECT_EQ(parsed(document.text()).value("a"), deep);
}

}  // namespace
}  // namespace quorvel::native
