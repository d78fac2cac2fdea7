#pragma once

#include <functional>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/WindowAccess.hpp"
#include "platform/linux/FillingStateKeeper.hpp"
#include "platform/linux/FocusedWindowSource.hpp"
#include "platform/linux/FrameReader.hpp"
#include "platform/linux/HeldFrames.hpp"
#include "platform/linux/HoldNote.hpp"
#include "platform/linux/MoveLadder.hpp"
#include "platform/linux/TakeoverWatch.hpp"
#include "platform/linux/WindowElements.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/WindowNotes.hpp"
#include "platform/linux/WindowRaiser.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Other programs' windows on X11. Everything that it is given outlives it.
class X11WindowAccess final : public WindowAccess {
public:
    /// The displays in root coordinates, the primary one first; none for a moment during hot-plug.
    using DisplaysInRoot = std::function<std::vector<Rect>()>;

    X11WindowAccess(XConnection& x, WindowElements& elements, WindowManagerInfo& manager,
                    FocusedWindowSource& focus, DisplaysInRoot displaysInRoot);

    FocusedWindowReading focusedWindow(std::int32_t processIdentifier,
                                       const std::string& bundlePath) override;
    FrameReading readFrame(AXWindow window) override;
    std::int32_t setOrigin(AXWindow window, Point originAX, MoveStep step) override;
    void raise(AXWindow window) override;
    void hold(AXWindow window, const Rect& originalFrameAX) override;
    void letGo(AXWindow window, EndOfHold how) override;
    int putBackLost() override;

    // Observation: from `take` to `endObservation`, held windows are read from what was found for
    // all of them in one round trip. A window that is moved meanwhile is read afresh.
    void askForHeldFrames() { heldFrames.ask(); }
    void takeHeldFrames();
    void endObservation() { isObserving = false; }

    [[nodiscard]] Subscription onHeldWindowChange(std::function<void()> handler) {
        return heldFrames.onChange(std::move(handler));
    }
    [[nodiscard]] Subscription onHold(std::function<void()> handler) {
        return newHolds.add(std::move(handler));
    }

private:
    using Clock = FrameReader::Clock;

    struct Hold {
        xcb_window_t client = XCB_WINDOW_NONE;
        Rect originalFrameAX;
        std::optional<GivenUpStates> given;
        bool keepsStates = false;       ///< it is moved past the window manager with its states
        int attemptsLeft = 0;           ///< to give it the size in which it was seen
        bool comesHome = false;         ///< the next final step is the last one
        std::uint64_t managerLife = 0;  ///< under which it was moved last
    };

    /// Let go of while somebody filled the screen with it.
    struct Filled {
        HoldNote note;
        std::optional<Clock::time_point> leftAt;
    };

    std::optional<WindowReading> read(AXWindow window);
    /// Says on the window itself what it takes to bring it back.
    void note(const Hold& hold);
    HoldNote noteOf(const Hold& hold);
    bool bringBack(xcb_window_t client, const HoldNote& note);
    void endHold(AXWindow window);
    void handle(const xcb_generic_event_t& event);
    void lookAfterFilled();
    /// Where it will be when somebody shows it again.
    void sendHomeWithdrawn(AXWindow window, Point originAX);
    /// Without a display, as long as there is none, the place of the last one.
    Point axOriginInRoot(const std::vector<Rect>& displays);
    /// Out of the states that hold it in place; what is known of the window afterwards.
    std::optional<WindowReading> freed(const WindowReading& now, Hold* hold,
                                       Clock::time_point deadline);

    XConnection& x;
    WindowElements& elements;
    WindowManagerInfo& manager;
    FocusedWindowSource& focus;
    DisplaysInRoot displaysInRoot;
    FrameReader frames;
    HeldFrames heldFrames;
    MoveLadder ladder;
    FillingStateKeeper states;
    WindowRaiser raiser;
    WindowNotes notes;
    Point lastAxOrigin;
    std::unordered_map<AXWindow, Hold> holds;
    std::unordered_map<xcb_window_t, Filled> filled;
    TakeoverWatch returning;  ///< let go of while a window manager took over
    Subscribers<> newHolds;
    bool isObserving = false;
    Subscription events;
};

}  // namespace quorvel::native
