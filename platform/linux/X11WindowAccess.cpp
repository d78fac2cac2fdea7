#include "platform/linux/X11WindowAccess.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "platform/linux/DisplayGeometry.hpp"
#include "platform/linux/HiddenNotes.hpp"
#include "platform/linux/MoveRequests.hpp"

namespace quorvel::native {
namespace {

constexpr std::int32_t refused = -1;

// Every call ends within 0.25 s; the last request of one takes a moment too.
constexpr auto callLimit = std::chrono::milliseconds(235);

constexpr auto latePatience = std::chrono::milliseconds(60);

/// In which a window goes to its place after it has left a state.
constexpr auto leaving = std::chrono::seconds(1);

bool isSmaller(const Rect& rect, const Rect& than) {
    return rect.width < than.width || rect.height < than.height;
}

}  // namespace

X11WindowAccess::X11WindowAccess(XConnection& x, WindowElements& elements,
                                 WindowManagerInfo& manager, FocusedWindowSource& focus,
                                 DisplaysInRoot displaysInRoot)
    : x(x),
      elements(elements),
      manager(manager),
      focus(focus),
      displaysInRoot(std::move(displaysInRoot)),
      frames(x),
      heldFrames(x, frames),
      ladder(x, frames, manager),
      states(x, frames, ladder),
      raiser(x, frames, manager),
      notes(x, "_QUORVEL_HELD", HoldNote::length),
      returning(x, manager),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })) {}

FocusedWindowReading X11WindowAccess::focusedWindow(std::int32_t processIdentifier,
                                                    const std::string& bundlePath) {
    return focus.focusedWindow(processIdentifier, bundlePath);
}

std::optional<WindowReading> X11WindowAccess::read(AXWindow window) {
    const auto client = elements.windowOf(window.element);
    if (!client) return std::nullopt;
    return frames.read(*client);
}

Point X11WindowAccess::axOriginInRoot(const std::vector<Rect>& displays) {
    if (!displays.empty()) lastAxOrigin = displays.front().origin();
    return lastAxOrigin;
}

void X11WindowAccess::takeHeldFrames() {
    heldFrames.take();
    isObserving = true;
}

FrameReading X11WindowAccess::readFrame(AXWindow window) {
    const auto client = elements.windowOf(window.element);
    if (!client) return {};
    std::optional<std::optional<WindowReading>> known;
    if (isObserving) known = heldFrames.known(*client);
    const auto now = known ? *known : heldFrames.read(*client);
    if (!now) return {};
    const Point origin = axOriginInRoot(displaysInRoot());
    return {Point{now->seen.x - origin.x, now->seen.y - origin.y}, now->seen.size()};
}

std::int32_t X11WindowAccess::setOrigin(AXWindow window, Point originAX, MoveStep step) {
    const auto deadline = Clock::now() + callLimit;
    if (const auto client = elements.windowOf(window.element)) heldFrames.invalidate(*client);
    const auto held = holds.find(window);
    Hold* const hold = held == holds.end() ? nullptr : &held->second;
    const bool comesHome = step == MoveStep::final && hold && hold->comesHome;

    const auto question = manager.ask();
    auto now = read(window);
    manager.update(question);
    if (hold) hold->managerLife = manager.generation();
    const auto given = hold ? hold->given : std::nullopt;
    if (now && (hold || step == MoveStep::final)) now = freed(*now, hold, deadline);
    if (now && hold && hold->given != given) note(*hold);
    if (!now) {
        if (comesHome) sendHomeWithdrawn(window, originAX);
        endHold(window);
        return refused;
    }

    const std::vector<Rect> displays = displaysInRoot();
    const Point axOrigin = axOriginInRoot(displays);
    Point target{std::round(originAX.x + axOrigin.x), std::round(originAX.y + axOrigin.y)};
    if (comesHome) {
        target = originOnNearestDisplay({target.x, target.y, now->seen.width, now->seen.height},
                                        displays);
    }
    const MoveResult result = step == MoveStep::final
                                  ? ladder.place(*now, target, displays, deadline)
                                  : ladder.glide(*now, target, displays, deadline);

    // From now on its size is the user's.
    if (hold && step == MoveStep::final) hold->attemptsLeft = 0;
    const bool staysAway = result.outcome == MoveOutcome::refused;
    if (hold && hold->given && (comesHome || staysAway)) {
        if (const auto arrived = frames.read(now->client)) {
            states.restore(*arrived, *hold->given, deadline);
        }
        hold->given.reset();
    }
    if (comesHome || result.outcome == MoveOutcome::vanished) endHold(window);
    if (result.error != 0) return result.error;
    const bool isAccepted =
        result.outcome == MoveOutcome::reached || result.outcome == MoveOutcome::clamped;
    return isAccepted ? 0 : refused;
}

