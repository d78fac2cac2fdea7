// Applications by their windows: whose window is whose, what is in front, hiding and showing.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/x11/ApplicationsFixture.hpp"

namespace quorvel::test {
namespace {

using Strings = std::vector<std::string>;

class ApplicationsTest : public ApplicationsFixture, public testing::Test {
protected:
    ApplicationsTest() : ApplicationsFixture({}) {}
    explicit ApplicationsTest(XSessionOptions options) : ApplicationsFixture(options) {}

    xcb_window_t focused(const std::string& path) {
        const auto reading = applications().focusedWindow(0, path);
        EXPECT_EQ(reading.error, 0);
        if (!reading.window) return XCB_WINDOW_NONE;
        return subject().elements.windowOf(reading.window->element).value_or(XCB_WINDOW_NONE);
    }
    /// Without the window manager's doing.
    void claimActive(xcb_window_t window) {
        client().connection().setProperty32(client().connection().root(), "_NET_ACTIVE_WINDOW",
                                            "WINDOW", {window});
        client().connection().sync();
    }
};

// Whose window ----------------------------------------------------------------------------------

TEST_F(ApplicationsTest, TerminalIsFoundByItsClass) {
    xcb_window_t window = 0;
    const auto xterm =
        session.startAndWaitForWindow({"xterm", "-e", "sleep", "1000"}, "XTerm", window);
    EXPECT_EQ(awaited("/usr/share/applications/debian-xterm.desktop").processIdentifier,
              xterm.pid());
}

TEST_F(ApplicationsTest, ClassTeeBeatsInstanceXterm) {
    const std::string tee = install("tee", "Exec=xterm -class Tee\nStartupWMClass=Tee");
    xcb_window_t window = 0;
    const auto xterm = session.startAndWaitForWindow(
        {"xterm", "-class", "Tee", "-e", "sleep", "1000"}, "Tee", window);
    awaited(tee);
    EXPECT_FALSE(running("/usr/share/applications/debian-xterm.desktop"));
}

TEST_F(ApplicationsTest, GtkProgramIsFoundByItsApplicationId) {
    xcb_window_t window = 0;
    const auto gedit = session.startAndWaitForWindow({"gedit", "--standalone"}, "Gedit", window);
    EXPECT_EQ(awaited("/usr/share/applications/org.gnome.gedit.desktop").processIdentifier,
              gedit.pid());
}

TEST_F(ApplicationsTest, QtProgramIsFoundByItsClass) {
    xcb_window_t window = 0;
    const auto process =
        session.startAndWaitForWindow({"featherpad", "--standalone"}, "FeatherPad", window);
    EXPECT_EQ(awaited("/usr/share/applications/featherpad.desktop").processIdentifier,
              process.pid());
}

TEST_F(ApplicationsTest, ProgramInAPidNamespaceHasThePidThatWeSee) {
    xcb_window_t window = 0;
    const auto sandbox =
        session.startAndWaitForWindow({"bwrap", "--dev-bind", "/", "/", "--unshare-pid", "--proc",
                                       "/proc", "featherpad", "--standalone"},
                                      "FeatherPad", window);
    const auto application = awaited("/usr/share/applications/featherpad.desktop");
    const auto executable = std::filesystem::read_symlink(
        "/proc/" + std::to_string(application.processIdentifier) + "/exe");
    EXPECT_EQ(executable, "/usr/bin/featherpad");
    // What it says of itself is its number inside.
    ASSERT_TRUE(probe().pid(window));
    EXPECT_NE(static_cast<std::int32_t>(*probe().pid(window)), application.processIdentifier);
}

TEST_F(ApplicationsTest, ChildOfAWrapperScriptBelongsToTheScriptsEntry) {
    const std::string wrapper =
        script("start me.sh", "xterm -name other -class Other -e sleep 1000\ntrue");
    const std::string path = install("wrapped", "Exec=\"" + wrapper + "\"");
    EXPECT_EQ(opened(path), std::nullopt);
    awaited(path);
    EXPECT_TRUE(becomesFront(path));
}

TEST_F(ApplicationsTest, ProgramThatAScriptTurnsIntoBelongsToTheScriptsEntry) {
    const std::string wrapper =
        script("start me.sh", "exec xterm -name other -class Other -e sleep 1000");
    const std::string path = install("wrapped", "Exec=\"" + wrapper + "\"");
    EXPECT_EQ(opened(path), std::nullopt);
    awaited(path);
}

TEST_F(ApplicationsTest, ProgramWithoutAnEntryIsKnownByItsPath) {
    const auto program = session.folder() / "größe 1/my term";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::copy_file("/usr/bin/xterm", program);
    xcb_window_t window = 0;
    const auto process = session.startAndWaitForWindow(
        {program.string(), "-name", "other", "-class", "Other", "-e", "sleep", "1000"}, "Other",
        window);
    EXPECT_EQ(awaited(program.string()).processIdentifier, process.pid());
}

TEST_F(ApplicationsTest, OfTwoPathsWithOneIdTheBoundOneIsGiven) {
    const std::string own = install("debian-xterm", "Exec=xterm\nStartupWMClass=XTerm");
    const std::string shared = "/usr/share/applications/debian-xterm.desktop";
    xcb_window_t window = 0;
    const auto xterm =
        session.startAndWaitForWindow({"xterm", "-e", "sleep", "1000"}, "XTerm", window);
    awaited(own);
    EXPECT_TRUE(becomesFront(own));
    applications().prefer({shared});
    EXPECT_TRUE(running(shared));
    EXPECT_FALSE(running(own));
    EXPECT_EQ(front(), shared);
    EXPECT_TRUE(never([&] { return events.size() > 1; }, 200ms)) << "nobody came or went";
    EXPECT_EQ(opened(own), std::nullopt);
    EXPECT_TRUE(never([&] { return probe().clientList().size() > 1; })) << "it was running";
}

TEST_F(ApplicationsTest, EntryThatIsInstalledLaterIsFound) {
    open("Newcomer");
    EXPECT_TRUE(
        until([&] { return running(std::filesystem::canonical("/proc/self/exe")).has_value(); }));
    const std::string path = installClass("Newcomer");
    EXPECT_TRUE(until([&] { return running(path).has_value(); }));
}

TEST_F(ApplicationsTest, ClassThatIsSetLateIsHeeded) {
    const std::string path = installClass("Late");
    const xcb_window_t window = open("Early");
    EXPECT_FALSE(running(path));
    client().connection().setPropertyText(window, "WM_CLASS", "STRING",
                                          std::string("late\0Late\0", 10));
    client().connection().sync();
    EXPECT_TRUE(until([&] { return running(path).has_value(); }));
    EXPECT_EQ(front(), path);
}

TEST_F(ApplicationsTest, DialogBelongsToTheWindowThatItIsTransientFor) {
    const std::string path = installClass("Main");
    installClass("Chooser");
    const xcb_window_t main = open("Main");
    open("Chooser", {.transientFor = main, .type = "DIALOG"});
    EXPECT_TRUE(becomesFront(path));
    EXPECT_EQ(applications().runningApplications().size(), 1U);
}

TEST_F(ApplicationsTest, OnlyNormalWindowsAndDialogsMakeAnApplication) {
    for (const char* type : {"DOCK", "DESKTOP", "SPLASH", "UTILITY", "TOOLBAR", "MENU"}) {
        session.open(client(), {.className = std::string("Class") + type, .type = type});
    }
    EXPECT_TRUE(never([&] { return !applications().runningApplications().empty(); }));
    open("Dialog", {.type = "DIALOG"});
    EXPECT_TRUE(until([&] { return applications().runningApplications().size() == 1; }));
}

TEST_F(ApplicationsTest, HostilePropertiesDoNoHarm) {
    const XClient& x = client().connection();
    const xcb_window_t a = open("A");
    const xcb_window_t b = open("B");
    x.setProperty32(a, "WM_TRANSIENT_FOR", "WINDOW", {b});
    x.setProperty32(b, "WM_TRANSIENT_FOR", "WINDOW", {a});
    const xcb_window_t c = open("C");
    x.setProperty32(c, "WM_CLASS", "STRING", {1, 2, 3});
    x.setPropertyText(c, "WM_TRANSIENT_FOR", "WINDOW", "x");
    x.setPropertyText(c, "_NET_WM_WINDOW_TYPE", "ATOM", "abc");
    x.setProperty32(c, "_NET_WM_WINDOW_TYPE", "ATOM", {0, 0xFFFFFFFF});
    x.setPropertyText(c, "_NET_WM_PID", "CARDINAL", std::string("\xFF\xFF", 2));
    x.setPropertyText(c, "_GTK_APPLICATION_ID", "UTF8_STRING", std::string(3 << 20, '/'));
    x.setPropertyText(c, "_KDE_NET_WM_DESKTOP_FILE", "UTF8_STRING", std::string("\0..", 3));
    x.sync();
    EXPECT_TRUE(never([&] { return applications().runningApplications().empty(); }, 100ms));
    EXPECT_EQ(applications().runningApplications().size(), 1U);
    EXPECT_TRUE(becomesFront(std::filesystem::canonical("/proc/self/exe")));
}

// In front --------------------------------------------------------------------------------------

TEST_F(ApplicationsTest, NothingIsToldOfWhatWasInFrontBefore) {
    const std::string path = installClass("A");
    const xcb_window_t window = session.open(client(), {.className = "A"});
    ASSERT_TRUE(waitUntil(
        [&] { return probe().activeWindow() == window && probe().inputFocus() == window; }));
    EXPECT_EQ(front(), path);
    EXPECT_TRUE(never([&] { return !events.empty(); }, 100ms));
    installClass("B");
    open("B");
    EXPECT_TRUE(until([&] { return events == Strings{"-test-A", "+test-B"}; }));
}

TEST_F(ApplicationsTest, AWindowOfOursMakesUsFront) {
    const std::string path = installClass("A");
    open("A");
    ASSERT_TRUE(becomesFront(path));
    xcb_window_t window = 0;
    const auto xterm =
        session.startAndWaitForWindow({"xterm", "-e", "sleep", "1000"}, "XTerm", window);
    ASSERT_TRUE(until([&] { return events.size() == 3; })) << testing::PrintToString(events);
    events.clear();
    open("Unknown");
    EXPECT_TRUE(until([&] { return events.size() == 2; }));
    EXPECT_EQ(events.front(), "-debian-xterm");
    EXPECT_EQ(applications().frontmostApplication()->processIdentifier, getpid());
}

TEST_F(ApplicationsTest, FrontIsKnownBeforeItsEventIsHandedOut) {
    const std::string red = installClass("Red");
    const std::string blue = installClass("Blue");
    const xcb_window_t first = open("Red");
    open("Blue");
    ASSERT_TRUE(becomesFront(blue));
    probe().activate(first);
    // The loop does not turn meanwhile, as on a machine that is busy with others.
    ASSERT_TRUE(waitUntil([&] { return probe().activeWindow() == first; }));
    EXPECT_EQ(applications().frontmostApplication()->bundlePath, red);
    ASSERT_TRUE(becomesFront(red));

    // An iconic window that comes forward is in front as well.
    probe().iconify(first);
    ASSERT_TRUE(becomesFront(blue));
    probe().activate(first);
    ASSERT_TRUE(
        waitUntil([&] { return probe().activeWindow() == first && !probe().isIconic(first); }));
    EXPECT_EQ(applications().frontmostApplication()->bundlePath, red);
}

TEST_F(ApplicationsTest, NoActiveWindowForAMomentIsNoDeactivation) {
    const std::string path = installClass("A");
    const xcb_window_t window = open("A");
    ASSERT_TRUE(until([&] { return events == Strings{"+test-A"}; }));
    for (int i = 0; i < 5; ++i) {
        claimActive(XCB_WINDOW_NONE);
        EXPECT_TRUE(never([&] { return events.size() != 1 || front() != path; }, 40ms));
        claimActive(window);
        EXPECT_TRUE(never([&] { return events.size() != 1 || front() != path; }, 30ms));
    }
    claimActive(XCB_WINDOW_NONE);
    EXPECT_TRUE(until([&] { return events == (Strings{"+test-A", "-test-A"}); }));
    EXPECT_EQ(front(), "");
}

TEST_F(ApplicationsTest, DocksAndDesktopWindowsChangeNothing) {
    const std::string path = installClass("A");
    const xcb_window_t desktop = session.open(client(), {.className = "D", .type = "DESKTOP"});
    const xcb_window_t dock = session.open(client(), {.className = "E", .type = "DOCK"});
    open("A");
    ASSERT_TRUE(until([&] { return events == Strings{"+test-A"}; }));
    for (const xcb_window_t window : {desktop, dock}) {
        claimActive(window);
        EXPECT_TRUE(never([&] { return events.size() != 1 || front() != path; }));
    }
}

// Otherwise the second press of a shortcut would hide it once more instead of showing it.
TEST_F(ApplicationsTest, WhatIsHiddenIsNotInFrontEvenWhenOnlyTheDesktopIsLeft) {
    const std::string path = installClass("A");
    session.open(client(), {.className = "D", .type = "DESKTOP"});
    open("A");
    ASSERT_TRUE(becomesFront(path));
    applications().hide(awaited(path));
    EXPECT_EQ(front(), "");
    EXPECT_TRUE(until([&] { return events == (Strings{"+test-A", "-test-A"}); }));
}

TEST_F(ApplicationsTest, PidIsThatOfTheLastActiveWindow) {
    const std::string tee = install("tee", "Exec=xterm -class Tee\nStartupWMClass=Tee");
    const Strings command{"xterm", "-class", "Tee", "-e", "sleep", "1000"};
    xcb_window_t first = 0;
    const auto a = session.startAndWaitForWindow(command, "Tee", first);
    ASSERT_TRUE(until([&] { return awaited(tee).processIdentifier == a.pid(); }));
    const auto b = session.start(command);
    ASSERT_TRUE(until([&] { return awaited(tee).processIdentifier == b.pid(); }));
    probe().activate(first);
    EXPECT_TRUE(until([&] { return awaited(tee).processIdentifier == a.pid(); }));
    EXPECT_EQ(applications().runningApplications().size(), 1U);
    EXPECT_EQ(applications().applicationWithProcessIdentifier(b.pid())->bundlePath, tee);
}

// The focused window ----------------------------------------------------------------------------

TEST_F(ApplicationsTest, FocusedWindowIsTheLastActiveInSight) {
    const std::string path = installClass("A");
    installClass("B");
    const xcb_window_t first = open("A");
    const xcb_window_t second = open("A");
    EXPECT_TRUE(until([&] { return focused(path) == second; }));
    probe().activate(first);
    EXPECT_TRUE(until([&] { return focused(path) == first; }));
    open("B");
    EXPECT_TRUE(never([&] { return focused(path) != first; }, 100ms));
    probe().iconify(first);
    EXPECT_TRUE(until([&] { return focused(path) == second; }));
    probe().iconify(second);
    EXPECT_TRUE(until([&] { return focused(path) == XCB_WINDOW_NONE; }));
    EXPECT_EQ(focused("/nowhere"), XCB_WINDOW_NONE);
}

TEST_F(ApplicationsTest, FocusedWindowAmongThoseNeverActiveIsTheTopmost) {
    const std::string path = installClass("A");
    session.open(client(), {.className = "A"});
    const xcb_window_t top = session.open(client(), {.className = "A"});
    ASSERT_TRUE(waitUntil([&] { return probe().activeWindow() == top; }));
    installClass("B");
    const xcb_window_t other = session.open(client(), {.className = "B"});
    ASSERT_TRUE(waitUntil([&] { return probe().activeWindow() == other; }));
    EXPECT_EQ(focused(path), top);
}

TEST_F(ApplicationsTest, ModalDialogYieldsItsMainWindow) {
    const std::string path = installClass("A");
    const xcb_window_t main = open("A");
    const xcb_window_t dialog = open("A", {.transientFor = main, .type = "DIALOG"});
    EXPECT_TRUE(until([&] { return focused(path) == dialog; })) << "not modal yet";
    constexpr std::uint32_t add = 1;
    client().connection().sendToRoot(
        dialog, "_NET_WM_STATE", {add, client().connection().atom("_NET_WM_STATE_MODAL"), 0, 1, 0});
    EXPECT_TRUE(until([&] { return focused(path) == main; }));
}

TEST_F(ApplicationsTest, FocusedWindowStaysInsideItsApplication) {
    const std::string a = installClass("A");
    const std::string b = installClass("B");
    const xcb_window_t first = open("A");
    const xcb_window_t second = open("B");
    EXPECT_TRUE(until([&] { return focused(b) == second; }));
    EXPECT_EQ(focused(a), first);
    EXPECT_EQ(applications().focusedWindow(getpid(), a).window,
              applications().focusedWindow(getpid(), a).window);
}

}  // namespace
}  // namespace quorvel::test
