// Hiding, showing and activating, under each window manager and without any.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>

#include "tests/x11/ApplicationsFixture.hpp"

namespace quorvel::test {
namespace {

using testing::IsEmpty;
using Strings = std::vector<std::string>;

class ApplicationsOnWindowManager : public ApplicationsFixture,
                                    public testing::TestWithParam<WindowManagerKind> {
protected:
    ApplicationsOnWindowManager() : ApplicationsFixture({.windowManager = GetParam()}) {}
};

TEST_P(ApplicationsOnWindowManager, HiddenShownAndActivatedTwentyTimes) {
    const std::string tee = install("tee",
                                    "Exec=xterm -class Tee -e sleep 1000\n"
                                    "StartupWMClass=Tee");
    installClass("Other");
    ASSERT_EQ(opened(tee), std::nullopt);
    ASSERT_TRUE(becomesFront(tee));
    const xcb_window_t window = probe().windowOfClass("Tee");
    const xcb_window_t other = open("Other");
    int hidden = 0;
    int unhidden = 0;
    int kept = 0;
    int activated = 0;
    for (int i = 0; i < 20; ++i) {
        applications().hide(awaited(tee));
        hidden +=
            applications().isHidden(awaited(tee)) && until([&] { return isOutOfSight(window); });
        applications().unhide(awaited(tee));
        unhidden +=
            !applications().isHidden(awaited(tee)) && until([&] { return !isOutOfSight(window); });
        kept += until([&] { return probe().activeWindow() == other && front() != tee; });
        applications().hide(awaited(tee));
        applications().activate(awaited(tee));
        activated += until([&] {
            return probe().activeWindow() == window && front() == tee && !isOutOfSight(window);
        });
        probe().activate(other);
        ASSERT_TRUE(until([&] { return probe().activeWindow() == other; }));
    }
    EXPECT_EQ(hidden, 20);
    EXPECT_EQ(unhidden, 20);
    EXPECT_EQ(kept, 20);
    EXPECT_EQ(activated, 20);
}

TEST_P(ApplicationsOnWindowManager, HidingTheFrontAndOpeningItAgainTwentyTimes) {
    const std::string path = installClass("A");
    const xcb_window_t window = open("A");
    const auto home = probe().visibleFrame(window);
    int hidden = 0;
    int opened = 0;
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(becomesFront(path));
        applications().hide(awaited(path));
        hidden += front() == "" && until([&] { return isOutOfSight(window); });
        opened += this->opened(path) == std::nullopt && becomesFront(path) &&
                  until([&] { return probe().visibleFrame(window) == home; });
    }
    EXPECT_EQ(hidden, 20);
    EXPECT_EQ(opened, 20);
}

TEST_P(ApplicationsOnWindowManager, WindowOnAnotherWorkspaceIsFoundHiddenAndActivated) {
    const std::string path = installClass("A");
    const xcb_window_t window = open("A");
    if (GetParam() == WindowManagerKind::i3) {
        session.start({"i3-msg", "workspace 2"}).waitForExit();
    } else {
        client().connection().sendToRoot(client().connection().root(), "_NET_CURRENT_DESKTOP",
                                         {1, 0, 0, 0, 0});
    }
    ASSERT_TRUE(until([&] { return !probe().isViewable(window) || isOutOfSight(window); }));
    EXPECT_TRUE(until([&] { return front() == ""; }));
    ASSERT_TRUE(running(path));
    EXPECT_FALSE(applications().isHidden(awaited(path)));
    applications().hide(awaited(path));
    EXPECT_TRUE(applications().isHidden(awaited(path)));
    applications().activate(awaited(path));
    EXPECT_TRUE(becomesFront(path));
    EXPECT_TRUE(until([&] { return probe().isViewable(window) && !isOutOfSight(window); }));
    // What was learnt of that window holds for no other.
    applications().hide(awaited(path));
    EXPECT_TRUE(until([&] { return isOutOfSight(window); }));
    EXPECT_EQ(probe().isIconic(window), GetParam() != WindowManagerKind::i3);
}

TEST_P(ApplicationsOnWindowManager, WhatWasHiddenOffTheScreenComesBackAtTheEnd) {
    const std::string path = installClass("A");
    const xcb_window_t window = open("A");
    const auto home = probe().visibleFrame(window);
    applications().hide(awaited(path));
    ASSERT_TRUE(until([&] { return isOutOfSight(window); }));
    const bool wasIconified = probe().isIconic(window);
    EXPECT_EQ(wasIconified, GetParam() != WindowManagerKind::i3);
    end();
    if (wasIconified) {
        EXPECT_TRUE(neverWithin(200ms, [&] { return !probe().isIconic(window); }));
    } else {
        EXPECT_TRUE(waitUntil([&] { return probe().visibleFrame(window) == home; }));
    }
}

TEST_P(ApplicationsOnWindowManager, UserWhoActivatesAHiddenWindowSeesIt) {
    const std::string path = installClass("A");
    installClass("B");
    open("B");
    const xcb_window_t window = open("A");
    applications().hide(awaited(path));
    ASSERT_TRUE(until([&] { return isOutOfSight(window) && front() != path; }));
    probe().activate(window);
    EXPECT_TRUE(until([&] { return !isOutOfSight(window); }));
    EXPECT_TRUE(becomesFront(path));
    EXPECT_FALSE(applications().isHidden(awaited(path)));
}

// Where it is hidden off the screen it can be the next in line for the keyboard.
TEST_P(ApplicationsOnWindowManager, EndOfAnotherWindowDoesNotShowAHiddenOne) {
    const std::string path = installClass("A");
    const std::string otherPath = installClass("B");
    const xcb_window_t other = open("B");
    const xcb_window_t window = open("A");
    ASSERT_TRUE(becomesFront(path));
    applications().hide(awaited(path));
    ASSERT_TRUE(until([&] { return isOutOfSight(window); }) && becomesFront(otherPath));
    client().destroy(other);
    EXPECT_TRUE(until([&] { return front() == ""; }));
    // What a tiling manager does when it lays out anew can be answered, not forestalled.
    EXPECT_TRUE(until([&] { return never([&] { return !isOutOfSight(window); }); }));
    applications().activate(awaited(path));
    EXPECT_TRUE(until([&] { return !isOutOfSight(window); }));
    EXPECT_TRUE(becomesFront(path));
}

TEST_P(ApplicationsOnWindowManager, HidingCoversDialogs) {
    const std::string path = installClass("A");
    const xcb_window_t main = open("A");
    const xcb_window_t dialog = open("A", {.transientFor = main, .type = "DIALOG"});
    applications().hide(awaited(path));
    EXPECT_TRUE(applications().isHidden(awaited(path)));
    EXPECT_TRUE(until([&] { return isOutOfSight(main) && isOutOfSight(dialog); }));
    applications().activate(awaited(path));
    EXPECT_TRUE(until([&] { return !isOutOfSight(main) && !isOutOfSight(dialog); }));
    EXPECT_TRUE(becomesFront(path));
}

TEST_P(ApplicationsOnWindowManager, AnotherWindowManagerTakesOver) {
    const std::string path = installClass("A");
    const xcb_window_t window = open("A");
    ASSERT_TRUE(becomesFront(path));
    session.stopWindowManager();
    EXPECT_TRUE(until([&] { return !subject().manager.isRunning(); }));
    EXPECT_TRUE(until([&] { return running(path).has_value(); })) << "its window is there";
    session.startWindowManager(GetParam() == WindowManagerKind::openbox
                                   ? WindowManagerKind::xfwm4
                                   : WindowManagerKind::openbox);
    EXPECT_TRUE(until([&] { return subject().manager.isRunning(); }));
    probe().activate(window);
    EXPECT_TRUE(becomesFront(path));
    applications().hide(awaited(path));
    EXPECT_TRUE(until([&] { return isOutOfSight(window); }));
    applications().activate(awaited(path));
    EXPECT_TRUE(until([&] { return !isOutOfSight(window); }));
    EXPECT_TRUE(becomesFront(path));
}

INSTANTIATE_TEST_SUITE_P(, ApplicationsOnWindowManager, testing::ValuesIn(allWindowManagers()),
                         [](const auto& kind) { return nameOf(kind.param); });

class ApplicationsWithShadedWindow : public ApplicationsOnWindowManager {
protected:
    bool isShaded(xcb_window_t window) const {
        const Strings states = probe().netWmState(window);
        return std::find(states.begin(), states.end(), "_NET_WM_STATE_SHADED") != states.end();
    }
    xcb_window_t openShaded(const std::string& className) {
        const xcb_window_t window = open(className);
        const XClient& x = client().connection();
        x.sendToRoot(window, "_NET_WM_STATE", {1, x.atom("_NET_WM_STATE_SHADED"), 0, 2, 0});
        if (!until([&] { return isShaded(window); })) throw std::runtime_error("is not shaded");
        // The state is told before the frame has gone along.
        until([&] {
            const auto seen = probe().visibleFrame(window);
            return never([&] { return probe().visibleFrame(window) != seen; }, 250ms);
        });
        return window;
    }
    /// Its title bar too.
    bool isGone(xcb_window_t window) const {
        const xcb_window_t frame = probe().frameOf(window);
        const auto area = probe().visibleFrame(window);
        return !probe().isViewable(frame) || !area || !area->intersects({0, 0, 1280, 800});
    }
};

TEST_P(ApplicationsWithShadedWindow, ShadedWindowIsInSight) {
    const std::string path = installClass("A");
    openShaded("A");
    EXPECT_TRUE(never([&] { return applications().isHidden(awaited(path)); }, 200ms));
}

TEST_P(ApplicationsWithShadedWindow, ShadedWindowIsHiddenAndShown) {
    const std::string path = installClass("A");
    const xcb_window_t window = openShaded("A");
    const auto home = probe().visibleFrame(window);
    const auto start = std::chrono::steady_clock::now();
    applications().hide(awaited(path));
    const bool isIconified = GetParam() != WindowManagerKind::openbox;
    if (isIconified) {
        EXPECT_LT(std::chrono::steady_clock::now() - start, 200ms) << "was not noticed";
        EXPECT_EQ(probe().visibleFrame(window), home) << "was moved as well";
    }
    EXPECT_TRUE(applications().isHidden(awaited(path)));
    EXPECT_TRUE(until([&] { return isGone(window); }));
    EXPECT_TRUE(never([&] { return !applications().isHidden(awaited(path)); }, 100ms));
    applications().unhide(awaited(path));
    EXPECT_TRUE(until([&] { return !isGone(window); }));
    EXPECT_TRUE(until([&] { return !applications().isHidden(awaited(path)); }));
    EXPECT_TRUE(until([&] { return probe().visibleFrame(window)->origin() == home->origin(); }));
}

TEST_P(ApplicationsWithShadedWindow, OtherWindowsAreIconifiedAfterwards) {
    const std::string shaded = installClass("A");
    openShaded("A");
    applications().hide(awaited(shaded));
    const std::string path = installClass("B");
    const xcb_window_t window = open("B");
    applications().hide(awaited(path));
    EXPECT_TRUE(until([&] { return probe().isIconic(window); }));
}

/// Openbox does not iconify them on request.
class ApplicationsWithIconicShadedWindow : public ApplicationsWithShadedWindow {};

TEST_P(ApplicationsWithIconicShadedWindow, UserWhoIconifiesItHidesTheApplication) {
    const std::string path = installClass("A");
    const xcb_window_t window = openShaded("A");
    EXPECT_FALSE(applications().isHidden(awaited(path)));
    probe().iconify(window);
    EXPECT_TRUE(until([&] { return applications().isHidden(awaited(path)); }));
    probe().activate(window);
    EXPECT_TRUE(until([&] { return !applications().isHidden(awaited(path)); }));
}

// I3 has no shaded windows.
INSTANTIATE_TEST_SUITE_P(, ApplicationsWithShadedWindow,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                         WindowManagerKind::kwin, WindowManagerKind::marco),
                         [](const auto& kind) { return nameOf(kind.param); });

