#include "main/tucking/AXPermission.hpp"

#include <gtest/gtest.h>

#include "platform/simulated/SimulatedTrust.hpp"

namespace quorvel {
namespace {

TEST(AXPermissionTest, PromptsAndOpensThePane) {
    SimulatedTrust trust;
    trust.granted = false;
    trust.hasSettingsPane = true;
    AXPermission::promptAndOpenSettings(trust);
    EXPECT_EQ(trust.promptCount, 1);
    EXPECT_EQ(trust.settingsPaneCount, 1);
}

TEST(AXPermissionTest, PromptsAloneWhereThereIsNoPane) {
    SimulatedTrust trust;
    trust.granted = false;
    AXPermission::promptAndOpenSettings(trust);
    EXPECT_EQ(trust.promptCount, 1);
    EXPECT_EQ(trust.settingsPaneCount, 0);
}

TEST(AXPermissionTest, DoesNotPromptForWhatIsGranted) {
    SimulatedTrust trust;
    AXPermission::promptAndOpenSettings(trust);
    EXPECT_EQ(trust.promptCount, 0);
}

TEST(AXPermissionTest, ASecondRequestWhileTheMessageIsUpShowsNoSecondOne) {
    SimulatedTrust trust;
    trust.granted = false;
    AXPermission::promptAndOpenSettings(trust);
    AXPermission::promptAndOpenSettings(trust);
    EXPECT_EQ(trust.promptCount, 1);
}

}  // namespace
}  // namespace quorvel
