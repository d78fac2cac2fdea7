// Killed at any moment, the program leaves every window where its next start, or the window manager
// alone, brings it back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr Rect display{0, 0, 1280, 800};

bool isOnDisplay(const Rect& frame) {
    return frame.x >= 0 && frame.y >= 0 && frame.maxX() <= display.maxX() &&
           frame.maxY() <= display.maxY() && !frame.isEmpty();
}

class ProgramKilledTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ProgramOnX program{{.windowManager = GetParam()}};
    TestApplication notes{program.session, QUORVEL_TEST_APPLICATION, {.name = "notes"}};
    TestApplication tasks{
        program.session, QUORVEL_TEST_APPLICATION, {.name = "tasks", .area = {600, 300, 350, 250}}};
    TestApplication files{
        program.session, QUORVEL_TEST_APPLICATION, {.name = "files", .area = {400, 100, 300, 200}}};
    static constexpr const char* notesKeys = "control,option,N";
    static constexpr const char* tasksKeys = "control,option,K";
    static constexpr const char* filesKeys = "control,option,F";

    void SetUp() override {
        program.bind({{notes.entry(), notesKeys, "left"},
                      {tasks.entry(), tasksKeys, "right"},
                      {files.entry(), filesKeys, "none"}});
        // Away from the edges and the windows.
        program.session.input().moveTo(640, 780);
    }
    void kill() {
        program.sendSignal(SIGKILL);
        program.waitForExit();
    }
    bool isInReach(xcb_window_t window) {
        return !program.probe().isIconic(window) && isOnDisplay(program.seen(window));
    }
    struct PutAway {
        xcb_window_t window = XCB_WINDOW_NONE;
        Rect home;
    };
    /// Opens it by its shortcut; the second press tucks or hides it.
    PutAway openAndPutAway(TestApplication& application, const char* keys) {
        program.press(keys);
        const xcb_window_t window = application.waitForWindow();
        EXPECT_TRUE(program.waitUntilActive(window));
        const Rect home = program.settledFrame(window);
        program.press(keys);
        EXPECT_TRUE(waitUntil([&] { return !isInReach(window); }));
        return {window, home};
    }
    static auto saysPutBack() { return Contains(HasSubstr("Quorvel: put back ")); }
};

class ProgramKilledWhereWindowsAreMaximized : public ProgramKilledTest {};

TEST_P(ProgramKilledTest, AtRestAndHiddenEverythingIsBackWithTheNextStart) {
    program.start();
    const auto [tucked, home] = openAndPutAway(notes, notesKeys);
    ASSERT_TRUE(program.waitForFrame(tucked, ProgramOnX::atLeftEdge(home)));
    const auto [hidden, hiddenHome] = openAndPutAway(files, filesKeys);

    kill();
    program.start();
    EXPECT_TRUE(program.waitForFrame(tucked, home));
    EXPECT_TRUE(waitUntil([&] { return isInReach(hidden); }));
    EXPECT_TRUE(program.waitForFrame(hidden, hiddenHome));
    EXPECT_THAT(program.logLines(),
                Contains("Quorvel: put back 2 window(s) that an earlier run left"));

    // And is tucked and put back by the new one as ever.
    program.probe().activate(tucked);
    ASSERT_TRUE(program.waitUntilActive(tucked));
    program.press(notesKeys);
    ASSERT_TRUE(program.waitForFrame(tucked, ProgramOnX::atLeftEdge(home)));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(tucked, home));
}

TEST_P(ProgramKilledTest, AnOrderlyEndLeavesNothingForTheNextStart) {
    program.start();
    const auto [tucked, home] = openAndPutAway(notes, notesKeys);
    ASSERT_TRUE(program.waitForFrame(tucked, ProgramOnX::atLeftEdge(home)));
    const xcb_window_t hidden = openAndPutAway(files, filesKeys).window;
    EXPECT_EQ(program.terminate(), 0);
    ASSERT_TRUE(program.waitForFrame(tucked, home));
    for (const xcb_window_t window : {tucked, hidden}) {
        for (const char* note : {"_QUORVEL_HELD", "_QUORVEL_HIDDEN"}) {
            EXPECT_TRUE(program.probe().connection().property32(window, note).empty()) << note;
        }
    }
    program.start();
    EXPECT_THAT(program.logLines(), Not(saysPutBack()));
}

