#include <algorithm>

#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class ApplicationsContract : public Contract {
protected:
    const std::string notes = rig->install("notes");
    const std::string paint = rig->install("paint");
    Applications& applications = desktop.applications;

    const Rect left{100, 100, 300, 200};
    const Rect right{600, 100, 300, 200};

    std::optional<RunningApplication> running(const std::string& path) {
        for (const RunningApplication& each : applications.runningApplications()) {
            if (each.bundlePath == path) return each;
        }
        return std::nullopt;
    }
    /// Throws when it never runs.
    RunningApplication awaited(const std::string& path) {
        if (!rig->until([&] { return running(path).has_value(); })) {
            throw std::runtime_error(path + " is not running");
        }
        return *running(path);
    }
    std::string front() {
        const auto application = applications.frontmostApplication();
        return application ? application->bundlePath.value_or("(no path)") : "";
    }
    /// Once another application has come to the front and this one was hidden.
    bool isHiddenBehindAnother(const RunningApplication& application) {
        rig->openWindow(paint, right);
        if (!becomesFront(paint)) return false;
        applications.hide(application);
        return rig->until([&] { return applications.isHidden(application); });
    }
    bool becomesFront(const std::string& path) {
        return rig->until([&] { return front() == path; });
    }

    std::vector<std::string> events;
    Subscription activated = applications.onActivated(
        [this](const RunningApplication& each) { events.push_back("+" + nameOf(each)); });
    Subscription deactivated = applications.onDeactivated(
        [this](const RunningApplication& each) { events.push_back("-" + nameOf(each)); });
    bool tells(const std::vector<std::string>& expected) {
        return rig->until([&] { return events == expected; });
    }

private:
    std::string nameOf(const RunningApplication& application) const {
        if (application.bundlePath == notes) return "notes";
        if (application.bundlePath == paint) return "paint";
        return application.bundlePath.value_or("(no path)");
    }
};

TEST_P(ApplicationsContract, NothingRunsAtFirst) {
    EXPECT_TRUE(applications.runningApplications().empty());
    EXPECT_EQ(front(), "");
}

TEST_P(ApplicationsContract, ApplicationWithAWindowRuns) {
    rig->openWindow(notes, left);
    const RunningApplication application = awaited(notes);
    EXPECT_EQ(application.processIdentifier, rig->processIdentifier(notes));
    EXPECT_EQ(applications.applicationWithProcessIdentifier(application.processIdentifier),
              application);
    EXPECT_FALSE(applications.applicationWithProcessIdentifier(1).has_value());
}

TEST_P(ApplicationsContract, SeveralWindowsAreOneApplication) {
    rig->openWindow(notes, left);
    rig->openWindow(notes, right);
    rig->openWindow(paint, left);
    EXPECT_TRUE(rig->until([&] { return applications.runningApplications().size() == 2; }));
    EXPECT_TRUE(rig->never([&] { return applications.runningApplications().size() != 2; }, 100ms));
}

TEST_P(ApplicationsContract, ApplicationWithoutWindowsDoesNotRun) {
    const Rig::Window window = rig->openWindow(notes, left);
    const std::int32_t pid = awaited(notes).processIdentifier;
    rig->closeWindow(window);
    EXPECT_TRUE(rig->until([&] { return !running(notes); }));
    EXPECT_FALSE(applications.applicationWithProcessIdentifier(pid).has_value());
}

TEST_P(ApplicationsContract, CrashedApplicationDoesNotRun) {
    rig->openWindow(notes, left);
    awaited(notes);
    rig->kill(notes);
    EXPECT_TRUE(rig->until([&] { return !running(notes); }));
}

TEST_P(ApplicationsContract, FrontmostOwnsTheActiveWindow) {
    const Rig::Window first = rig->openWindow(notes, left);
    EXPECT_TRUE(becomesFront(notes));
    rig->openWindow(paint, right);
    EXPECT_TRUE(becomesFront(paint));
    rig->activate(first);
    EXPECT_TRUE(becomesFront(notes));
}

TEST_P(ApplicationsContract, HidingHidesEveryWindow) {
    const Rig::Window first = rig->openWindow(notes, left);
    const Rig::Window second = rig->openWindow(notes, right);
    const Rig::Window other = rig->openWindow(paint, right);
    const RunningApplication application = awaited(notes);
    EXPECT_FALSE(applications.isHidden(application));
    applications.hide(application);
    EXPECT_TRUE(rig->until([&] { return applications.isHidden(application); }));
    EXPECT_TRUE(rig->until([&] { return !rig->isShown(first) && !rig->isShown(second); }));
    EXPECT_TRUE(rig->isShown(other));
    EXPECT_FALSE(applications.isHidden(awaited(paint)));
    EXPECT_TRUE(running(notes).has_value());
}