std::optional<WindowReading> X11WindowAccess::freed(const WindowReading& now, Hold* hold,
                                                    Clock::time_point deadline) {
    if (now.states.any() && !(hold && hold->keepsStates)) {
        const GivenUpStates given = states.leave(now, deadline);
        // What it had first is what returns: some take a window as large as the screen for one
        // that wants to be fullscreen.
        if (hold && !hold->given) hold->given = given;
    } else if (hold && hold->given && !now.states.any() && hold->attemptsLeft > 0 &&
               isSmaller(now.seen, hold->given->filledSeen)) {
        // It left them late, or its owner gave it the old size after we had given it the new one.
        --hold->attemptsLeft;
        states.keepSize(now, *hold->given, std::min(deadline, Clock::now() + latePatience));
    } else {
        return now;
    }
    auto after = frames.read(now.client);
    if (!hold || !after) return after;
    if (after->states.any()) {
        hold->keepsStates = true;
    } else if (isSmaller(after->seen, hold->given->filledSeen) &&
               ladder.canMovePastManager(*after)) {
        // Its owner and the window manager agree on a smaller size only, and of a window that is
        // smaller than it was thought to be no sliver may be left.
        states.restore(*after, *hold->given, deadline);
        hold->given.reset();
        hold->keepsStates = true;
        after = frames.read(now.client);
    }
    return after;
}

void X11WindowAccess::raise(AXWindow window) {
    const auto client = elements.windowOf(window.element);
    if (!client) return;
    manager.update(manager.ask());
    raiser.raise(*client);
}

void X11WindowAccess::hold(AXWindow window, const Rect& originalFrameAX) {
    const auto deadline = Clock::now() + callLimit;
    Hold& hold = holds[window];
    hold.originalFrameAX = originalFrameAX;
    hold.comesHome = false;
    hold.keepsStates = false;
    hold.attemptsLeft = 2;
    // Here already, so that the first frame of the slide is not late.
    manager.update(manager.ask());
    hold.managerLife = manager.generation();
    if (const auto now = read(window)) {
        hold.client = now->client;
        filled.erase(now->client);
        returning.remove(now->client);
        if (now->states.any() && !hold.given) {
            // In case that is as far as we get.
            Hold foreseen = hold;
            foreseen.given = GivenUpStates{now->states, now->seen, std::nullopt};
            note(foreseen);
        }
        freed(*now, &hold, deadline);
        note(hold);
        heldFrames.add(now->client);
    }
    newHolds.notify();
}

HoldNote X11WindowAccess::noteOf(const Hold& hold) {
    const Point origin = axOriginInRoot(displaysInRoot());
    Rect home = hold.originalFrameAX;
    home.x += origin.x;
    home.y += origin.y;
    return {home, hold.given};
}

void X11WindowAccess::note(const Hold& hold) {
    notes.write(hold.client, noteOf(hold).content());
}

int X11WindowAccess::putBackLost() {
    int count = 0;
    for (const auto& [client, content] : notes.all()) {
        manager.update(manager.ask());
        if (bringBack(client, HoldNote(content))) ++count;
        notes.erase(client);
    }
    x.flush();
    return count;
}

