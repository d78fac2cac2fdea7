#include "platform/linux/WindowManagerTraits.hpp"

#include <gtest/gtest.h>

namespace quorvel::native {
namespace {

TEST(WindowManagerTraitsTest, NothingIsAssumedOfAnUnknownName) {
    EXPECT_EQ(traitsByName("", false), WindowManagerTraits{});
    EXPECT_EQ(traitsByName("openbox", false), WindowManagerTraits{}) << "names are exact";
    EXPECT_EQ(traitsByName("My Openbox", false), WindowManagerTraits{});
    EXPECT_EQ(WindowManagerTraits{}.offScreen, OffScreenMoves::unknown);
}

TEST(WindowManagerTraitsTest, VersionBehindTheNameDoesNotMatter) {
    EXPECT_EQ(traitsByName("IceWM 3.3.1 (Linux 6.1/x86_64)", false), traitsByName("IceWM", false));
    EXPECT_NE(traitsByName("IceWM 3.3.1", false), WindowManagerTraits{});
}

TEST(WindowManagerTraitsTest, MarcoIsNotItsAncestor) {
    EXPECT_TRUE(traitsByName("Metacity (Marco)", true).paintsOverriddenFrames);
    EXPECT_FALSE(traitsByName("Metacity", true).paintsOverriddenFrames);
    EXPECT_TRUE(traitsByName("Metacity", false).paintsOverriddenFrames);
}

TEST(WindowManagerTraitsTest, DescendantsOfMutterPaintWhereTheyBelieveAWindowToBe) {
    for (const char* name : {"Mutter", "Mutter (Muffin)", "GNOME Shell"}) {
        EXPECT_FALSE(traitsByName(name, true).paintsOverriddenFrames) << name;
    }
}

}  // namespace
}  // namespace quorvel::native
