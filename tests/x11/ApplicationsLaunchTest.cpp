// Opening applications, and window managers with rarer habits.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/x11/ApplicationsFixture.hpp"
#include "tests/x11/ScriptedManager.hpp"

namespace quorvel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::Optional;
using Strings = std::vector<std::string>;

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class ApplicationsLaunchTest : public ApplicationsFixture, public testing::Test {
protected:
    ApplicationsLaunchTest() : ApplicationsFixture({}) {}
    explicit ApplicationsLaunchTest(XSessionOptions options) : ApplicationsFixture(options) {}

    /// A script that leaves a report of itself.
    std::string reporter(const std::string& name) const {
        const std::string report = (session.folder() / "report").string();
        // The last part is read by the process that was started itself: a shell blocks signals
        // while it waits for its children.
        return script(name, "exec 3> '" + report +
                                "'\n{ echo pid $$\nenv\ncat /proc/$$/stat\nls -l /proc/$$/fd; } "
                                ">&3\nexec cat /proc/self/status >&3");
    }
    std::string report() {
        const auto path = session.folder() / "report";
        EXPECT_TRUE(until([&] { return contentOf(path).find("SigCgt") != std::string::npos; }));
        return contentOf(path);
    }
    int launches() const {
        const std::string lines = contentOf(session.folder() / "launches");
        return static_cast<int>(std::count(lines.begin(), lines.end(), '\n'));
    }
    std::string counter(const std::string& more = "") const {
        return script("counter",
                      "echo >> '" + (session.folder() / "launches").string() + "'\n" + more);
    }
    /// From the point of view of a program that has just been started.
    static void expectIndependent(const std::string& report) {
        const std::string pid = report.substr(4, report.find('\n') - 4);
        // Its process group and its session are its own.
        EXPECT_THAT(report, testing::ContainsRegex("\n" + pid + " \\(.*\\) . [0-9]+ " + pid + " " +
                                                   pid + " "));
        EXPECT_THAT(report, HasSubstr("0 -> /dev/null"));
        EXPECT_THAT(report, HasSubstr("2 -> /dev/null"));
        EXPECT_EQ(signals(report, "SigIgn:\t"), 0U);
        EXPECT_EQ(signals(report, "SigBlk:\t"), 0U);
    }
    /// Without the two that the C library keeps for itself: no program can set them, so whoever
    /// started us may have left them ignored for everybody.
    static std::uint64_t signals(const std::string& report, const std::string& label) {
        const std::uint64_t mask =
            std::stoull(report.substr(report.find(label) + label.size(), 16), nullptr, 16);
        return mask & ~(std::uint64_t{0b11} << 31);
    }
};

TEST_F(ApplicationsLaunchTest, EntryIsLaunchedAndComesToTheFront) {
    const std::string path = "/usr/share/applications/debian-xterm.desktop";
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(becomesFront(path));
    EXPECT_TRUE(until([&] { return events == Strings{"+debian-xterm"}; }));
    // A second time it runs already.
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(never([&] { return probe().clientList().size() != 1; }));
}

TEST_F(ApplicationsLaunchTest, EntryThatIsActivatedOverTheBusComesToTheFront) {
    const std::string path = "/usr/share/applications/org.gnome.gedit.desktop";
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(becomesFront(path));
}

TEST_F(ApplicationsLaunchTest, FailureOverTheBusIsTold) {
    const std::string path = install("org.example.Absent", "Exec=true\nDBusActivatable=true");
    EXPECT_THAT(opened(path),
                Optional(AllOf(HasSubstr("org.example.Absent"), Not(HasSubstr("GDBus.Error")))));
}

TEST_F(ApplicationsLaunchTest, ProgramWithoutAnEntryIsRunAsItIs) {
    const auto program = session.folder() / "größe 1/my term";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::copy_file("/usr/bin/xterm", program);
    EXPECT_EQ(opened(program.string()), std::nullopt);
    EXPECT_FALSE(running(program.string())) << "the class of its window says that it is a terminal";
    applications().prefer({program.string()});
    awaited(program.string());
    EXPECT_TRUE(becomesFront(program.string()));
}