TEST_P(ApplicationsContract, HidingGivesTheKeyboardToAnother) {
    rig->openWindow(paint, right);
    rig->openWindow(notes, left);
    ASSERT_TRUE(becomesFront(notes));
    applications.hide(awaited(notes));
    EXPECT_TRUE(becomesFront(paint));
}

TEST_P(ApplicationsContract, UnhidingShowsWhatHidingHid) {
    const Rig::Window first = rig->openWindow(notes, left);
    const Rig::Window second = rig->openWindow(notes, right);
    const Rect firstFrame = rig->seenFrameAX(first).value();
    const Rect secondFrame = rig->seenFrameAX(second).value();
    const RunningApplication application = awaited(notes);
    applications.hide(application);
    ASSERT_TRUE(rig->until([&] { return !rig->isShown(first) && !rig->isShown(second); }));
    applications.unhide(application);
    EXPECT_TRUE(rig->until([&] { return rig->isShown(first) && rig->isShown(second); }));
    EXPECT_TRUE(rig->until([&] { return !applications.isHidden(application); }));
    EXPECT_TRUE(rig->until([&] { return rig->seenFrameAX(first) == firstFrame; }));
    EXPECT_TRUE(rig->until([&] { return rig->seenFrameAX(second) == secondFrame; }));
}

TEST_P(ApplicationsContract, OneWindowThatComesToTheFrontBringsTheOthersBack) {
    const Rig::Window first = rig->openWindow(notes, left);
    const Rig::Window second = rig->openWindow(notes, right);
    ASSERT_TRUE(isHiddenBehindAnother(awaited(notes)));
    rig->activate(first);
    ASSERT_TRUE(becomesFront(notes));
    EXPECT_TRUE(rig->until([&] { return rig->isShown(second); }));
    EXPECT_TRUE(rig->until([&] { return rig->isActive(first); }));
}

TEST_P(ApplicationsContract, UnhidingLeavesTheKeyboardWhereItIs) {
    const Rig::Window window = rig->openWindow(notes, left);
    const Rig::Window other = rig->openWindow(paint, right);
    const RunningApplication application = awaited(notes);
    applications.hide(application);
    ASSERT_TRUE(rig->until([&] { return applications.isHidden(application); }));
    applications.unhide(application);
    EXPECT_TRUE(rig->until([&] { return rig->isShown(window); }));
    // The window manager may give it the keyboard before it is taken back.
    EXPECT_TRUE(rig->until([&] {
        return rig->isActive(other) && rig->never([&] { return !rig->isActive(other); }, 200ms);
    }));
}

TEST_P(ApplicationsContract, ActivatingGivesTheKeyboardToTheLastActiveWindow) {
    const Rig::Window last = rig->openWindow(notes, left);
    rig->openWindow(notes, right);
    rig->activate(last);
    ASSERT_TRUE(becomesFront(notes));
    rig->openWindow(paint, right);
    ASSERT_TRUE(becomesFront(paint));
    applications.activate(awaited(notes));
    EXPECT_TRUE(rig->until([&] { return rig->isActive(last); }));
    EXPECT_TRUE(becomesFront(notes));
}

TEST_P(ApplicationsContract, ActivatingShowsAHiddenApplication) {
    const Rig::Window window = rig->openWindow(notes, left);
    rig->openWindow(paint, right);
    const RunningApplication application = awaited(notes);
    applications.hide(application);
    ASSERT_TRUE(rig->until([&] { return applications.isHidden(application); }));
    applications.activate(application);
    EXPECT_TRUE(rig->until([&] { return rig->isShown(window) && rig->isActive(window); }));
    EXPECT_TRUE(becomesFront(notes));
    EXPECT_FALSE(applications.isHidden(application));
}

TEST_P(ApplicationsContract, ChangeOfTheActiveWindowIsToldFromBothSides) {
    const Rig::Window first = rig->openWindow(notes, left);
    ASSERT_TRUE(tells({"+notes"}));
    rig->openWindow(paint, right);
    ASSERT_TRUE(tells({"+notes", "-notes", "+paint"}));
    rig->activate(first);
    EXPECT_TRUE(tells({"+notes", "-notes", "+paint", "-paint", "+notes"}));
}

TEST_P(ApplicationsContract, ChangeBetweenWindowsOfOneApplicationIsNotTold) {
    const Rig::Window first = rig->openWindow(notes, left);
    rig->openWindow(notes, right);
    rig->activate(first);
    EXPECT_TRUE(tells({"+notes"}));
    EXPECT_TRUE(rig->never([&] { return events.size() > 1; }));
}

