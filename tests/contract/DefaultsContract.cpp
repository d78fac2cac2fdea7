#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class DefaultsContract : public Contract {
protected:
    Defaults& defaults = desktop.defaults;
};

TEST_P(DefaultsContract, AbsentKeyHasNoValue) {
    EXPECT_FALSE(defaults.object("Nothing").has_value());
}

TEST_P(DefaultsContract, EachKindComesBackAsItWas) {
    const std::map<std::string, Value> values{
        {"Yes", true},
        {"No", false},
        {"Integer", 300},
        {"Negative", -5},
        {"Large", std::int64_t{1} << 62},
        {"Real", 0.1},
        {"WholeReal", 3.0},
        {"Text", "⌃⌥K \"quoted\" \\ \n and a line"},
        {"Empty", ""},
        {"List", Value::Array{1, "two", false, Value::Array{}}},
        {"Record", Value::Dictionary{{"a", 1}, {"b", Value::Dictionary{{"c", "d"}}}}},
    };
    for (const auto& [key, value] : values) EXPECT_TRUE(defaults.setObject(key, value));
    for (const auto& [key, value] : values) EXPECT_EQ(defaults.object(key), value) << key;
}

TEST_P(DefaultsContract, FieldsOfARecordKeepTheirOrder) {
    const Value record = Value::Dictionary{{"zebra", 1}, {"ant", 2}, {"mole", 3}};
    EXPECT_TRUE(defaults.setObject("Record", record));
    const std::optional<Value> stored = defaults.object("Record");
    ASSERT_TRUE(stored && stored->dictionary());
    std::string names;
    for (const auto& [name, value] : *stored->dictionary()) names += name + " ";
    EXPECT_EQ(names, "zebra ant mole ");
}

TEST_P(DefaultsContract, LaterWriteWinsAlsoWithAnotherKind) {
    EXPECT_TRUE(defaults.setObject("Key", 1));
    EXPECT_TRUE(defaults.setObject("Key", "text"));
    EXPECT_EQ(defaults.object("Key"), Value("text"));
}

TEST_P(DefaultsContract, RemovedKeyHasNoValueAndTheOthersStay) {
    EXPECT_TRUE(defaults.setObject("One", 1));
    EXPECT_TRUE(defaults.setObject("Two", 2));
    EXPECT_TRUE(defaults.removeObject("One"));
    EXPECT_FALSE(defaults.object("One").has_value());
    EXPECT_EQ(defaults.object("Two"), Value(2));
}

TEST_P(DefaultsContract, RemovingAnAbsentKeySucceeds) {
    EXPECT_TRUE(defaults.removeObject("Nothing"));
}

TEST_P(DefaultsContract, ChangesAreAppliedTogetherAndInOrder) {
    EXPECT_TRUE(defaults.setObject("One", 1));
    EXPECT_TRUE(defaults.setObject("Two", 2));
    EXPECT_TRUE(defaults.apply({{"One", std::nullopt},
                                {"Three", Value("a")},
                                {"Four", Value(4)},
                                {"Three", Value("b")},
                                {"Four", std::nullopt},
                                {"Absent", std::nullopt}}));
    EXPECT_FALSE(defaults.object("One").has_value());
    EXPECT_EQ(defaults.object("Two"), Value(2));
    EXPECT_EQ(defaults.object("Three"), Value("b"));
    EXPECT_FALSE(defaults.object("Four").has_value());
}

TEST_P(DefaultsContract, NoChangeAtAllSucceeds) {
    EXPECT_TRUE(defaults.apply({}));
    EXPECT_TRUE(defaults.apply({{"Nothing", std::nullopt}, {"More", std::nullopt}}));
}

TEST_P(DefaultsContract, AnotherProgramsDomainCanBeRead) {
    rig->writeOtherDomain("org.example.other", "Edge", "left");
    const Value::Dictionary domain = defaults.persistentDomain("org.example.other");
    EXPECT_EQ(domain, (Value::Dictionary{{"Edge", "left"}}));
    EXPECT_FALSE(defaults.object("Edge").has_value());
}

TEST_P(DefaultsContract, AbsentDomainIsEmpty) {
    EXPECT_TRUE(defaults.persistentDomain("org.example.absent").empty());
    EXPECT_TRUE(defaults.persistentDomain("").empty());
    EXPECT_TRUE(defaults.persistentDomain("../../etc").empty());
}

TEST_P(DefaultsContract, PresetIsSeenApartFromTheStoredValue) {
    EXPECT_FALSE(defaults.preset("Edge").has_value());
    rig->writePreset("Edge", "right");
    EXPECT_EQ(defaults.preset("Edge"), Value("right"));
    EXPECT_FALSE(defaults.object("Edge").has_value());
    EXPECT_TRUE(defaults.setObject("Edge", "left"));
    EXPECT_EQ(defaults.preset("Edge"), Value("right"));
}

INSTANTIATE_TEST_SUITE_P(, DefaultsContract, testing::Values(simulatedRig(), bareRig()), rigName);

}  // namespace
}  // namespace quorvel::test
