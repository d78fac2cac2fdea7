#include "main/shortcuts/HotKeySpec.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;

HotKeySpec spec(std::string key, std::vector<std::string> modifiers) {
    return {std::move(key), std::move(modifiers)};
}

/// Every non-empty set of modifiers, each in canonical order.
std::vector<std::vector<ModifierKey>> everyModifierSet() {
    std::vector<std::vector<ModifierKey>> sets;
    for (unsigned bits = 1; bits < 16; ++bits) {
        std::vector<ModifierKey> set;
        for (unsigned i = 0; i < modifierOrder.size(); ++i) {
            if (bits & (1u << i)) set.push_back(modifierOrder[i]);
        }
        sets.push_back(std::move(set));
    }
    return sets;
}

HotKeySpec specOf(const std::string& key, const std::vector<ModifierKey>& modifiers) {
    HotKeySpec result{key, {}};
    for (const ModifierKey& modifier : modifiers) result.modifiers.emplace_back(modifier.name);
    return result;
}

TEST(HotKeySpecTest, ModifiersAreControlOptionShiftCommandWithTheirMasks) {
    const auto row = [](std::string_view name, std::uint32_t carbon, std::uint32_t cocoa,
                        std::string_view symbol) {
        return testing::AllOf(testing::Field(&ModifierKey::name, name),
                              testing::Field(&ModifierKey::carbon, carbon),
                              testing::Field(&ModifierKey::cocoa, cocoa),
                              testing::Field(&ModifierKey::symbol, symbol));
    };
    EXPECT_THAT(modifierOrder, ElementsAre(row("control", 0x1000, 0x40000, "\u2303"),
                                           row("option", 0x800, 0x80000, "\u2325"),
                                           row("shift", 0x200, 0x20000, "\u21E7"),
                                           row("command", 0x100, 0x100000, "\u2318")));
}

TEST(HotKeySpecTest, EightWordsNameTheFourModifiers) {
    const std::map<std::string, std::string, std::less<>> expected{
        {"CONTROL", "control"}, {"CTRL", "control"}, {"OPTION", "option"},   {"OPT", "option"},
        {"ALT", "option"},      {"SHIFT", "shift"},  {"COMMAND", "command"}, {"CMD", "command"}};
    EXPECT_EQ(modifierAliases(), expected);
}

TEST(HotKeySpecTest, SeventyThreeKeysHaveTheirCodes) {
    // By code, so that a slip in the table under test is not repeated here.
    const std::map<std::uint32_t, std::string> expected{{0, "A"},
                                                        {1, "S"},
                                                        {2, "D"},
                                                        {3, "F"},
                                                        {4, "H"},
                                                        {5, "G"},
                                                        {6, "Z"},
                                                        {7, "X"},
                                                        {8, "C"},
                                                        {9, "V"},
                                                        {11, "B"},
                                                        {12, "Q"},
                                                        {13, "W"},
                                                        {14, "E"},
                                                        {15, "R"},
                                                        {16, "Y"},
                                                        {17, "T"},
                                                        {18, "1"},
                                                        {19, "2"},
                                                        {20, "3"},
                                                        {21, "4"},
                                                        {22, "6"},
                                                        {23, "5"},
                                                        {24, "EQUALS"},
                                                        {25, "9"},
                                                        {26, "7"},
                                                        {27, "MINUS"},
                                                        {28, "8"},
                                                        {29, "0"},
                                                        {30, "RIGHTBRACKET"},
                                                        {31, "O"},
                                                        {32, "U"},
                                                        {33, "LEFTBRACKET"},
                                                        {34, "I"},
                                                        {35, "P"},
                                                        {36, "RETURN"},
                                                        {37, "L"},
                                                        {38, "J"},
                                                        {39, "QUOTE"},
                                                        {40, "K"},
                                                        {41, "SEMICOLON"},
                                                        {42, "BACKSLASH"},
                                                        {43, "COMMA"},
                                                        {44, "SLASH"},
                                                        {45, "N"},
                                                        {46, "M"},
                                                        {47, "PERIOD"},
                                                        {48, "TAB"},
                                                        {49, "SPACE"},
                                                        {50, "GRAVE"},
                                                        {51, "DELETE"},
                                                        {53, "ESCAPE"},
                                                        {96, "F5"},
                                                        {97, "F6"},
                                                        {98, "F7"},
                                                        {99, "F3"},
                                                        {100, "F8"},
                                                        {101, "F9"},
                                                        {103, "F11"},
                                                        {109, "F10"},
                                                        {111, "F12"},
                                                        {115, "HOME"},
                                                        {116, "PAGEUP"},
                                                        {117, "FORWARDDELETE"},
                                                        {118, "F4"},
                                                        {119, "END"},
                                                        {120, "F2"},
                                                        {121, "PAGEDOWN"},
                                                        {122, "F1"},
                                                        {123, "LEFT"},
                                                        {124, "RIGHT"},
                                                        {125, "DOWN"},
                                                        {126, "UP"}};
    EXPECT_EQ(virtualKeyCodes().size(), 73u);
    EXPECT_EQ(keyNamesByCode(), expected);
}

