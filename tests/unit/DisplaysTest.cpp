#include "main/settings/Displays.hpp"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

class FixedScreens : public Screens {
public:
    std::vector<Screen> list;

    std::vector<Screen> screens() const override { return list; }
    Subscription onChange(std::function<void()>) override { return {}; }
};

const std::string panelId = "8D1F5A60-0000-5000-8000-00000000000A";
const std::string monitorId = "8D1F5A60-0000-5000-8000-00000000000B";

DisplayInfo panel() {
    return {{panelId}, "Panel", {0, 0, 1280, 800}, true};
}
DisplayInfo monitor() {
    return {{monitorId}, "Monitor", {1280, 0, 1920, 1080}, false};
}

TEST(DisplayRefTest, BuiltinInAnyCaseAndWithSpacesIsTheAlias) {
    EXPECT_EQ(DisplayRef::parse("  BUILTIN \n"), DisplayRef{"builtin"});
    EXPECT_EQ(DisplayRef::parse("BuiltIn"), DisplayRef{"builtin"});
}

TEST(DisplayRefTest, EmptyTextAndALoneNewlineAreNoDisplay) {
    EXPECT_EQ(DisplayRef::parse(""), std::nullopt);
    EXPECT_EQ(DisplayRef::parse("\n"), std::nullopt);
    EXPECT_EQ(DisplayRef::parse(" \t\r\n"), std::nullopt);
}

TEST(DisplayRefTest, AnIdentifierIsTrimmedAndKeepsItsCase) {
    EXPECT_EQ(DisplayRef::parse(" aB-Cd "), DisplayRef{"aB-Cd"});
    EXPECT_EQ(DisplayRef::parse("built in"), DisplayRef{"built in"});
}

TEST(DisplaysTest, BuiltinResolvesToNothingWithoutABuiltInDisplay) {
    EXPECT_EQ(Displays::resolve({"builtin"}, {monitor()}), std::nullopt);
    EXPECT_EQ(Displays::resolve({"builtin"}, {}), std::nullopt);
}

TEST(DisplaysTest, BuiltinResolvesToThePanelWhereverItStands) {
    EXPECT_EQ(Displays::resolve({"builtin"}, {panel(), monitor()}), panel());
    EXPECT_EQ(Displays::resolve({"builtin"}, {monitor(), panel()}), panel());
}

TEST(DisplaysTest, TheFirstOfTwoBuiltInDisplaysIsTaken) {
    DisplayInfo second = panel();
    second.ref.raw = "OTHER";
    EXPECT_EQ(Displays::resolve({"builtin"}, {monitor(), second, panel()}), second);
}

TEST(DisplaysTest, ABuiltInDisplayResolvesByItsIdentifierToo) {
    EXPECT_EQ(Displays::resolve({panelId}, {monitor(), panel()}), panel());
}

TEST(DisplaysTest, AnIdentifierInAnotherCaseDoesNotResolve) {
    EXPECT_EQ(Displays::resolve({"8d1f5a60-0000-5000-8000-00000000000b"}, {panel(), monitor()}),
              std::nullopt);
    EXPECT_EQ(Displays::resolve({"BUILTIN"}, {panel()}), std::nullopt);
}

TEST(DisplaysTest, TheFirstOfEqualIdentifiersIsTaken) {
    DisplayInfo twin = monitor();
    twin.name = "Twin";
    EXPECT_EQ(Displays::resolve({monitorId}, {panel(), twin, monitor()}), twin);
}

TEST(DisplaysTest, AttachedScreensKeepTheirOrderAndData) {
    FixedScreens screens;
    screens.list = {{7, monitorId, "Monitor", {1280, 0, 1920, 1080}, false},
                    {0, panelId, "Panel", {0, 0, 1280, 800}, true}};
    EXPECT_EQ(Displays::attached(screens), (std::vector{monitor(), panel()}));
}

TEST(DisplaysTest, AScreenWithoutANumberIsLeftOutAndTheOthersKeepTheirOrder) {
    FixedScreens screens;
    screens.list = {{1, monitorId, "Monitor", {1280, 0, 1920, 1080}, false},
                    {std::nullopt, "X", "Nameless", {0, 0, 10, 10}, false},
                    {2, panelId, "Panel", {0, 0, 1280, 800}, true}};
    EXPECT_EQ(Displays::attached(screens), (std::vector{monitor(), panel()}));
}

TEST(DisplaysTest, AScreenWithoutAnIdentifierIsLeftOut) {
    FixedScreens screens;
    screens.list = {{1, std::nullopt, "Nameless", {0, 0, 10, 10}, true},
                    {2, "", "Blank", {0, 0, 10, 10}, true},
                    {3, panelId, "Panel", {0, 0, 1280, 800}, true}};
    EXPECT_EQ(Displays::attached(screens), std::vector{panel()});
}

TEST(DisplaysTest, EachSnapshotIsFresh) {
    FixedScreens screens;
    EXPECT_TRUE(Displays::attached(screens).empty());
    screens.list = {{3, panelId, "Panel", {0, 0, 1280, 800}, true}};
    EXPECT_EQ(Displays::attached(screens), std::vector{panel()});
}

}  // namespace
}  // namespace quorvel
