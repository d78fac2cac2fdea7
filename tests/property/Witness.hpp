#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "main/tucking/TuckController.hpp"
#include "platform/Log.hpp"
#include "platform/WindowAccess.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {

/// Stands between the program and the simulated desktop, hears every line of the log and sees every
/// move of a window. Judges at once what can only be judged at that moment: when a corner fires,
/// when a window is revealed, how it slides, where it is said to belong, and when it is given up.
class Witness final : public Log, public WindowAccess {
public:
    using Moment = RunLoop::Duration;

    /// What has become of one window, by whose hand.
    struct Story {
        /// Nobody but the program has moved it since it last arrived somewhere.
        bool wasPutThere = false;
        /// Nor has its size or any display changed since the program aimed that move.
        bool isWhereItWasSent = false;
        bool wasResizedSince = false;  ///< since it last arrived somewhere
        /// Nor since it was tucked: then its strip stays under the cursor while it slides.
        bool wasResizedWhileHeld = false;
        /// Something about it failed once; from then on it may stand anywhere.
        bool isFaulty = false;
        /// On its way home.
        bool comesHome = false;
        std::optional<Point> homeAX;
        bool wasRevealedHere = false;  ///< and the cursor has not moved since
        std::optional<Moment> lastSlideWrite;
        int holds = 0;
        int reveals = 0;
    };

    explicit Witness(SimulatedDesktop& sim) : sim(sim) {}

    /// Outlives this object or is taken away.
    const TuckController* tucking = nullptr;
    std::function<void(std::string_view line)> narrate;

    /// The first thing that must not be: the rule, a colon, and what happened.
    const std::optional<std::string>& violation() const { return found; }
    void object(const std::string& what) {
        if (!found) found = what;
    }

    Story& story(WindowElement window) { return stories[window]; }

    // What the world tells ---------------------------------------------------------------------

    void cursorMoved();
    void windowWasDragged(WindowElement window);
    void windowWasResized(WindowElement window);
    void windowBecameFaulty(WindowElement window) { story(window).isFaulty = true; }
    void heldWindowsBecameFaulty();
    void displaysWereArranged();
    /// Time has passed in one piece.
    void timeWasLost() { lastTimeLost = sim.runLoop.uptime(); }
    /// To be called after every step.
    void lookAtHiddenApplications();

    // What there is to know --------------------------------------------------------------------

    const std::vector<Rect>& zonesCocoa() const { return zones; }
    int dwellMs() const { return dwell; }
    bool cursorIsInZone() const;
    /// How often a corner has fired, and corners have been armed, so far.
    int fireCount() const { return fires; }
    int armCount() const { return arms; }
    /// The next long enough rest in a corner must fire.
    bool cornersAreReady() const { return ready; }
    void cursorWasSeenOutsideOfCorners() { ready = true; }
    bool displaysAreSettled() const;
    bool timeIsSteady() const;
    /// The applications that the program has hidden instead of tucking a window, and that have been
    /// hidden ever since.
    const std::set<std::string>& hiddenHere() const { return hidden; }

    // Log --------------------------------------------------------------------------------------

    void line(std::string_view message) override;

    // WindowAccess -----------------------------------------------------------------------------

    FocusedWindowReading focusedWindow(std::int32_t processIdentifier,
                                       const std::string& bundlePath) override;
    FrameReading readFrame(AXWindow window) override;
    std::int32_t setOrigin(AXWindow window, Point originAX, MoveStep step) override;
    void raise(AXWindow window) override;
    void hold(AXWindow window, const Rect& originalFrameAX) override;
    int putBackLost() override { return sim.windows.putBackLost(); }
    void letGo(AXWindow window, EndOfHold how) override;

private:
    void hearOfZones(const std::string& list);
    void hearOfArming(const std::string& text);
    void hearOfFiring();
    void hearOfHiding(const std::string& text);
    void noteWhetherCursorIsInZone();
    bool isHidden(const std::string& appPath) const;
    std::string name(AXWindow window) const;
    /// Does a call, and notes whether it took time.
    template <class Call>
    auto timed(Call call);

    SimulatedDesktop& sim;
    std::optional<std::string> found;
    std::map<WindowElement, Story> stories;

    std::vector<Rect> zones;
    int dwell = 0;
    int fires = 0;
    int arms = 0;
    int firesOfThisVisit = 0;
    bool ready = false;
    bool wasInZone = false;
    Moment leftZone{};
    Moment visitBegan{};

    std::optional<Moment> lastArrangement;
    std::optional<Moment> lastTimeLost;

    std::set<std::string> hidden;
    std::set<std::string> perhapsHidden;  ///< hidden or shown, by what the log says
    /// One that has been in front since, and was hidden again by its shortcut, is another matter.
    Subscription activations = sim.applications.onActivated([this](const auto& application) {
        if (!application.bundlePath) return;
        hidden.erase(*application.bundlePath);
        perhapsHidden.erase(*application.bundlePath);
    });
};

}  // namespace quorvel