bool X11WindowAccess::bringBack(xcb_window_t client, const HoldNote& note) {
    const auto deadline = Clock::now() + callLimit;
    const auto now = frames.read(client);
    if (!now) {
        // Where it will be when somebody shows it again.
        sendConfigure(x, client, note.home.origin());
        return false;
    }
    const std::vector<Rect> displays = displaysInRoot();
    const Point home = originOnNearestDisplay(
        {note.home.x, note.home.y, now->seen.width, now->seen.height}, displays);
    // Home itself may lie over an edge.
    const bool isAway = !isWhollyOnDisplays(now->seen, displays) && now->seen.origin() != home;
    if (isAway) {
        ladder.place(*now, home, displays, deadline);
    } else if (now->seen != note.home) {
        return false;
    }
    if (note.given && !now->states.any()) {
        if (const auto arrived = frames.read(client)) {
            states.restore(*arrived, *note.given, deadline);
        }
    }
    return isAway;
}

void X11WindowAccess::endHold(AXWindow window) {
    const auto ended = holds.extract(window);
    if (ended.empty()) return;
    // The server may have given the identifier to another window since, and that may be held too.
    const xcb_window_t client = ended.mapped().client;
    const bool isHeldAnew = std::any_of(holds.begin(), holds.end(), [&](const auto& other) {
        return other.second.client == client;
    });
    if (isHeldAnew) return;
    heldFrames.remove(client);
    notes.erase(client);
}

void X11WindowAccess::sendHomeWithdrawn(AXWindow window, Point originAX) {
    const auto client = elements.windowOf(window.element);
    if (!client || !frames.exists(*client)) return;
    const Point axOrigin = axOriginInRoot(displaysInRoot());
    sendConfigure(x, *client, {originAX.x + axOrigin.x, originAX.y + axOrigin.y});
}

void X11WindowAccess::letGo(AXWindow window, EndOfHold how) {
    const auto held = holds.find(window);
    if (held == holds.end()) return;
    if (how == EndOfHold::putBack) {
        held->second.comesHome = true;
        return;
    }
    const Hold hold = held->second;
    endHold(window);
    // Where another window manager has put it since it is nobody's wish.
    manager.update(manager.ask());
    const bool isManagersDoing = hold.managerLife != manager.generation() || manager.isTakingOver();
    if (hold.client != XCB_WINDOW_NONE && isManagersDoing) {
        returning.add(hold.client, [this, its = noteOf(hold)](xcb_window_t client) {
            // Its application may have been hidden since, off the screen.
            return !HiddenNotes(x).saysMoved(client) && bringBack(client, its);
        });
    }
    const auto now = frames.read(hold.client);
    if (now && now->states.any() && !hold.keepsStates) {
        frames.watch(*now, true);
        filled.insert_or_assign(hold.client, Filled{{noteOf(hold).home, std::nullopt}, {}});
    }
}

void X11WindowAccess::handle(const xcb_generic_event_t& event) {
    if (filled.empty()) return;
    switch (event.response_type & 0x7F) {
        case XCB_DESTROY_NOTIFY:
            filled.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            return;
        case XCB_PROPERTY_NOTIFY:
        case XCB_CONFIGURE_NOTIFY:
            lookAfterFilled();
            return;
        default:
            return;
    }
}

/// To the window manager its place was the edge all the time, and there it returns.
void X11WindowAccess::lookAfterFilled() {
    for (auto entry = filled.begin(); entry != filled.end();) {
        Filled& its = entry->second;
        const auto now = frames.read(entry->first);
        bool isOver = !now || (its.leftAt && Clock::now() - *its.leftAt > leaving);
        if (!isOver && !now->states.any()) {
            if (!its.leftAt) its.leftAt = Clock::now();
            isOver = bringBack(entry->first, its.note);
        }
        entry = isOver ? filled.erase(entry) : std::next(entry);
    }
}

}  // namespace quorvel::native