TEST_P(ApplicationsContract, EndOfTheActiveApplicationIsADeactivation) {
    const Rig::Window window = rig->openWindow(notes, left);
    ASSERT_TRUE(tells({"+notes"}));
    rig->closeWindow(window);
    EXPECT_TRUE(tells({"+notes", "-notes"}));
    EXPECT_EQ(front(), "");
}

TEST_P(ApplicationsContract, HidingTheActiveApplicationIsADeactivation) {
    rig->openWindow(notes, left);
    ASSERT_TRUE(tells({"+notes"}));
    applications.hide(awaited(notes));
    EXPECT_TRUE(tells({"+notes", "-notes"}));
}

TEST_P(ApplicationsContract, NothingIsToldAfterTheSubscription) {
    rig->openWindow(notes, left);
    ASSERT_TRUE(tells({"+notes"}));
    activated.reset();
    deactivated.reset();
    rig->openWindow(paint, right);
    ASSERT_TRUE(becomesFront(paint));
    EXPECT_TRUE(rig->never([&] { return events.size() > 1; }, 200ms));
}

TEST_P(ApplicationsContract, OpeningLaunchesWhatDoesNotRun) {
    int completions = 0;
    std::optional<std::string> error;
    applications.open(notes, [&](std::optional<std::string> reason) {
        ++completions;
        error = reason;
    });
    EXPECT_EQ(completions, 0) << "called from within";
    EXPECT_TRUE(rig->until([&] { return completions == 1; }));
    EXPECT_FALSE(error.has_value()) << *error;
    EXPECT_TRUE(becomesFront(notes));
    EXPECT_TRUE(rig->isActive(rig->launchedWindow(notes)));
    EXPECT_EQ(rig->launches(notes), 1);
    EXPECT_TRUE(rig->never([&] { return completions > 1; }));
}

TEST_P(ApplicationsContract, OpeningActivatesWhatRuns) {
    const Rig::Window window = rig->openWindow(notes, left);
    rig->openWindow(paint, right);
    ASSERT_TRUE(becomesFront(paint));
    awaited(notes);
    const int launches = rig->launches(notes);
    int completions = 0;
    applications.open(notes, [&](std::optional<std::string> reason) {
        ++completions;
        EXPECT_FALSE(reason.has_value());
    });
    EXPECT_EQ(completions, 0) << "called from within";
    EXPECT_TRUE(rig->until([&] { return completions == 1 && rig->isActive(window); }));
    EXPECT_EQ(rig->launches(notes), launches);
}

TEST_P(ApplicationsContract, OpeningShowsAHiddenApplication) {
    const Rig::Window window = rig->openWindow(notes, left);
    const RunningApplication application = awaited(notes);
    applications.hide(application);
    ASSERT_TRUE(rig->until([&] { return applications.isHidden(application); }));
    applications.open(notes, [](const std::optional<std::string>&) {});
    EXPECT_TRUE(rig->until([&] { return rig->isShown(window) && rig->isActive(window); }));
}

TEST_P(ApplicationsContract, OpeningAgainWhileItStartsLaunchesOnce) {
    int completions = 0;
    const auto count = [&](const std::optional<std::string>& reason) {
        ++completions;
        EXPECT_FALSE(reason.has_value());
    };
    applications.open(notes, count);
    applications.open(notes, count);
    EXPECT_TRUE(rig->until([&] { return completions == 2; }));
    EXPECT_TRUE(becomesFront(notes));
    EXPECT_TRUE(rig->never([&] { return rig->launches(notes) > 1; }, 500ms));
}

TEST_P(ApplicationsContract, PreferredPathIsTheOneThatIsTold) {
    const std::string copy = rig->installCopy(notes);
    const Rig::Window window = rig->openWindow(notes, left);
    ASSERT_TRUE(becomesFront(notes));
    applications.prefer({copy});
    EXPECT_TRUE(becomesFront(copy));
    EXPECT_TRUE(running(copy).has_value());
    EXPECT_FALSE(running(notes).has_value());
    rig->openWindow(paint, right);
    ASSERT_TRUE(becomesFront(paint));
    const int launches = rig->launches(notes);
    applications.open(copy, [](const std::optional<std::string>&) {});
    EXPECT_TRUE(rig->until([&] { return rig->isActive(window); }));
    EXPECT_EQ(rig->launches(notes), launches);
    applications.prefer({});
    EXPECT_TRUE(becomesFront(notes));
}

TEST_P(ApplicationsContract, WindowOfThisProgramTakesTheFront) {
    rig->openWindow(notes, left);
    ASSERT_TRUE(tells({"+notes"}));
    const Rig::Window own = rig->openOwnWindow();
    EXPECT_TRUE(rig->until([&] { return events.size() >= 2 && events[1] == "-notes"; }));
    EXPECT_TRUE(rig->until([&] {
        const auto application = applications.frontmostApplication();
        return application && application->processIdentifier == rig->ownProcessIdentifier();
    }));
    rig->closeWindow(own);
    EXPECT_TRUE(rig->until([&] { return events.back() == "+notes"; }));
}

