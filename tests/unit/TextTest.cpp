#include "platform/Text.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace quorvel {
namespace {

TEST(TextTest, TrimmedDropsSpacesAndLineBreaksAtBothEndsOnly) {
    EXPECT_EQ(trimmed(" \t\r\n a b \n\v\f "), "a b");
    EXPECT_EQ(trimmed("a"), "a");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(" \n "), "");
}

TEST(TextTest, TrimmedKnowsTheWhiteSpaceBeyondAscii) {
    // no-break space, thin space, ideographic space, next line, line and paragraph separator
    EXPECT_EQ(trimmed("\u00A0\u2009\u3000\u0085\u2028\u2029x\u3000"), "x");
    EXPECT_EQ(trimmed("\u00E9 \u4E2D"), "\u00E9 \u4E2D");
}

TEST(TextTest, TrimmedOfSpacesKeepsLineBreaks) {
    EXPECT_EQ(trimmedOfSpaces(" \t\n a \u00A0"), "\n a");
    EXPECT_EQ(trimmedOfSpaces("\u0085"), "\u0085");
    EXPECT_EQ(trimmedOfSpaces(" \t "), "");
}

TEST(TextTest, MalformedBytesAreNeverDropped) {
    const std::string loneContinuation = "\x85";
    const std::string loneNoBreakSpaceByte = "\xA0";
    const std::string overlongSpace = "\xC0\xA0";
    const std::string surrogate = "\xED\xA0\x80";
    const std::string beyondTheLastCode = "\xF4\x90\x80\x80";
    const std::string cutShort = "\xE2\x80";
    for (const std::string& bytes : {loneContinuation, loneNoBreakSpaceByte, overlongSpace,
                                     surrogate, beyondTheLastCode, cutShort, std::string("\xFF")}) {
        EXPECT_EQ(trimmed(" " + bytes + "\n"), bytes);
        EXPECT_EQ(trimmedOfSpaces(" " + bytes), bytes);
        EXPECT_EQ(lettersOnly("a-" + bytes), "a" + bytes);
        EXPECT_EQ(lowercased(bytes), bytes);
        EXPECT_EQ(uppercased(bytes), bytes);
    }
}

TEST(TextTest, CaseIsFoldedForAsciiOnly) {
    EXPECT_EQ(lowercased("AZaz09[@`{ \u00C4"), "azaz09[@`{ \u00C4");
    EXPECT_EQ(uppercased("AZaz09[@`{ \u00E4"), "AZAZ09[@`{ \u00E4");
}

TEST(TextTest, LettersOnlyDropsDigitsPunctuationAndSpace) {
    EXPECT_EQ(lettersOnly("Top-Left_2 (new)"), "topleftnew");
    EXPECT_EQ(lettersOnly("42 - _"), "");
    EXPECT_EQ(lettersOnly(""), "");
}

TEST(TextTest, LettersOnlyDropsTheSignsAndDigitsOfOtherScripts) {
    // en dash, no-break space, full-width hyphen and digit, an emoji with its variation selector
    EXPECT_EQ(lettersOnly("top\u2013left\u00A0\uFF0D\uFF12\u2764\uFE0F\U0001F600"), "topleft");
    EXPECT_EQ(lettersOnly("left\u0663"), "left");
}

TEST(TextTest, LettersOnlyKeepsForeignLettersAndTheirAccents) {
    EXPECT_EQ(lettersOnly("L\u00E9ft"), "l\u00E9ft");
    EXPECT_EQ(lettersOnly("le\u0301ft"), "le\u0301ft");
    EXPECT_EQ(lettersOnly("left\u4E2D\u0439"), "left\u4E2D\u0439");
}

TEST(TextTest, LastPathComponentIgnoresTrailingSlashes) {
    EXPECT_EQ(lastPathComponent("/usr/share/applications/firefox.desktop"), "firefox.desktop");
    EXPECT_EQ(lastPathComponent("/Applications/X.app//"), "X.app");
    EXPECT_EQ(lastPathComponent("plain"), "plain");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent("///"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(TextTest, NameWithoutExtensionDropsTheLastExtensionOnly) {
    EXPECT_EQ(nameWithoutExtension("/a/org.gnome.Terminal.desktop"), "org.gnome.Terminal");
    EXPECT_EQ(nameWithoutExtension("/a.d/xterm"), "xterm");
    EXPECT_EQ(nameWithoutExtension("/a/.profile"), ".profile");
    EXPECT_EQ(nameWithoutExtension("/a/dot."), "dot.");
    EXPECT_EQ(nameWithoutExtension("/"), "/");
}

TEST(TextTest, JoinedPutsTheSeparatorBetweenOnly) {
    EXPECT_EQ(joined({}, ","), "");
    EXPECT_EQ(joined({"a"}, ","), "a");
    EXPECT_EQ(joined({"a", "", "b"}, ", "), "a, , b");
}

TEST(TextTest, FormattedFillsTheMarksInOrder) {
    EXPECT_EQ(formatted("%@ took %d of %u at %.0f", "x", -3, std::uint32_t{4'000'000'000}, 1.6),
              "x took -3 of 4000000000 at 2");
    EXPECT_EQ(formatted("%d%%", 5), "5%%");
}

TEST(TextTest, FormattedNeverReadsMarksInsideAnArgument) {
    EXPECT_EQ(formatted("%@ and %@", std::string("%@ %d"), "b"), "%@ %d and b");
}

TEST(TextTest, FormattedLeavesMarksWithoutAnArgumentAsTheyStand) {
    EXPECT_EQ(formatted("%@ %@ 100%", "a"), "a %@ 100%");
    EXPECT_EQ(formatted(""), "");
}

TEST(TextTest, FormattedRoundsHalvesToTheEvenNeighbour) {
    EXPECT_EQ(formatted("%.0f %.0f %.0f", 0.5, 1.5, -2.5), "0 2 -2");
}

}  // namespace
}  // namespace quorvel