TEST_F(ApplicationsLaunchTest, WhatIsLaunchedIsIndependentOfUs) {
    signal(SIGTERM, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    setenv("BAMF_DESKTOP_FILE_HINT", "/ours.desktop", 1);
    setenv("DESKTOP_STARTUP_ID", "ours", 1);
    setenv("DBUS_STARTER_ADDRESS", "ours", 1);
    setenv("DBUS_STARTER_BUS_TYPE", "ours", 1);
    setenv("GIO_LAUNCHED_DESKTOP_FILE", "/ours.desktop", 1);
    const std::string program = reporter("program");
    EXPECT_EQ(opened(program), std::nullopt);
    const std::string ofProgram = report();
    expectIndependent(ofProgram);
    EXPECT_THAT(ofProgram, Not(HasSubstr("ours")));
    EXPECT_THAT(ofProgram, HasSubstr("DISPLAY=" + session.displayName()));

    std::filesystem::remove(session.folder() / "report");
    const std::string path = install("reporter", "Exec=" + program + "\nStartupNotify=true");
    EXPECT_EQ(opened(path), std::nullopt);
    const std::string ofEntry = report();
    expectIndependent(ofEntry);
    EXPECT_THAT(ofEntry, Not(HasSubstr("ours")));
    EXPECT_THAT(ofEntry, HasSubstr("GIO_LAUNCHED_DESKTOP_FILE=" + path));
    EXPECT_THAT(ofEntry, testing::ContainsRegex("DESKTOP_STARTUP_ID=.*_TIME[1-9][0-9]*\n"));
}

TEST_F(ApplicationsLaunchTest, ProgramThatKnowsNothingOfStartupNotificationGetsNone) {
    const std::string path = install("reporter", "Exec=" + reporter("program"));
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_THAT(report(), Not(HasSubstr("DESKTOP_STARTUP_ID")));
}

TEST_F(ApplicationsLaunchTest, ChildrenAreReaped) {
    const std::string program =
        script("program", "echo $$ > '" + (session.folder() / "pid").string() + "'");
    EXPECT_EQ(opened(program), std::nullopt);
    EXPECT_EQ(opened(install("entry", "Exec=" + program)), std::nullopt);
    // A zombie would still be there.
    EXPECT_TRUE(until([&] {
        const std::string pid = contentOf(session.folder() / "pid");
        return !pid.empty() && !std::filesystem::exists("/proc/" + pid.substr(0, pid.size() - 1));
    }));
}

TEST_F(ApplicationsLaunchTest, TerminalIsStartedForAnEntryThatAsksForOne) {
    const std::string path =
        install("console", "Exec=sleep 1000\nTerminal=true\nStartupWMClass=nothing");
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(until([&] { return probe().windowOfClass("XTerm") != 0; }));
}

TEST_F(ApplicationsLaunchTest, SecondOpenWhileItStartsIsNoSecondLaunch) {
    const std::string path =
        install("slow", "Exec=" + counter("sleep 0.6\nexec xterm -class Slow -e sleep 1000") +
                            "\nStartupWMClass=Slow");
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(becomesFront(path));
    EXPECT_EQ(launches(), 1);
}

TEST_F(ApplicationsLaunchTest, OpenAfterAFailedStartLaunchesAgain) {
    const std::string path = install("failing", "Exec=" + counter("exit 3"));
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(until([&] {
        applications().open(path, [](const std::optional<std::string>&) {});
        return launches() >= 2;
    }));
}

TEST_F(ApplicationsLaunchTest, FailuresAreToldInWords) {
    const auto at = [&](const std::string& name, const std::string& text) {
        return session.folder().write(name, text).string();
    };
    EXPECT_THAT(opened("/nowhere/a.desktop"), Optional(HasSubstr("nothing at")));
    EXPECT_THAT(opened("/nowhere/a"), Optional(HasSubstr("nothing at")));
    EXPECT_THAT(opened(session.folder().path()), Optional(HasSubstr("is a folder")));
    EXPECT_THAT(opened(at("plain", "x")), Optional(HasSubstr("may not be executed")));
    EXPECT_THAT(opened(at("a.desktop", "")), Optional(HasSubstr("is empty")));
    EXPECT_THAT(opened(at("b.desktop", "garbage")), Optional(HasSubstr("malformed")));
    EXPECT_THAT(opened(at("c.desktop", "[Desktop Entry]\nType=Link\nURL=x\n")),
                Optional(HasSubstr("not the desktop entry of an application")));
    EXPECT_THAT(opened(install("d", "")), Optional(HasSubstr("Exec line is missing")));
    EXPECT_THAT(opened(install("e", "Exec=no-such-program")),
                Optional(HasSubstr("is not installed")));
    EXPECT_THAT(opened(install("f", "Exec=sh\nTryExec=no-such-program")),
                Optional(HasSubstr("is not installed")));
    EXPECT_THAT(opened(install("g", "Exec=" + at("plain", "x"))),
                Optional(HasSubstr("may not be executed")));
    const std::string bad = at("bad", "#!/nowhere/interpreter\n");
    chmod(bad.c_str(), 0755);
    EXPECT_THAT(opened(bad), Optional(HasSubstr("No such file")));
}

TEST_F(ApplicationsLaunchTest, CompletionComesFromTheLoopEvenAfterTheEnd) {
    int completions = 0;
    subject();
    applications().open("/nowhere", [&](const std::optional<std::string>&) { ++completions; });
    EXPECT_EQ(completions, 0);
    EXPECT_TRUE(until([&] { return completions == 1; }));
}

// Rarer habits ----------------------------------------------------------------------------------

class ApplicationsWithHabits : public ApplicationsLaunchTest {
protected:
    ApplicationsWithHabits() : ApplicationsLaunchTest({.windowManager = std::nullopt}) {}

    void manage(ScriptedManager::Habits habits) {
        manager = std::make_unique<ScriptedManager>(session.displayName(), habits);
    }
    ~ApplicationsWithHabits() override { end(); }

    xcb_window_t show(const std::string& className) {
        subject();
        const xcb_window_t window = session.open(client(), {.className = className});
        probe().activate(window);
        EXPECT_TRUE(until([&] { return probe().activeWindow() == window; }));
        return window;
    }

    std::unique_ptr<ScriptedManager> manager;
};

TEST_F(ApplicationsWithHabits, WindowThatMappingDoesNotRestoreIsActivatedAndTheKeyboardGivenBack) {
    manage({.keepsIconicMapped = true});
    const std::string path = installClass("A");
    const xcb_window_t window = show("A");
    const xcb_window_t other = show("B");
    for (int i = 0; i < 3; ++i) {
        applications().hide(awaited(path));
        ASSERT_TRUE(probe().isIconic(window));
        ASSERT_TRUE(applications().isHidden(awaited(path)));
        probe().activate(other);
        ASSERT_TRUE(until([&] { return probe().activeWindow() == other; }));
        applications().unhide(awaited(path));
        EXPECT_TRUE(until([&] { return !probe().isIconic(window); }));
        EXPECT_TRUE(until([&] { return probe().activeWindow() == other; }));
        EXPECT_TRUE(never([&] { return probe().activeWindow() != other; }, 200ms));
    }
    applications().hide(awaited(path));
    applications().activate(awaited(path));
    EXPECT_TRUE(becomesFront(path));
    EXPECT_FALSE(probe().isIconic(window));
}

TEST_F(ApplicationsWithHabits, WindowThatTakesTheKeyboardLateGivesItBack) {
    manage({.activatesRestored = true, .activatesAfter = 150ms});
    const std::string path = installClass("A");
    const xcb_window_t window = show("A");
    ASSERT_TRUE(never([&] { return probe().activeWindow() != window; }, 300ms));
    const xcb_window_t other = show("B");
    ASSERT_TRUE(never([&] { return probe().activeWindow() != other; }, 300ms));
    applications().hide(awaited(path));
    probe().activate(other);
    ASSERT_TRUE(until([&] { return probe().activeWindow() == other; }));
    const int before = manager->activations();
    applications().unhide(awaited(path));
    EXPECT_TRUE(until([&] { return manager->activations() > before; }));
    EXPECT_TRUE(until([&] { return probe().activeWindow() == other; }));
}

TEST_F(ApplicationsWithHabits, ActivatingAfterUnhidingIsNotTakenBack) {
    manage({.activatesRestored = true, .activatesAfter = 50ms});
    const std::string path = installClass("A");
    const xcb_window_t window = show("A");
    show("B");
    applications().hide(awaited(path));
    applications().unhide(awaited(path));
    applications().activate(awaited(path));
    EXPECT_TRUE(until([&] { return probe().activeWindow() == window; }));
    EXPECT_TRUE(becomesFront(path));
    EXPECT_TRUE(never([&] { return probe().activeWindow() != window; }));
}

TEST_F(ApplicationsWithHabits, SlowIconifyingIsRecognisedAfterAll) {
    manage({.iconifiesAfter = 600ms});
    const std::string path = installClass("A");
    const xcb_window_t window = show("A");
    const auto home = probe().visibleFrame(window);
    applications().hide(awaited(path));
    EXPECT_TRUE(isOutOfSight(window)) << "not left standing while the manager takes its time";
    EXPECT_TRUE(applications().isHidden(awaited(path)));
    EXPECT_TRUE(until([&] { return probe().isIconic(window); }));
    EXPECT_TRUE(until([&] { return probe().visibleFrame(window) == home; }));
    EXPECT_TRUE(applications().isHidden(awaited(path)));
    applications().unhide(awaited(path));
    EXPECT_TRUE(until([&] { return !isOutOfSight(window); }));
}

TEST_F(ApplicationsWithHabits, NewWindowThatIsNotGivenTheKeyboardIsActivated) {
    manage({.activatesNew = false});
    const std::string frontPath = installClass("Front");
    show("Front");
    ASSERT_TRUE(becomesFront(frontPath));
    const std::string path =
        install("late", "Exec=xterm -class Late -e sleep 1000\nStartupWMClass=Late");
    EXPECT_EQ(opened(path), std::nullopt);
    EXPECT_TRUE(becomesFront(path));
}

TEST_F(ApplicationsWithHabits, NewWindowIsNotActivatedWhenTheUserHasTurnedElsewhere) {
    manage({.activatesNew = false});
    const std::string frontPath = installClass("Front");
    const std::string otherPath = installClass("Other");
    const xcb_window_t other = show("Other");
    show("Front");
    ASSERT_TRUE(becomesFront(frontPath));
    const std::string path = install(
        "late",
        "Exec=sh -c \"sleep 0.3; exec xterm -class Late -e sleep 1000\"\nStartupWMClass=Late");
    EXPECT_EQ(opened(path), std::nullopt);
    probe().activate(other);
    ASSERT_TRUE(becomesFront(otherPath));
    awaited(path);
    EXPECT_TRUE(never([&] { return front() != otherPath; }, 800ms));
}

}  // namespace
}  // namespace quorvel::test
