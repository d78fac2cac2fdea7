// A window manager that goes away in the middle of a slide.

#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

class ProgramManagerGoneTest : public testing::TestWithParam<int> {
protected:
    ProgramWithNotes program;
};

TEST_P(ProgramManagerGoneTest, AWindowTuckedMeanwhileIsStillTuckedUnderTheNextOne) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.settledFrame(window);
    program.press(program.shortcut);
    // A moment of the slide, which takes a sixth of a second.
    neverWithin(std::chrono::milliseconds(GetParam()), [] { return false; });
    program.session.windowManager()->kill();
    ASSERT_TRUE(waitUntil([&] { return program.seen(window).x < 0; }));
    // Longer than one manager takes to hand its windows to the next.
    EXPECT_TRUE(neverWithin(1500ms, [&] {
        const auto lines = program.linesSinceReady();
        return !lines.empty() &&
               lines.back() == "Quorvel: released a tucked window — moved externally or closed";
    }));
    program.session.startWindowManager(WindowManagerKind::openbox);
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(waitUntil([&] {
        const Rect now = program.seen(window);
        return now.x >= 0 && now.y >= 0 && std::abs(now.x - home.x) < 40;
    })) << testing::PrintToString(program.seen(window));
}

INSTANTIATE_TEST_SUITE_P(, ProgramManagerGoneTest, testing::Values(30, 80, 120));

}  // namespace
}  // namespace quorvel::test