INSTANTIATE_TEST_SUITE_P(, ApplicationsWithIconicShadedWindow,
                         testing::Values(WindowManagerKind::xfwm4, WindowManagerKind::kwin,
                                         WindowManagerKind::marco),
                         [](const auto& kind) { return nameOf(kind.param); });

class ApplicationsWithoutWindowManager : public ApplicationsFixture, public testing::Test {
protected:
    ApplicationsWithoutWindowManager() : ApplicationsFixture({.windowManager = std::nullopt}) {}

    xcb_window_t show(const std::string& className, TestWindow window = {}) {
        window.className = className;
        const xcb_window_t shown = client().open(window);
        EXPECT_TRUE(until([&] { return probe().isViewable(shown); }));
        return shown;
    }
};

TEST_F(ApplicationsWithoutWindowManager, WindowsOnTheScreenCount) {
    const std::string path = installClass("A");
    EXPECT_THAT(applications().runningApplications(), IsEmpty());
    const xcb_window_t window = show("A");
    show("B", {.overrideRedirect = true});
    EXPECT_EQ(awaited(path).processIdentifier, getpid());
    EXPECT_EQ(applications().runningApplications().size(), 1U);
    client().destroy(window);
    EXPECT_TRUE(until([&] { return applications().runningApplications().empty(); }));
}