TEST(HotKeySpecTest, EveryKeyCodeRoundTrips) {
    ASSERT_EQ(keyNamesByCode().size(), virtualKeyCodes().size());
    for (const auto& [name, code] : virtualKeyCodes()) {
        EXPECT_EQ(keyNamesByCode().at(code), name);
    }
}

TEST(HotKeySpecTest, TwentyFiveKeysAreShownByASign) {
    const std::map<std::string, std::string, std::less<>> expected{
        {"SPACE", "Space"},    {"RETURN", "\u21A9"},  {"TAB", "\u21E5"},
        {"ESCAPE", "\u238B"},  {"SEMICOLON", ";"},    {"QUOTE", "'"},
        {"COMMA", ","},        {"PERIOD", "."},       {"SLASH", "/"},
        {"BACKSLASH", "\x5C"}, {"MINUS", "-"},        {"EQUALS", "="},
        {"LEFTBRACKET", "["},  {"RIGHTBRACKET", "]"}, {"GRAVE", "`"},
        {"LEFT", "\u2190"},    {"RIGHT", "\u2192"},   {"DOWN", "\u2193"},
        {"UP", "\u2191"},      {"DELETE", "\u232B"},  {"FORWARDDELETE", "\u2326"},
        {"HOME", "\u2196"},    {"END", "\u2198"},     {"PAGEUP", "\u21DE"},
        {"PAGEDOWN", "\u21DF"}};
    EXPECT_EQ(expected.size(), 25u);
    EXPECT_EQ(keyDisplayNames(), expected);
}

TEST(HotKeySpecTest, OnlyKnownKeysHaveASign) {
    for (const auto& [name, shown] : keyDisplayNames()) {
        EXPECT_TRUE(virtualKeyCodes().contains(name)) << name;
    }
}

TEST(HotKeySpecTest, CaseAndSpacingAreFree) {
    EXPECT_EQ(HotKeySpec::parse(" Control , Shift , f5 "), spec("F5", {"control", "shift"}));
    EXPECT_EQ(HotKeySpec::parse("\tcTrL\t,\u00A0aLt ,k"), spec("K", {"control", "option"}));
}

