// The item's window in a tray that does not behave.

#include <gmock/gmock.h>

#include "platform/linux/status/TrayWindow.hpp"
#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::test {
namespace {

using testing::ElementsAre;

/// Takes the items in as the test says.
class FakeTray {
public:
    FakeTray(native::XConnection& x, std::function<void(xcb_window_t)> taken)
        : x(x),
          taken(std::move(taken)),
          events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })) {
        window = xcb_generate_id(x.xcb());
        const std::uint32_t black = 0;
        xcb_create_window(x.xcb(), XCB_COPY_FROM_PARENT, window, x.root(), 0, 0, 400, 400, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                          &black);
        xcb_map_window(x.xcb(), window);
        const xcb_atom_t selection = x.atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(x.xcb(), window, selection, XCB_CURRENT_TIME);
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = x.root();
        message.type = x.atom("MANAGER");
        message.data.data32[1] = selection;
        message.data.data32[2] = window;
        x.check(xcb_send_event_checked(x.xcb(), 0, x.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                       reinterpret_cast<const char*>(&message)));
    }
    ~FakeTray() { x.check(xcb_destroy_window_checked(x.xcb(), window)); }
    FakeTray(const FakeTray&) = delete;
    FakeTray& operator=(const FakeTray&) = delete;

    void embed(xcb_window_t item, std::uint32_t size) {
        xcb_reparent_window(x.xcb(), item, window, 0, 0);
        const std::uint32_t sizes[] = {size, size};
        xcb_configure_window(x.xcb(), item, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                             sizes);
        x.check(xcb_map_window_checked(x.xcb(), item));
    }
    void throwOut(xcb_window_t item) {
        x.check(xcb_reparent_window_checked(x.xcb(), item, x.root(), 50, 50));
    }
    void destroy(xcb_window_t item) { x.check(xcb_destroy_window_checked(x.xcb(), item)); }

private:
    void handle(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7F) != XCB_CLIENT_MESSAGE) return;
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.window != window || message.type != x.atom("_NET_SYSTEM_TRAY_OPCODE")) return;
        taken(message.data.data32[2]);
    }

    native::XConnection& x;
    std::function<void(xcb_window_t)> taken;
    xcb_window_t window = XCB_WINDOW_NONE;
    Subscription events;
};

class TrayWindowTest : public ConnectedTest {
protected:
    std::unique_ptr<native::XConnection> theirs = connect(session.displayName());
    Subscription attachedTheirs = loop.attach(*theirs);
    static constexpr std::uint32_t red = 0xFF0000;
    native::StatusItemContent content{
        {{22, std::vector<std::uint32_t>(22 * 22, 0xFF000000 | red)}}, "", "Tip", "Quorvel"};
    std::vector<StatusItemEvent> clicks;
    native::TrayWindow item{*connection, loop, content,
                            [this](const StatusItemEvent& event) { clicks.push_back(event); }};
    std::vector<xcb_window_t> docked;

    bool showsRed(double size) {
        return waitInLoop([&] {
            const auto seen = session.probe().boundsOf(red);
            return seen && seen->width == size && seen->height == size;
        });
    }
};

TEST_F(TrayWindowTest, ATrayThatMakesItHugeGetsAPictureOfBoundedSize) {
    FakeTray tray(*theirs, [&](xcb_window_t window) { docked.push_back(window); });
    item.setWanted(true);
    ASSERT_TRUE(waitInLoop([&] { return docked.size() == 1; }));
    tray.embed(docked[0], 24);
    EXPECT_TRUE(showsRed(24));
    for (const std::uint32_t size : {2100U, 30'000U, 1U, 400U}) {
        tray.embed(docked[0], size);
        handleAllSoFar();
        EXPECT_FALSE(connection->isLost()) << size;
    }
    EXPECT_TRUE(showsRed(256));
    EXPECT_EQ(docked.size(), 1u);
}

TEST_F(TrayWindowTest, ATrayThatDestroysItIsAskedLessAndLessOften) {
    FakeTray* self = nullptr;
    FakeTray tray(*theirs, [&](xcb_window_t window) {
        docked.push_back(window);
        self->destroy(window);
    });
    self = &tray;
    item.setWanted(true);
    EXPECT_TRUE(waitInLoop([&] { return docked.size() == 3; }));
    const auto third = std::chrono::steady_clock::now();
    EXPECT_TRUE(waitInLoop([&] { return docked.size() == 4; }));
    EXPECT_GE(std::chrono::steady_clock::now() - third, 700ms);
}

TEST_F(TrayWindowTest, WhatIsThrownOutOfATrayIsNotLeftOnTheDesktop) {
    FakeTray tray(*theirs, [&](xcb_window_t window) { docked.push_back(window); });
    item.setWanted(true);
    ASSERT_TRUE(waitInLoop([&] { return docked.size() == 1; }));
    tray.embed(docked[0], 22);
    ASSERT_TRUE(showsRed(22));
    tray.throwOut(docked[0]);
    EXPECT_TRUE(waitInLoop([&] { return !session.probe().isViewable(docked[0]); }));
}

TEST_F(TrayWindowTest, ATrayThatTakesOverGetsItFromTheOneBefore) {
    std::optional<FakeTray> first(std::in_place, *theirs,
                                  [&](xcb_window_t window) { docked.push_back(window); });
    item.setWanted(true);
    ASSERT_TRUE(waitInLoop([&] { return docked.size() == 1; }));
    std::vector<xcb_window_t> later;
    FakeTray second(*theirs, [&](xcb_window_t window) { later.push_back(window); });
    EXPECT_TRUE(waitInLoop([&] { return later.size() == 1; }));
    EXPECT_FALSE(session.probe().exists(docked[0]));
    first.reset();
    handleAllSoFar();
    EXPECT_TRUE(session.probe().exists(later[0]));
}

TEST_F(TrayWindowTest, OnlyAReleaseOverItIsAClick) {
    FakeTray tray(*theirs, [&](xcb_window_t window) { docked.push_back(window); });
    item.setWanted(true);
    ASSERT_TRUE(waitInLoop([&] { return docked.size() == 1; }));
    tray.embed(docked[0], 22);
    ASSERT_TRUE(showsRed(22));
    XInput& input = session.input();
    input.moveTo(10, 10);
    input.pressButton(1);
    input.moveTo(300, 300);
    input.releaseButton(1);
    input.moveTo(10, 10);
    for (const int button : {2, 4, 5}) input.click(static_cast<std::uint8_t>(button));
    handleAllSoFar();
    EXPECT_TRUE(clicks.empty());
    input.click(1);
    input.press("Control");
    input.click(1);
    input.release("Control");
    input.click(3);
    EXPECT_TRUE(waitInLoop([&] { return clicks.size() == 3; }));
    using Type = StatusItemEvent::Type;
    EXPECT_THAT(clicks, ElementsAre(StatusItemEvent{Type::leftMouseUp, false},
                                    StatusItemEvent{Type::leftMouseUp, true},
                                    StatusItemEvent{Type::rightMouseUp, false}));
}

}  // namespace
}  // namespace quorvel::test