TEST_P(ApplicationsContract, OpeningWhatIsNotInstalledTellsWhy) {
    int completions = 0;
    std::string error;
    applications.open("/usr/share/applications/org.quorvel.test.absent.desktop",
                      [&](std::optional<std::string> reason) {
                          ++completions;
                          error = reason.value_or("");
                      });
    EXPECT_EQ(completions, 0) << "called from within";
    EXPECT_TRUE(rig->until([&] { return completions == 1; }));
    EXPECT_NE(error, "");
    EXPECT_TRUE(rig->never([&] { return completions > 1; }, 100ms));
}

TEST_P(ApplicationsContract, CallsOnAnApplicationThatIsGoneAreHarmless) {
    rig->openWindow(notes, left);
    const RunningApplication application = awaited(notes);
    const Rig::Window other = rig->openWindow(paint, right);
    rig->kill(notes);
    applications.hide(application);
    applications.unhide(application);
    applications.activate(application);
    EXPECT_TRUE(rig->until([&] { return !applications.isHidden(application); }));
    EXPECT_TRUE(rig->never([&] { return !rig->isActive(other) || !rig->isShown(other); }, 100ms));
}

class IconicApplicationsContract : public ApplicationsContract {};

TEST_P(IconicApplicationsContract, IconicApplicationRuns) {
    const Rig::Window window = rig->openWindow(notes, left);
    rig->iconify(window);
    EXPECT_TRUE(rig->never([&] { return !running(notes); }, 100ms));
}

TEST_P(IconicApplicationsContract, UnhidingLeavesWhatTheUserHadIconified) {
    const Rig::Window kept = rig->openWindow(notes, left);
    const Rig::Window shown = rig->openWindow(notes, right);
    rig->iconify(kept);
    const RunningApplication application = awaited(notes);
    ASSERT_TRUE(rig->never([&] { return applications.isHidden(application); }, 100ms));
    applications.hide(application);
    ASSERT_TRUE(rig->until([&] { return !rig->isShown(shown); }));
    ASSERT_TRUE(rig->until([&] { return applications.isHidden(application); }));
    applications.unhide(application);
    EXPECT_TRUE(rig->until([&] { return rig->isShown(shown); }));
    EXPECT_TRUE(rig->never([&] { return rig->isShown(kept); }, 200ms));
}

TEST_P(IconicApplicationsContract, UnhidingShowsAllWhenTheUserHadIconifiedAll) {
    const Rig::Window first = rig->openWindow(notes, left);
    const Rig::Window second = rig->openWindow(notes, right);
    rig->iconify(first);
    rig->iconify(second);
    const RunningApplication application = awaited(notes);
    ASSERT_TRUE(rig->until([&] { return applications.isHidden(application); }));
    applications.unhide(application);
    EXPECT_TRUE(rig->until([&] { return rig->isShown(first) && rig->isShown(second); }));
}

TEST_P(IconicApplicationsContract, UnhidingShowsNothingOfAnApplicationInSight) {
    const Rig::Window kept = rig->openWindow(notes, left);
    rig->openWindow(notes, right);
    rig->iconify(kept);
    const RunningApplication application = awaited(notes);
    applications.unhide(application);
    applications.activate(application);
    EXPECT_TRUE(rig->never([&] { return rig->isShown(kept); }, 200ms));
}

TEST_P(IconicApplicationsContract, WhatTheUserBroughtBackAndIconifiedIsTheUsersDoing) {
    const Rig::Window usersOwn = rig->openWindow(notes, left);
    const Rig::Window hidden = rig->openWindow(notes, right);
    const RunningApplication application = awaited(notes);
    ASSERT_TRUE(isHiddenBehindAnother(application));
    rig->activate(usersOwn);
    ASSERT_TRUE(rig->until([&] { return rig->isShown(hidden) && rig->isActive(usersOwn); }));
    ASSERT_TRUE(rig->never([&] { return !rig->isActive(usersOwn); }, 600ms));
    rig->iconify(usersOwn);
    ASSERT_TRUE(rig->until([&] { return !rig->isShown(usersOwn); }));
    applications.unhide(application);
    EXPECT_TRUE(rig->never([&] { return rig->isShown(usersOwn); }, 200ms));
}

INSTANTIATE_TEST_SUITE_P(, ApplicationsContract,
                         testing::ValuesIn(windowManagerRigs() + simulatedRig()), rigName);

INSTANTIATE_TEST_SUITE_P(, IconicApplicationsContract,
                         testing::ValuesIn(iconifyingRigs() + simulatedRig()), rigName);

}  // namespace
}  // namespace quorvel::test