TEST(HotKeySpecTest, LineBreaksAreNoSpacing) {
    EXPECT_EQ(HotKeySpec::parse("cmd,k\n"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("cmd\n,k"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("cmd\n,alt,k"), spec("K", {"option"}));
}

TEST(HotKeySpecTest, EmptyPiecesAndATrailingCommaAreHarmless) {
    EXPECT_EQ(HotKeySpec::parse("command,K,"), spec("K", {"command"}));
    EXPECT_EQ(HotKeySpec::parse(",,command, ,K, ,"), spec("K", {"command"}));
}

TEST(HotKeySpecTest, AKeyAloneFails) {
    EXPECT_EQ(HotKeySpec::parse("K"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse(",K,"), std::nullopt);
}

TEST(HotKeySpecTest, NothingAtAllFails) {
    EXPECT_EQ(HotKeySpec::parse(""), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse(" , \t,"), std::nullopt);
}

TEST(HotKeySpecTest, UnknownModifierWordsAreIgnoredNextToAKnownOne) {
    EXPECT_EQ(HotKeySpec::parse("hyper,cmd,K"), spec("K", {"command"}));
    EXPECT_EQ(HotKeySpec::parse("cmd,J,K"), spec("K", {"command"}));
}

TEST(HotKeySpecTest, OnlyUnknownModifierWordsFail) {
    EXPECT_EQ(HotKeySpec::parse("foo,F5"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("J,K"), std::nullopt);
}

TEST(HotKeySpecTest, ShortWordsNameModifiers) {
    EXPECT_EQ(HotKeySpec::parse("opt,K"), spec("K", {"option"}));
    EXPECT_EQ(HotKeySpec::parse("ctrl, alt, k"), spec("K", {"control", "option"}));
}

TEST(HotKeySpecTest, RepeatsCollapseAndTheOrderIsCanonical) {
    EXPECT_EQ(HotKeySpec::parse("shift,cmd,shift,space"), spec("SPACE", {"shift", "command"}));
    EXPECT_EQ(HotKeySpec::parse("cmd,shift,alt,ctrl,opt,a"),
              spec("A", {"control", "option", "shift", "command"}));
}

TEST(HotKeySpecTest, APlusSignSeparatesNothing) {
    EXPECT_EQ(HotKeySpec::parse("cmd+K"), std::nullopt);
}

TEST(HotKeySpecTest, UnknownKeysAndNoneFail) {
    EXPECT_EQ(HotKeySpec::parse("command,NONE"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("none"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("command,F13"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("K,command"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse("command,\xFF"), std::nullopt);
    EXPECT_EQ(HotKeySpec::parse(std::string("command,K\0", 10)), std::nullopt);
}

TEST(HotKeySpecTest, CanonicalTextIsJoinedByCommas) {
    EXPECT_EQ(spec("K", {"control", "option"}).canonicalText(), "control,option,K");
    EXPECT_EQ(spec("SPACE", {"shift", "command"}).canonicalText(), "shift,command,SPACE");
}

TEST(HotKeySpecTest, DisplayShowsSymbolsThenTheKey) {
    EXPECT_EQ(spec("K", {"control", "option"}).display(), "⌃⌥K");
    EXPECT_EQ(spec("SPACE", {"shift", "command"}).display(), "⇧⌘Space");
    EXPECT_EQ(spec("LEFT", {"command"}).display(), "⌘←");
    EXPECT_EQ(spec("F12", {"control", "option", "shift", "command"}).display(), "⌃⌥⇧⌘F12");
    EXPECT_EQ(spec("7", {}).display(), "7");
}

TEST(HotKeySpecTest, DisplayAndMaskWalkTheCanonicalOrder) {
    const HotKeySpec unordered = spec("A", {"command", "control"});
    EXPECT_EQ(unordered.display(), "⌃⌘A");
    EXPECT_EQ(unordered.carbonMask(), 0x1100u);
}

TEST(HotKeySpecTest, CarbonMaskIsTheUnionOfTheBits) {
    EXPECT_EQ(spec("K", {}).carbonMask(), 0u);
    EXPECT_EQ(spec("K", {"shift"}).carbonMask(), 0x200u);
    EXPECT_EQ(spec("K", {"control", "option", "shift", "command"}).carbonMask(), 0x1B00u);
    EXPECT_EQ(spec("K", {"hyper"}).carbonMask(), 0u);
}

TEST(HotKeySpecTest, AKeyPressKeepsTheFourModifiersOnly) {
    constexpr std::uint32_t capsLock = 0x10000;
    constexpr std::uint32_t function = 0x800000;
    EXPECT_EQ(HotKeySpec::from(40, 0x40000 | 0x100000 | capsLock | function | 0x100),
              spec("K", {"control", "command"}));
}

TEST(HotKeySpecTest, AKeyPressWithoutAModifierFails) {
    EXPECT_EQ(HotKeySpec::from(40, 0), std::nullopt);
    EXPECT_EQ(HotKeySpec::from(40, 0x10000 | 0x800000), std::nullopt);
}

TEST(HotKeySpecTest, KeypadKeysAndThoseFromF13OnCannotBeCaptured) {
    constexpr std::uint32_t keypadZero = 82, keypadEnter = 76, f13 = 105, f20 = 90;
    for (const std::uint32_t code : {keypadZero, keypadEnter, f13, f20, 10u, 52u, 127u, ~0u}) {
        EXPECT_EQ(HotKeySpec::from(code, 0x100000), std::nullopt) << code;
    }
}

TEST(HotKeySpecTest, EverySpecEqualsTheParseOfItsCanonicalTextAndItsKeyPress) {
    for (const auto& [key, code] : virtualKeyCodes()) {
        for (const auto& modifiers : everyModifierSet()) {
            const HotKeySpec expected = specOf(key, modifiers);
            std::uint32_t flags = 0;
            std::uint32_t mask = 0;
            for (const ModifierKey& modifier : modifiers) {
                flags |= modifier.cocoa;
                mask |= modifier.carbon;
            }
            EXPECT_EQ(HotKeySpec::parse(expected.canonicalText()), expected);
            EXPECT_EQ(HotKeySpec::from(code, flags), expected);
            EXPECT_EQ(expected.carbonMask(), mask);
        }
    }
}

TEST(HotKeySpecTest, EverySpecIsShownDifferently) {
    std::set<std::string> shown;
    for (const auto& [key, code] : virtualKeyCodes()) {
        for (const auto& modifiers : everyModifierSet()) {
            shown.insert(specOf(key, modifiers).display());
        }
    }
    EXPECT_EQ(shown.size(), 73u * 15u);
}

TEST(HotKeySpecTest, EveryPairOfWordsParsesInAnyOrderAndCase) {
    for (const auto& [first, firstName] : modifierAliases()) {
        for (const auto& [second, secondName] : modifierAliases()) {
            std::vector<std::string> expected;
            for (const ModifierKey& modifier : modifierOrder) {
                if (modifier.name == firstName || modifier.name == secondName) {
                    expected.emplace_back(modifier.name);
                }
            }
            const std::string lower = lowercased(first);
            EXPECT_EQ(HotKeySpec::parse(joined({lower, second, "pageUp"}, " , ")),
                      spec("PAGEUP", expected));
        }
    }
}

TEST(ShortcutCaptureTest, OutcomesDiffer) {
    const HotKeySpec k = spec("K", {"command"});
    EXPECT_EQ(ShortcutCapture::captured(k), ShortcutCapture::captured(k));
    EXPECT_NE(ShortcutCapture::captured(k), ShortcutCapture::captured(spec("J", {"command"})));
    const std::vector<ShortcutCapture> all{
        ShortcutCapture::captured(k), ShortcutCapture::cancelled(),
        ShortcutCapture::needsModifier(), ShortcutCapture::unsupportedKey()};
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = 0; j < all.size(); ++j) EXPECT_EQ(all[i] == all[j], i == j);
    }
}

}  // namespace
}  // namespace quorvel
