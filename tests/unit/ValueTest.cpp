#include "platform/Value.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Placement.hpp"

namespace quorvel {
namespace {

std::vector<std::string> namesOf(const Value& record) {
    std::vector<std::string> names;
    for (const auto& [name, field] : *record.dictionary()) names.push_back(name);
    return names;
}

TEST(ValueDictionaryTest, KeepsTheOrderInWhichNamesCame) {
    Value::Dictionary dictionary{{"b", 1}, {"a", 2}};
    dictionary.insert_or_assign("c", 3);
    dictionary.insert_or_assign("b", 4);
    EXPECT_EQ(namesOf(dictionary), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(dictionary.at("b"), Value(4));
}

TEST(ValueDictionaryTest, IsEqualInWhateverOrder) {
    EXPECT_EQ((Value::Dictionary{{"a", 1}, {"b", 2}}), (Value::Dictionary{{"b", 2}, {"a", 1}}));
    EXPECT_NE((Value::Dictionary{{"a", 1}, {"b", 2}}), (Value::Dictionary{{"a", 1}}));
    EXPECT_NE((Value::Dictionary{{"a", 1}}), (Value::Dictionary{{"a", 2}}));
}

TEST(ValueDictionaryTest, ErasesByName) {
    Value::Dictionary dictionary{{"a", 1}, {"b", 2}};
    EXPECT_EQ(dictionary.erase("a"), 1u);
    EXPECT_EQ(dictionary.erase("a"), 0u);
    EXPECT_FALSE(dictionary.contains("a"));
    EXPECT_TRUE(dictionary.contains("b"));
}

TEST(ValueDictionaryTest, RecordsAreWrittenInTheOrderOfTheirFields) {
    const Value bindings = AppBinding::encode({{"/a", "none", "false"}});
    EXPECT_EQ(namesOf(bindings.array()->front()),
              (std::vector<std::string>{"appPath", "hotKey", "autoTuck"}));
    const Value placements = Placement::encode({{"/a", "builtin", "none", "left"}});
    EXPECT_EQ(namesOf(placements.array()->front()),
              (std::vector<std::string>{"appPath", "display", "corner", "tuckEdge"}));
}

}  // namespace
}  // namespace quorvel
