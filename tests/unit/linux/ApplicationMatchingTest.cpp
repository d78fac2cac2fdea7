#include "platform/linux/ApplicationMatching.hpp"

#include <gtest/gtest.h>

#include <unistd.h>

#include "tests/unit/linux/FakeProcess.hpp"

namespace quorvel::native {
namespace {

using test::FakeProcess;
using test::ScratchFolder;

class ApplicationMatchingTest : public testing::Test {
protected:
    std::string install(const std::string& id, const std::string& lines) {
        return folder
            .write("apps/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + lines + "\n")
            .string();
    }
    static ProcessFacts process(const std::string& program) {
        ProcessFacts facts;
        facts.pid = 100;
        facts.executable = facts.program = program;
        facts.programName = program.substr(program.rfind('/') + 1);
        return facts;
    }
    ProcessFacts read(const FakeProcess& fake) const {
        fake.writeTo(folder);
        return readProcessFacts(fake.pid, (folder / "proc").string()).value();
    }
    std::string pathOf(const WindowEvidence& evidence) const {
        return applicationPathOf(evidence, entries).value_or("nothing");
    }

    ScratchFolder folder;
    DesktopEntries entries{{(folder / "apps").string()}};
};

WindowEvidence withClass(const std::string& instance, const std::string& name) {
    WindowEvidence evidence;
    evidence.instanceName = instance;
    evidence.className = name;
    return evidence;
}

// Each evidence beats all those behind it: one is taken away after the other.
TEST_F(ApplicationMatchingTest, EvidenceIsLookedAtInOrder) {
    const std::string gtk = install("org.example.Gtk", "Exec=a");
    const std::string kde = install("org.example.Kde", "Exec=b");
    const std::string sandbox = install("org.example.Sandbox", "Exec=c");
    const std::string instanceClass = install("d", "Exec=x\nStartupWMClass=inst");
    const std::string classClass = install("e", "Exec=y\nStartupWMClass=Cls");
    const std::string instanceId = install("INST", "Exec=f");
    const std::string classId = install("CLS", "Exec=g");
    const std::string hint = install("hint", "Exec=h");
    const std::string launched = install("launched", "Exec=i");
    const std::string program = install("program", "Exec=prog");
    const std::string script = install("script", "Exec=start.sh");

    WindowEvidence evidence = withClass("inst", "Cls");
    evidence.parentApplication = "/parent";
    evidence.gtkApplicationId = "org.example.Gtk";
    evidence.kdeDesktopFile = "org.example.Kde";
    evidence.process = process("/opt/prog");
    evidence.process->sandboxIds = {"org.example.Unknown", "org.example.Sandbox"};
    evidence.process->desktopFileHint = hint;
    evidence.process->launchedDesktopFile = launched;
    evidence.process->launchedPid = 100;
    evidence.process->parentScript = "/opt/start.sh";

    EXPECT_EQ(pathOf(evidence), "/parent");
    evidence.parentApplication.reset();
    EXPECT_EQ(pathOf(evidence), gtk);
    evidence.gtkApplicationId = "org.example.Unknown";
    EXPECT_EQ(pathOf(evidence), kde);
    evidence.kdeDesktopFile = "org.example.Unknown";
    EXPECT_EQ(pathOf(evidence), sandbox);
    evidence.process->sandboxIds.clear();
    EXPECT_EQ(pathOf(evidence), instanceClass);
    evidence.instanceName = "Inst";
    EXPECT_EQ(pathOf(evidence), classClass);
    evidence.className = "cls";
    EXPECT_EQ(pathOf(evidence), instanceId);
    evidence.instanceName = "";
    EXPECT_EQ(pathOf(evidence), classId);
    evidence.className = "";
    EXPECT_EQ(pathOf(evidence), hint);
    evidence.process->desktopFileHint = "/nowhere/unknown.desktop";
    EXPECT_EQ(pathOf(evidence), launched);
    evidence.process->launchedPid = 99;
    EXPECT_EQ(pathOf(evidence), program);
    evidence.process->programName = "other";
    EXPECT_EQ(pathOf(evidence), script);
    evidence.process->parentScript = "";
    EXPECT_EQ(pathOf(evidence), "/opt/prog");
    evidence.process.reset();
    EXPECT_EQ(pathOf(evidence), "nothing");
}

TEST_F(ApplicationMatchingTest, NoEvidenceIsNoApplication) {
    install("a", "Exec=");
    install("b", "StartupWMClass=");
    EXPECT_EQ(pathOf({}), "nothing");
}

TEST_F(ApplicationMatchingTest, StartupClassIsComparedExactly) {
    install("a", "Exec=a\nStartupWMClass=XTerm");
    EXPECT_EQ(pathOf(withClass("xterm", "xTerm")), "nothing");
}

TEST_F(ApplicationMatchingTest, ClassTeeBeatsInstanceXterm) {
    const std::string xterm = install("debian-xterm", "Exec=xterm\nStartupWMClass=XTerm");
    const std::string tee = install("tee", "Exec=xterm -class Tee\nStartupWMClass=Tee");
    EXPECT_EQ(pathOf(withClass("xterm", "XTerm")), xterm);
    EXPECT_EQ(pathOf(withClass("xterm", "Tee")), tee);
}

// The instance is the program's own name then, which it has by itself.
TEST_F(ApplicationMatchingTest, ClassBeatsAnInstanceThatIsOnlyTheProgram) {
    const std::string xterm = install("terminal", "Exec=/usr/bin/xterm\nStartupWMClass=xterm");
    const std::string tee = install("tee", "Exec=xterm -class Tee\nStartupWMClass=Tee");
    EXPECT_EQ(pathOf(withClass("xterm", "XTerm")), xterm);
    EXPECT_EQ(pathOf(withClass("xterm", "Tee")), tee);
}

TEST_F(ApplicationMatchingTest, ClassBeatsSuchAnInstanceAmongIdsToo) {
    const std::string xterm = install("xterm", "Exec=xterm");
    const std::string tee = install("tee", "Exec=xterm -class Tee");
    EXPECT_EQ(pathOf(withClass("xterm", "XTerm")), xterm);
    EXPECT_EQ(pathOf(withClass("xterm", "Tee")), tee);
}

// A browser gives every web application an instance of its own and all of them its class.
TEST_F(ApplicationMatchingTest, InstanceThatIsNotTheProgramBeatsTheClass) {
    const std::string browser = install("browser", "Exec=browser\nStartupWMClass=Browser");
    const std::string web = install("web", "Exec=browser --app-id=abc\nStartupWMClass=crx_abc");
    EXPECT_EQ(pathOf(withClass("browser", "Browser")), browser);
    EXPECT_EQ(pathOf(withClass("crx_abc", "Browser")), web);
}

TEST_F(ApplicationMatchingTest, HelperThatNoMenuShowsYields) {
    install("code-handler", "Exec=sh -c x\nStartupWMClass=Code\nNoDisplay=true");
    const std::string code = install("code-main", "Exec=sh\nStartupWMClass=Code");
    EXPECT_EQ(pathOf(withClass("code", "Code")), code);
}

TEST_F(ApplicationMatchingTest, OfTwoWithOneClassTheOneThatWasLaunchedCounts) {
    install("a", "Exec=sh\nStartupWMClass=Foo");
    const std::string b = install("b", "Exec=sh --safe\nStartupWMClass=Foo");
    WindowEvidence evidence = withClass("foo", "Foo");
    evidence.process = process("/bin/foo");
    evidence.process->launchedDesktopFile = b;
    evidence.process->launchedPid = 100;
    EXPECT_EQ(pathOf(evidence), b);
}

TEST_F(ApplicationMatchingTest, NativeProgramIsFoundByItsName) {
    const std::string path = install("a", "Exec=foo %U");
    WindowEvidence evidence;
    evidence.process = read({.executable = "/usr/bin/foo"});
    EXPECT_EQ(pathOf(evidence), path);
}

TEST_F(ApplicationMatchingTest, EntryThatNamesTheFileBeatsItsNamesake) {
    install("a", "Exec=/opt/old/foo");
    const std::string path = install("b", "Exec=/opt/new/foo");
    WindowEvidence evidence;
    evidence.process = read({.executable = "/opt/new/foo"});
    EXPECT_EQ(pathOf(evidence), path);
}

TEST_F(ApplicationMatchingTest, ProgramIsFoundBehindWrappersInExec) {
    const char* wrapped[] = {"env A=1 foo", "sh -c \"exec foo --x\"",
                             "bwrap --bind / / --unshare-pid -- /usr/bin/foo", "nice -n 5 foo"};
    for (const char* exec : wrapped) {
        const std::string path = install("a", std::string("Exec=") + exec);
        entries.invalidate();
        WindowEvidence evidence;
        evidence.process = process("/usr/bin/foo");
        EXPECT_EQ(pathOf(evidence), path) << exec;
    }
}

TEST_F(ApplicationMatchingTest, WrapperItselfIsNobodysProgram) {
    install("a", "Exec=env A=1 foo");
    install("b", "Exec=bwrap --bind / / foo");
    install("c", "Exec=python3 /opt/c.py");
    WindowEvidence evidence;
    for (const char* program : {"/usr/bin/env", "/usr/bin/bwrap"}) {
        evidence.process = process(program);
        EXPECT_EQ(pathOf(evidence), program);
    }
    evidence.process =
        read({.executable = "/usr/bin/python3.11", .arguments = {"python3", "-c", "x"}});
    EXPECT_EQ(pathOf(evidence), "/usr/bin/python3.11");
}

TEST_F(ApplicationMatchingTest, PythonProgramIsFoundByItsScript) {
    const std::string script = folder.write("bin/foo", "").string();
    const std::string path = install("a", "Exec=foo");
    WindowEvidence evidence;
    evidence.process =
        read({.executable = "/usr/bin/python3.11", .arguments = {"/usr/bin/python3", script}});
    EXPECT_EQ(pathOf(evidence), path);

    install("a", "Exec=python3 -m foo");
    entries.invalidate();
    evidence.process = read(
        {.pid = 101, .executable = "/usr/bin/python3.11", .arguments = {"python3", "-m", "foo"}});
    EXPECT_EQ(pathOf(evidence), path);
}

TEST_F(ApplicationMatchingTest, ScriptWithoutAnEntryStandsForItself) {
    const std::string script = folder.write("bin/größe.py", "").string();
    WindowEvidence evidence = withClass("größe.py", "Größe.py");
    evidence.process =
        read({.executable = "/usr/bin/python3.11", .arguments = {"python3", script}});
    EXPECT_EQ(pathOf(evidence), script);
}

TEST_F(ApplicationMatchingTest, ChildOfAWrapperScriptBelongsToItsEntry) {
    const std::string script = folder.write("bin/start.sh", "").string();
    const std::string path = install("a", "Exec=" + script);
    FakeProcess{.pid = 7, .executable = "/usr/bin/dash", .arguments = {"sh", script}}.writeTo(
        folder);
    WindowEvidence evidence;
    // The variables name the script's process, not the child's.
    evidence.process = read(
        {.executable = "/opt/foo-bin",
         .environment = {"GIO_LAUNCHED_DESKTOP_FILE=" + path, "GIO_LAUNCHED_DESKTOP_FILE_PID=7"},
         .parent = 7});
    EXPECT_EQ(pathOf(evidence), path);
}

TEST_F(ApplicationMatchingTest, ChildOfAScriptThatNobodyLaunchedBelongsToTheScriptAtLast) {
    const std::string script = folder.write("bin/start.sh", "").string();
    const std::string path = install("a", "Exec=" + script);
    FakeProcess{.pid = 7, .executable = "/usr/bin/dash", .arguments = {"sh", script}}.writeTo(
        folder);
    WindowEvidence evidence;
    evidence.process = read({.executable = "/opt/foo-bin", .parent = 7});
    EXPECT_EQ(pathOf(evidence), path);
    const std::string own = install("b", "Exec=foo-bin");
    entries.invalidate();
    EXPECT_EQ(pathOf(evidence), own);
}

TEST_F(ApplicationMatchingTest, ProgramStartedInATerminalIsNotTheTerminal) {
    const std::string terminal = install("terminal", "Exec=terminal");
    FakeProcess{.pid = 7, .executable = "/usr/bin/terminal"}.writeTo(folder);
    FakeProcess{.pid = 8, .executable = "/usr/bin/bash", .arguments = {"bash"}, .parent = 7}
        .writeTo(folder);
    WindowEvidence evidence;
    evidence.process = read({.pid = 9,
                             .executable = "/opt/foo",
                             .environment = {"GIO_LAUNCHED_DESKTOP_FILE=" + terminal,
                                             "GIO_LAUNCHED_DESKTOP_FILE_PID=7"},
                             .parent = 8});
    EXPECT_EQ(pathOf(evidence), "/opt/foo");
}

TEST_F(ApplicationMatchingTest, FlatpakBelongsToTheEntryThatItExports) {
    const std::string path =
        install("org.example.Foo", "Exec=/usr/bin/flatpak run --command=foo org.example.Foo");
    install("foo", "Exec=foo\nStartupWMClass=foo");
    WindowEvidence evidence = withClass("foo", "Foo");
    evidence.process = read(
        {.executable = "/app/bin/foo", .flatpakInfo = "[Application]\nname=org.example.Foo\n"});
    EXPECT_EQ(pathOf(evidence), path);
}

TEST_F(ApplicationMatchingTest, DesktopFileMayBeNamedByPathOrWithExtension) {
    const std::string path = install("org.example.Foo", "Exec=foo");
    WindowEvidence evidence;
    for (const std::string& name : {path, std::string("org.example.Foo.desktop"),
                                    std::string("/elsewhere/org.example.Foo.desktop")}) {
        evidence.kdeDesktopFile = name;
        EXPECT_EQ(pathOf(evidence), path) << name;
    }
}

TEST_F(ApplicationMatchingTest, OfTwoPathsWithOneIdTheBoundOneIsGiven) {
    const std::string standard = install("foo", "Exec=foo\nStartupWMClass=Foo");
    const std::string bound =
        folder
            .write("mine/foo.desktop",
                   "[Desktop Entry]\nType=Application\nExec=foo\nStartupWMClass=Foo\n")
            .string();
    EXPECT_EQ(pathOf(withClass("foo", "Foo")), standard);
    entries.prefer({bound});
    EXPECT_EQ(pathOf(withClass("foo", "Foo")), bound);
}

TEST_F(ApplicationMatchingTest, BoundExecutableIsKnownByItself) {
    const std::string program = folder.write("bin/foo", "").string();
    const std::string entry = install("foo", "Exec=foo\nStartupWMClass=Foo");
    WindowEvidence evidence = withClass("foo", "Foo");
    evidence.process = process(program);
    EXPECT_EQ(pathOf(evidence), entry);
    entries.prefer({program});
    EXPECT_EQ(pathOf(evidence), program);
    entries.prefer({program, entry});
    EXPECT_EQ(pathOf(evidence), entry);
}

TEST_F(ApplicationMatchingTest, HostileTextsMatchNothing) {
    install("a", "Exec=a\nStartupWMClass=A");
    const std::string names[] = {std::string(1 << 20, 'a'),
                                 std::string("\0\xFF/../", 6),
                                 "/",
                                 "..",
                                 "../a",
                                 ".desktop",
                                 "[",
                                 "\n"};
    for (const std::string& name : names) {
        WindowEvidence evidence = withClass(name, name);
        evidence.gtkApplicationId = evidence.kdeDesktopFile = name;
        EXPECT_EQ(pathOf(evidence), "nothing");
    }
}

}  // namespace
}  // namespace quorvel::native
