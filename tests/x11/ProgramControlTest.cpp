// The second program, which asks the running one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>

#include "platform/linux/JsonDocument.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ProgramControlTest : public testing::Test {
protected:
    ProgramWithNotes program;

    struct Result {
        int status = -1;
        std::string output;  ///< of both streams
    };
    Result run(std::vector<std::string> arguments, const Environment& extra = {}) {
        arguments.insert(arguments.begin(), QUORVEL_CTL);
        const std::filesystem::path output = program.session.folder() / "quorvelctl.log";
        std::filesystem::remove(output);
        ChildProcess process = program.session.start(arguments, extra);
        const int status = WEXITSTATUS(process.waitForExit().value_or(-1));
        return {status, ProgramOnX::contentOf(output)};
    }
    /// Once the running program is on the bus.
    Result ask(const std::vector<std::string>& arguments) {
        Result result;
        EXPECT_TRUE(waitUntil([&] { return (result = run(arguments)).status != 3; }));
        return result;
    }
    Value::Dictionary json(const std::string& command) {
        const Result result = ask({"--json", command});
        std::string error;
        const auto document = native::JsonDocument::parse(result.output, error);
        EXPECT_TRUE(document) << error << result.output;
        return document ? document->values() : Value::Dictionary{};
    }
};

TEST_F(ProgramControlTest, StatusToggleRevealUntuckAndReload) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.settledFrame(window);
    Result result = ask({"status"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, AllOf(HasSubstr("notes  ⌃⌥N\n      left edge of screen\n"),
                                     HasSubstr("Tucked windows:\n  none\n")));

    EXPECT_EQ(ask({"toggle", "notes"}).status, 0);
    EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    EXPECT_THAT(ask({"status"}).output, HasSubstr("notes at the left edge\n"));
    EXPECT_THAT(ask({"why"}).output,
                AllOf(HasSubstr("by quorvelctl toggle notes:"), HasSubstr("window to left")));
    EXPECT_EQ(json("status").at("tucked").array()->size(), 1U);

    EXPECT_EQ(ask({"reveal", program.path}).status, 0);
    EXPECT_TRUE(waitUntil([&] { return program.seen(window).x >= 0; }));
    EXPECT_THAT(ask({"untuck", "--all"}).output, HasSubstr("1 window(s) put back"));
    EXPECT_TRUE(program.waitForFrame(window, home));

    program.bind({{program.path, "control,option,J"}});
    EXPECT_EQ(ask({"reload"}).status, 0);
    EXPECT_TRUE(waitUntil([&] { return ask({"status"}).output.find("⌃⌥J") != std::string::npos; }));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramControlTest, WhatIsRefusedSaysWhyAndEndsWithOne) {
    program.bind({{program.path, program.shortcut}});
    program.start();
    Result result = ask({"toggle", "Paint"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "quorvelctl: No application “Paint” is in the list.\n");
    result = ask({"why"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("Nothing has been triggered"));
    EXPECT_EQ(ask({"reveal", "notes"}).output, "quorvelctl: notes has no tucked window.\n");
}

TEST_F(ProgramControlTest, DoctorNamesTheWindowManagerThePanelAndARefusedShortcut) {
    const XClient another(program.session.displayName());
    xcb_grab_key(another.xcb(), 1, another.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1,
                 program.session.input().keycode("N"), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    std::free(
        xcb_get_input_focus_reply(another.xcb(), xcb_get_input_focus(another.xcb()), nullptr));
    program.bind({{program.path, program.shortcut}});
    program.start();
    const Result result = ask({"doctor"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("✓ window manager: Openbox is running. "),
                      HasSubstr("✗ panel: No panel shows status items"),
                      HasSubstr("com.tessivane.quorvel can be written to."),
                      HasSubstr("✗ shortcuts: ⌃⌥N of notes is held by another program.")));
}

TEST_F(ProgramControlTest, WhatIsNotRunningIsSaidSoAndEndsWithThree) {
    Result result = run({"status"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output, "quorvelctl: Quorvel is not running\n");
    result = run({"status"}, {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.output, StartsWith("quorvelctl: the session bus: "));
}

TEST_F(ProgramControlTest, AMisusedCommandLineShowsWhatThereIs) {
    const std::vector<std::vector<std::string>> misuses{
        {},         {"explode"},         {"toggle"},        {"status", "notes"},
        {"untuck"}, {"status", "--all"}, {"--loud", "why"}, {"toggle", "a", "b"}};
    for (const auto& misuse : misuses) {
        const Result result = run(misuse);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(misuse);
        EXPECT_THAT(result.output, HasSubstr("usage: quorvelctl"));
    }
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_THAT(run({"--version"}).output, StartsWith("quorvelctl 0."));
}

TEST_F(ProgramControlTest, ABusThatComesAgainFindsTheProgramAgain) {
    program.bind({{program.path, program.shortcut}});
    program.start();
    EXPECT_EQ(ask({"status"}).status, 0);
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_EQ(run({"status"}).status, 3);
    program.start();
    EXPECT_EQ(ask({"status"}).status, 0);
}

TEST_F(ProgramControlTest, AToggleWhileAnAlertIsUpWaitsForItsAnswer) {
    program.bind(
        {{"/opt/nowhere/Missing.desktop", "control,option,M"}, {program.path, program.shortcut}});
    program.start();
    EXPECT_EQ(ask({"status"}).status, 0);
    program.press("control,option,M");
    const xcb_window_t alert = program.waitForOwnWindow();
    EXPECT_EQ(ask({"toggle", "notes"}).status, 0);
    EXPECT_TRUE(neverWithin(300ms, [&] { return program.notes.launches() > 0; }));
    program.session.input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_TRUE(program.waitUntilActive(program.notes.waitForWindow()));
}

}  // namespace
}  // namespace quorvel::test
