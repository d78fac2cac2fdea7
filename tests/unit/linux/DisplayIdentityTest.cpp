#include "platform/linux/DisplayIdentity.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tests/support/EdidBlock.hpp"

namespace quorvel::native {
namespace {

using test::EdidBlock;

ConnectedDisplay display(const std::string& connector, const EdidBlock& edid) {
    return {connector, parseEdid(edid.bytes())};
}

std::string identifierOf(const ConnectedDisplay& only) {
    return displayIdentifiers({only}).at(0);
}

TEST(DisplayIdentityTest, EdidIsRead) {
    const auto edid = parseEdid(EdidBlock{}.bytes());
    ASSERT_TRUE(edid);
    EXPECT_EQ(*edid, (Edid{0x1E6D, 0x5B09, 123456, "304NTABC", "LG ULTRAWIDE"}));
}

TEST(DisplayIdentityTest, EdidWithoutTextsIsRead) {
    const auto edid = parseEdid(EdidBlock{.serialText = "", .name = ""}.bytes());
    ASSERT_TRUE(edid);
    EXPECT_EQ(edid->serialText, "");
    EXPECT_EQ(edid->name, "");
}

TEST(DisplayIdentityTest, TextOfFullLengthAndUnprintableCharactersAreRead) {
    EXPECT_EQ(parseEdid(EdidBlock{.name = "ABCDEFGHIJKLM"}.bytes())->name, "ABCDEFGHIJKLM");
    EXPECT_EQ(parseEdid(EdidBlock{.name = "  A\x01\xFF B  "}.bytes())->name, "A B");
}

TEST(DisplayIdentityTest, MoreBlocksAreNoObstacle) {
    auto bytes = EdidBlock{}.bytes();
    bytes.resize(256, 0xAA);
    EXPECT_EQ(parseEdid(bytes), parseEdid(EdidBlock{}.bytes()));
}

TEST(DisplayIdentityTest, DamagedEdidIsNone) {
    const auto good = EdidBlock{}.bytes();
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_EQ(parseEdid(std::span(good).first(length)), std::nullopt) << length;
    }
    for (std::size_t at = 0; at < good.size(); ++at) {
        auto damaged = good;
        damaged[at] ^= 0x10;
        EXPECT_EQ(parseEdid(damaged), std::nullopt) << "byte " << at;
    }
    EXPECT_EQ(parseEdid(std::vector<std::uint8_t>(128)), std::nullopt);
}

TEST(DisplayIdentityTest, AnyBytesWithAValidChecksumAreTaken) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        auto bytes = EdidBlock{}.bytes();
        for (std::size_t at = 8; at < 127; ++at) bytes[at] = static_cast<std::uint8_t>(random());
        bytes[127] = 0;
        bytes[127] =
            static_cast<std::uint8_t>(256 - std::accumulate(bytes.begin(), bytes.end(), 0U) % 256);
        const auto edid = parseEdid(bytes);
        ASSERT_TRUE(edid);
        for (const char c : edid->name + edid->serialText) EXPECT_TRUE(c >= 0x20 && c < 0x7F);
    }
}

TEST(DisplayIdentityTest, NameBasedUuidIsVersionFive) {
    // As any other implementation of RFC 4122 makes them.
    EXPECT_EQ(nameBasedUuid(""), "28153499-8150-54C9-B68D-F505AD956535");
    EXPECT_EQ(nameBasedUuid("connector:HDMI-1"), "E5B6C2AF-BF5B-542C-97BB-ECB70F555FA3");
}

TEST(DisplayIdentityTest, IdentifiersNeverChangeBetweenVersions) {
    EXPECT_EQ(identifierOf(display("DP-1", {})), "76537028-9A4B-5366-91F2-E93B3912D328");
    EXPECT_EQ(identifierOf({"HDMI-1", {}}), "E5B6C2AF-BF5B-542C-97BB-ECB70F555FA3");
}

TEST(DisplayIdentityTest, IdentifierFollowsTheDisplayToAnotherConnector) {
    EXPECT_EQ(identifierOf(display("DP-1", {})), identifierOf(display("HDMI-3", {})));
    EXPECT_EQ(identifierOf(display("DP-1", {})),
              identifierOf(display("DP-1", {.name = "renamed by firmware"})));
}

TEST(DisplayIdentityTest, EveryPartOfTheIdentityCounts) {
    const std::set<std::string> identifiers{
        identifierOf(display("DP-1", {})),
        identifierOf(display("DP-1", {.manufacturer = 1})),
        identifierOf(display("DP-1", {.product = 1})),
        identifierOf(display("DP-1", {.serial = 1})),
        identifierOf(display("DP-1", {.serialText = "other"})),
        identifierOf(display("DP-1", {.serialText = ""})),
    };
    EXPECT_EQ(identifiers.size(), 6U);
}

TEST(DisplayIdentityTest, WithoutEdidTheConnectorCounts) {
    EXPECT_EQ(identifierOf({"HDMI-1", {}}), identifierOf({"HDMI-1", parseEdid({})}));
    EXPECT_NE(identifierOf({"HDMI-1", {}}), identifierOf({"HDMI-2", {}}));
}

TEST(DisplayIdentityTest, DisplaysThatTheEdidCannotTellApartTakeTheConnectorIn) {
    const ConnectedDisplay one = display("DP-1", {});
    const ConnectedDisplay two = display("DP-2", {});
    const ConnectedDisplay other = display("DP-3", {.serial = 9});
    const auto identifiers = displayIdentifiers({one, other, two});
    EXPECT_NE(identifiers[0], identifiers[2]);
    EXPECT_NE(identifiers[0], identifierOf(one));
    EXPECT_NE(identifiers[2], identifierOf(two));
    EXPECT_EQ(identifiers[1], identifierOf(other)) << "one that nobody shares keeps its own";
    EXPECT_EQ(displayIdentifiers({two, one}),
              (std::vector<std::string>{identifiers[2], identifiers[0]}))
        << "whatever the order";
}

TEST(DisplayIdentityTest, NameIsTheEdidsElseTheConnectors) {
    EXPECT_EQ(display("DP-1", {}).name(), "LG ULTRAWIDE");
    EXPECT_EQ(display("DP-1", {.name = ""}).name(), "DP-1");
    EXPECT_EQ((ConnectedDisplay{"DP-1", {}}).name(), "DP-1");
}

TEST(DisplayIdentityTest, PanelsAreBuiltIn) {
    for (const char* connector : {"eDP-1", "eDP", "eDP1", "eDP-1-1", "LVDS-1", "LVDS1", "DSI-1"}) {
        EXPECT_TRUE((ConnectedDisplay{connector, {}}).isBuiltin()) << connector;
    }
    for (const char* connector : {"DP-1", "HDMI-A-0", "DVI-I-1", "VGA-1", "screen", "DUMMY0", ""}) {
        EXPECT_FALSE((ConnectedDisplay{connector, {}}).isBuiltin()) << connector;
    }
}

}  // namespace
}  // namespace quorvel::native
