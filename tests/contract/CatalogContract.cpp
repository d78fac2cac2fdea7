#include <algorithm>

#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class CatalogContract : public Contract {
protected:
    const std::string paint = rig->install("Paint");
    const std::string notes = rig->install("notes");
    ApplicationCatalog& catalog = desktop.catalog;

    std::ptrdiff_t placeOf(const std::string& path) {
        const auto all = catalog.installed();
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&](const auto& each) { return each.path == path; });
        return found == all.end() ? -1 : found - all.begin();
    }
};

TEST_P(CatalogContract, InstalledProgramsAreListedByName) {
    ASSERT_GE(placeOf(paint), 0);
    ASSERT_GE(placeOf(notes), 0);
    EXPECT_LT(placeOf(notes), placeOf(paint)) << "capitals do not come first";
    const auto all = catalog.installed();
    EXPECT_EQ(all[static_cast<std::size_t>(placeOf(paint))].name, "Paint");
}

TEST_P(CatalogContract, NameOfAnEntryIsTheOneItGives) {
    EXPECT_EQ(catalog.nameOf(paint), "Paint");
}

TEST_P(CatalogContract, NameOfAnyOtherPathIsItsLastComponent) {
    EXPECT_EQ(catalog.nameOf("/opt/tools/Drawing.app"), "Drawing");
    EXPECT_EQ(catalog.nameOf("/usr/bin/xterm"), "xterm");
}

TEST_P(CatalogContract, WhatHasNoIconGetsAGenericOne) {
    const ApplicationIcon icon = catalog.iconOf("/usr/bin/xterm");
    EXPECT_TRUE(!icon.themeNames.empty() || !icon.file.empty());
    EXPECT_EQ(icon, catalog.iconOf("/opt/tools/absent"));
}

TEST_P(CatalogContract, ProgramInstalledLaterIsListedToo) {
    catalog.installed();
    const std::string later = rig->install("later");
    EXPECT_TRUE(rig->until([&] { return placeOf(later) >= 0; }));
    EXPECT_EQ(catalog.nameOf(later), "later");
}

INSTANTIATE_TEST_SUITE_P(, CatalogContract, testing::Values(simulatedRig(), bareRig()), rigName);

class LoginItemContract : public Contract {
protected:
    LoginItemService& loginItem = desktop.loginItem;
};

TEST_P(LoginItemContract, TheProgramIsNamedByItsAbsolutePath) {
    EXPECT_TRUE(loginItem.programPath().starts_with('/'));
}

TEST_P(LoginItemContract, NotRegisteredAtFirst) {
    EXPECT_EQ(loginItem.status(), LoginItemStatus::notRegistered);
}

TEST_P(LoginItemContract, RegisteringEnablesAndUnregisteringUndoesIt) {
    EXPECT_EQ(loginItem.registerItem(), std::nullopt);
    EXPECT_EQ(loginItem.status(), LoginItemStatus::enabled);
    EXPECT_EQ(loginItem.registerItem(), std::nullopt);
    EXPECT_EQ(loginItem.status(), LoginItemStatus::enabled);
    EXPECT_EQ(loginItem.unregisterItem(), std::nullopt);
    EXPECT_EQ(loginItem.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(loginItem.unregisterItem(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, LoginItemContract, testing::Values(simulatedRig(), bareRig()), rigName);

}  // namespace
}  // namespace quorvel::test
