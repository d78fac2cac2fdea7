#include "main/shell/LoginItem.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Text.hpp"
#include "platform/simulated/SimulatedFiles.hpp"
#include "platform/simulated/SimulatedLog.hpp"
#include "platform/simulated/SimulatedLoginItem.hpp"
#include "tests/support/MemoryDefaults.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* heldBack =
    "macOS is holding this back. Open System Settings → General → Login Items and allow Quorvel.";

class LoginItemTest : public testing::Test {
protected:
    void launch() { LoginItem::registerOnFirstLaunch(settings, service, files, log); }

    MemoryDefaults defaults;
    Settings settings{defaults};
    SimulatedLoginItem service;
    SimulatedFiles files;
    SimulatedLog log;
};

TEST_F(LoginItemTest, AWritableVolumeIsStableAndAReadOnlyOneIsNot) {
    EXPECT_TRUE(LoginItem::isInStableLocation(service, files));
    files.readOnlyVolumes = {"/opt/quorvel"};
    EXPECT_FALSE(LoginItem::isInStableLocation(service, files));
    service.program = "/opt/quorvel-2/Quorvel";
    EXPECT_TRUE(LoginItem::isInStableLocation(service, files));
}

TEST_F(LoginItemTest, AVolumeThatDoesNotTellIsStable) {
    files.readOnlyVolumes = {"/opt"};
    files.silentVolumes = {"/opt/quorvel"};
    EXPECT_TRUE(LoginItem::isInStableLocation(service, files));
}

TEST_F(LoginItemTest, ATranslocatedCopyIsNotStable) {
    service.program = "/var/folders/AppTranslocation/1234/Quorvel";
    EXPECT_FALSE(LoginItem::isInStableLocation(service, files));
    service.program = "/var/folders/AppTranslocations/1234/Quorvel";
    EXPECT_TRUE(LoginItem::isInStableLocation(service, files));
}

TEST_F(LoginItemTest, EnablingWhatIsEnabledRegistersNothingAndSucceeds) {
    service.current = LoginItemStatus::enabled;
    EXPECT_EQ(LoginItem::setEnabled(true, service), std::nullopt);
    EXPECT_EQ(service.registerCount, 0);
}

TEST_F(LoginItemTest, EnablingRegistersFromEveryOtherState) {
    for (const auto before : {LoginItemStatus::notRegistered, LoginItemStatus::notFound,
                              LoginItemStatus::requiresApproval}) {
        service.current = before;
        service.registerCount = 0;
        EXPECT_EQ(LoginItem::setEnabled(true, service), std::nullopt);
        EXPECT_EQ(service.registerCount, 1);
        EXPECT_EQ(service.current, LoginItemStatus::enabled);
    }
}

TEST_F(LoginItemTest, ARegistrationThatAwaitsApprovalIsAnErrorForTheUser) {
    service.needsApproval = true;
    EXPECT_EQ(LoginItem::setEnabled(true, service), LoginItemError{heldBack});
    EXPECT_EQ(service.current, LoginItemStatus::requiresApproval) << "it stays registered";
}

TEST_F(LoginItemTest, WhatThePlatformRefusesIsTheError) {
    service.registrationError = "No space left on device";
    EXPECT_EQ(LoginItem::setEnabled(true, service), LoginItemError{"No space left on device"});
    service.current = LoginItemStatus::enabled;
    service.unregistrationError = "Read-only file system";
    EXPECT_EQ(LoginItem::setEnabled(false, service), LoginItemError{"Read-only file system"});
}

TEST_F(LoginItemTest, DisablingWhatIsNotRegisteredAsksForNothingAndSucceeds) {
    service.unregistrationError = "must not be asked";
    EXPECT_EQ(LoginItem::setEnabled(false, service), std::nullopt);
    EXPECT_EQ(service.unregisterCount, 0);
}

TEST_F(LoginItemTest, DisablingUnregistersFromEveryOtherState) {
    for (const auto before :
         {LoginItemStatus::enabled, LoginItemStatus::requiresApproval, LoginItemStatus::notFound}) {
        service.current = before;
        service.unregisterCount = 0;
        EXPECT_EQ(LoginItem::setEnabled(false, service), std::nullopt);
        EXPECT_EQ(service.unregisterCount, 1);
    }
}

TEST_F(LoginItemTest, FromAMountedImageEachLaunchSaysSoAndDoesNothing) {
    service.program = "/media/image/Quorvel";
    files.readOnlyVolumes = {"/media/image"};
    launch();
    launch();
    const std::string line =
        "Quorvel: not registering for login yet — running from /media/image/Quorvel";
    EXPECT_THAT(log.lines, ElementsAre(line, line));
    EXPECT_THAT(defaults.values, IsEmpty());
    EXPECT_EQ(service.registerCount, 0);

    files.readOnlyVolumes.clear();
    launch();
    EXPECT_EQ(log.lines.back(), "Quorvel: registered to open at login");
}

TEST_F(LoginItemTest, TheFirstLaunchFromAStablePlaceRegistersAndNoLaterOne) {
    launch();
    EXPECT_THAT(log.lines, ElementsAre("Quorvel: registered to open at login"));
    EXPECT_EQ(defaults.values.at("DidOfferLoginItem"), Value(true));
    EXPECT_EQ(service.registerCount, 1);

    service.current = LoginItemStatus::notRegistered;  // by the user
    launch();
    EXPECT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(service.registerCount, 1);
}

TEST_F(LoginItemTest, AFailureIsOneLineAndNotTriedAgain) {
    service.registrationError = "Permission denied";
    launch();
    launch();
    EXPECT_THAT(log.lines, ElementsAre("Quorvel: could not register to open at login — "
                                       "Permission denied"));
    EXPECT_EQ(service.registerCount, 1);
}

TEST_F(LoginItemTest, AwaitingApprovalIsLoggedWithTheTextForTheUser) {
    service.needsApproval = true;
    launch();
    EXPECT_THAT(log.lines, ElementsAre(std::string("Quorvel: could not register to open at "
                                                   "login — ") +
                                       heldBack));
}

TEST_F(LoginItemTest, TheOfferIsNotedBeforeItIsMade) {
    struct Watching : SimulatedLoginItem {
        explicit Watching(const MemoryDefaults& defaults) : defaults(defaults) {}
        std::optional<std::string> registerItem() override {
            wasNoted = defaults.values.contains("DidOfferLoginItem");
            return SimulatedLoginItem::registerItem();
        }
        const MemoryDefaults& defaults;
        bool wasNoted = false;
    } watching(defaults);
    LoginItem::registerOnFirstLaunch(settings, watching, files, log);
    EXPECT_TRUE(watching.wasNoted);
}

TEST_F(LoginItemTest, WithoutAPlaceToNoteItNothingIsRegistered) {
    defaults.refusesWrites = true;
    launch();
    EXPECT_EQ(service.registerCount, 0);
    EXPECT_THAT(log.lines, IsEmpty());
    defaults.refusesWrites = false;
    launch();
    EXPECT_EQ(service.registerCount, 1);
}

}  // namespace
}  // namespace quorvel
