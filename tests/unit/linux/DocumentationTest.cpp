// What the user guide says of the settings file holds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <regex>
#include <sstream>

#include "main/settings/HotZoneCorner.hpp"
#include "main/settings/Settings.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "main/tucking/TuckAnimationStyle.hpp"
#include "main/tucking/TuckEdge.hpp"
#include "platform/linux/JsonDocument.hpp"
#include "tests/support/MemoryDefaults.hpp"

namespace quorvel {
namespace {

class DocumentationTest : public testing::Test {
protected:
    const std::string guide = [] {
        const std::ifstream file(QUORVEL_USER_GUIDE);
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }();

    /// The words in code of this row of the table, without the one that names the row.
    std::vector<std::string> wordsOf(const std::string& row) const {
        const std::size_t begin = guide.find("\n| " + row + " |");
        EXPECT_NE(begin, std::string::npos) << row;
        std::string line = guide.substr(begin + 1, guide.find('\n', begin + 1) - begin - 1);
        line = line.substr(row.size() + 3);
        const std::regex code("`([^`]+)`");
        std::vector<std::string> words;
        for (auto at = std::sregex_iterator(line.begin(), line.end(), code);
             at != std::sregex_iterator(); ++at) {
            words.push_back((*at)[1]);
        }
        return words;
    }
    static void expectAll(const std::vector<std::string>& words, std::size_t count,
                          const std::function<bool(const std::string&)>& isUnderstood) {
        EXPECT_EQ(words.size(), count);
        for (const std::string& word : words) EXPECT_TRUE(isUnderstood(word)) << word;
    }
};

TEST_F(DocumentationTest, TheSettingsFileOfTheUserGuideIsUnderstoodWhole) {
    const std::size_t begin = guide.find("```json\n") + 8;
    ASSERT_LT(begin, guide.size());
    std::string error;
    const auto document =
        native::JsonDocument::parse(guide.substr(begin, guide.find("```", begin) - begin), error);
    ASSERT_TRUE(document) << error;
    MemoryDefaults defaults;
    for (const auto& [key, value] : document->values()) defaults.setObject(key, value);
    const Settings settings(defaults);
    const auto validated = AppBinding::validated(settings.appBindings());
    EXPECT_EQ(validated.kept.size(), 2U);
    for (const AppBinding& binding : validated.kept) {
        EXPECT_TRUE(HotKeySpec::parse(binding.hotKey)) << binding.hotKey;
    }
    const auto placements = settings.placements();
    ASSERT_EQ(placements.size(), 1U);
    EXPECT_TRUE(parseHotZoneCorner(placements[0].corner));
    EXPECT_TRUE(TuckEdge::parse(placements[0].tuckEdge));
    EXPECT_EQ(settings.hotZoneDwellMs(), 300);
    EXPECT_EQ(settings.tuckAnimation(), "easeout");
}

TEST_F(DocumentationTest, EveryWordOfTheUserGuideIsOne) {
    expectAll(wordsOf("`TuckAnimation`"), 5,
              [](const std::string& word) { return parseTuckAnimationStyle(word).has_value(); });
    expectAll(wordsOf("`tuckEdge`"), 8, [](const std::string& word) {
        return word == "none" || TuckEdge::parse(word).has_value();
    });
    expectAll(wordsOf("`corner`"), 5, [](const std::string& word) {
        return word == "none" || parseHotZoneCorner(word).has_value();
    });
    expectAll(wordsOf("modifiers"), modifierOrder.size(),
              [](const std::string& word) { return HotKeySpec::parse(word + ",A").has_value(); });
}

TEST_F(DocumentationTest, TheKeysOfTheUserGuideAreThoseThatThereAre) {
    std::vector<std::string> keys = wordsOf("keys");
    ASSERT_GT(keys.size(), 6U);
    EXPECT_THAT(std::vector(keys.begin(), keys.begin() + 6),
                testing::ElementsAre("A", "Z", "0", "9", "F1", "F12"));
    keys.erase(keys.begin(), keys.begin() + 6);
    for (char c = 'A'; c <= 'Z'; ++c) keys.emplace_back(1, c);
    for (char c = '0'; c <= '9'; ++c) keys.emplace_back(1, c);
    for (int i = 1; i <= 12; ++i) keys.push_back("F" + std::to_string(i));
    std::vector<std::string> known;
    for (const auto& [name, code] : virtualKeyCodes()) known.push_back(name);
    EXPECT_THAT(keys, testing::UnorderedElementsAreArray(known));
}

}  // namespace
}  // namespace quorvel