TEST_P(ProgramKilledTest, WithoutANextStartTheWindowManagerCanBringThemBack) {
    program.start();
    const xcb_window_t hidden = openAndPutAway(files, filesKeys).window;
    const xcb_window_t tucked = openAndPutAway(notes, notesKeys).window;
    EXPECT_TRUE(
        program.waitForLine("Quorvel: tucked " + notes.entry().string() + " window to left"));
    kill();
    // As by its menu or its keys.
    for (const xcb_window_t window : {tucked, hidden}) {
        program.probe().activate(window);
        program.probe().requestMove(window, 300, 200);
        EXPECT_TRUE(waitUntil([&] { return isInReach(window); }, 5s))
            << testing::PrintToString(program.seen(window)) << (window == hidden ? " hidden" : "");
    }
}

TEST_P(ProgramKilledWhereWindowsAreMaximized, AMaximizedWindowIsMaximizedAgain) {
    program.start();
    program.press(notesKeys);
    const xcb_window_t window = notes.waitForWindow();
    ASSERT_TRUE(program.waitUntilActive(window));
    ChildProcess maximize = program.session.start(
        {"wmctrl", "-ir", std::to_string(window), "-b", "add,maximized_vert,maximized_horz"});
    const auto isMaximized = [&] {
        const auto states = program.probe().netWmState(window);
        return std::count(states.begin(), states.end(), "_NET_WM_STATE_MAXIMIZED_VERT") > 0;
    };
    ASSERT_TRUE(waitUntil(isMaximized));
    const Rect home = program.settledFrame(window);
    program.press(notesKeys);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    kill();
    program.start();
    EXPECT_TRUE(waitUntil(isMaximized));
    EXPECT_TRUE(program.waitForFrame(window, home));
}

TEST_P(ProgramKilledTest, AtFiftyRandomMomentsNothingIsEverLost) {
    program.start();
    program.press(notesKeys);
    const xcb_window_t first = notes.waitForWindow();
    ASSERT_TRUE(program.waitUntilActive(first));
    program.press(tasksKeys);
    const xcb_window_t second = tasks.waitForWindow();
    ASSERT_TRUE(program.waitUntilActive(second));
    program.press(filesKeys);
    const xcb_window_t third = files.waitForWindow();
    ASSERT_TRUE(program.waitUntilActive(third));
    for (const xcb_window_t window : {first, second, third}) program.settledFrame(window);

    constexpr std::uint32_t seed = 20261121;
    std::mt19937 random(seed);
    // A slide takes a fifth of a second.
    std::uniform_int_distribution<int> moment(0, 300);
    std::uniform_int_distribution<int> choice(0, 2);
    const std::pair<const char*, xcb_window_t> all[] = {
        {notesKeys, first}, {tasksKeys, second}, {filesKeys, third}};
    int found = 0;
    for (int round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        for (int presses = 1 + choice(random); presses > 0; --presses) {
            const auto& [keys, window] = all[choice(random)];
            program.probe().activate(window);
            program.press(keys);
            neverWithin(std::chrono::milliseconds(moment(random) / 4), [] { return false; });
        }
        neverWithin(std::chrono::milliseconds(moment(random)), [] { return false; });
        kill();
        for (const auto& [keys, window] : all) found += isInReach(window) ? 0 : 1;
        program.start();
        for (const auto& [keys, window] : all) {
            ASSERT_TRUE(waitUntil([&, each = window] { return isInReach(each); }, 5s))
                << keys << " at " << testing::PrintToString(program.seen(window));
        }
    }
    // The moments were bad ones.
    EXPECT_GT(found, 10);
    RecordProperty("away", found);
    EXPECT_EQ(program.terminate(), 0);
}

INSTANTIATE_TEST_SUITE_P(, ProgramKilledWhereWindowsAreMaximized,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                         WindowManagerKind::kwin, WindowManagerKind::marco),
                         testing::PrintToStringParamName());

INSTANTIATE_TEST_SUITE_P(, ProgramKilledTest, testing::ValuesIn(allWindowManagers()),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace quorvel::test