TEST_F(ApplicationsWithoutWindowManager, FocusCountsAsActivation) {
    const std::string a = installClass("A");
    const std::string b = installClass("B");
    show("A");
    const xcb_window_t second = show("B");
    applications().activate(awaited(a));
    EXPECT_TRUE(becomesFront(a));
    applications().activate(awaited(b));
    EXPECT_TRUE(becomesFront(b));
    EXPECT_EQ(probe().inputFocus(), second);
    EXPECT_TRUE(until([&] { return events == (Strings{"+test-A", "-test-A", "+test-B"}); }));
}

TEST_F(ApplicationsWithoutWindowManager, HidingAndShowingWorks) {
    const std::string path = installClass("A");
    const xcb_window_t window = show("A");
    const auto home = probe().visibleFrame(window);
    for (int i = 0; i < 20; ++i) {
        applications().hide(awaited(path));
        ASSERT_TRUE(applications().isHidden(awaited(path)));
        ASSERT_TRUE(isOutOfSight(window));
        applications().unhide(awaited(path));
        ASSERT_TRUE(until([&] { return probe().visibleFrame(window) == home; }));
    }
}

TEST_F(ApplicationsWithoutWindowManager, WindowManagerThatStartsLateTakesOver) {
    const std::string path = installClass("A");
    const xcb_window_t window = show("A");
    awaited(path);
    session.startWindowManager(WindowManagerKind::openbox);
    EXPECT_TRUE(until([&] { return subject().manager.isRunning(); }));
    applications().activate(awaited(path));
    EXPECT_TRUE(until([&] { return probe().activeWindow() == window; }));
    EXPECT_TRUE(becomesFront(path));
    applications().hide(awaited(path));
    EXPECT_TRUE(until([&] { return probe().isIconic(window); }));
}

}  // namespace
}  // namespace quorvel::test
