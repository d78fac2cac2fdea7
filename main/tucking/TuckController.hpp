#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "main/tucking/AXWindows.hpp"
#include "main/tucking/TuckAnimationStyle.hpp"
#include "main/tucking/TuckAnimator.hpp"
#include "main/tucking/TuckEdge.hpp"
#include "main/tucking/TuckRegistry.hpp"
#include "platform/Applications.hpp"
#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"
#include "platform/Screens.hpp"
#include "platform/Trust.hpp"

namespace quorvel {

/// Owns every tucked window: tucks it to the edge placed for its application on its display,
/// reveals it, and puts it back where it was. Where an edge cannot be used it hides the whole
/// application instead. A window is tucked exactly when it has a registry record, and then it has
/// metadata too. Nothing is thrown; what goes wrong is logged.
class TuckController {
public:
    /// The tuck edge text placed for an application on the display with this frame, if any.
    using EdgeForDisplay = std::function<std::optional<std::string>(const std::string& appPath,
                                                                    const Rect& displayCocoa)>;

    struct TuckedWindow {
        std::string appPath;
        AXWindow window;
        TuckEdge edge;

        bool operator==(const TuckedWindow&) const = default;
    };

    /// A tucked window as the cursor meets it.
    struct RevealTarget {
        AXWindow window;
        Rect stripCocoa;  ///< where the cursor must rest to bring it out
        bool revealed = false;
        Rect frameCocoa;  ///< where it stands now

        bool operator==(const RevealTarget&) const = default;
    };

    /// All of these outlive the controller. From now on, windows whose display goes or changes its
    /// frame are put back at once.
    TuckController(AXWindows windows, Applications& applications, Screens& screens,
                   RunLoop& runLoop, Trust& trust, Log& log);

    /// Used whenever an operation is given no style.
    TuckAnimationStyle animationStyle = TuckAnimationStyle::slide;
    EdgeForDisplay edgeForDisplay;

    /// The user's own act: tucks the focused window of the application or puts it back; with
    /// `bottom`, hides or shows the application.
    void toggleTuck(const std::string& appPath, TuckEdge edge);

    /// "Auto": tucks the focused window; never shows, untucks or prompts.
    void tuckFocused(const std::string& appPath, std::int32_t pid, TuckEdge edge);

    /// Back to the origin of its original frame, in the configured style if none is given.
    void untuck(AXWindow window, std::optional<TuckAnimationStyle> style, bool raise);

    /// Everything back at once, and shown what was hidden here: for the end of the program.
    void untuckAll();
    void untuckAll(const std::string& appPath);

    /// Re-tucks the first tucked window of the application if it is revealed.
    void hideRevealed(const std::string& appPath);
    /// Re-tucks a revealed window.
    void hide(AXWindow window);
    /// Brings a tucked window out to stand flush inside its edge.
    void reveal(AXWindow window);

    /// The tucked windows in their order, less those that have been closed or that someone else has
    /// moved: these are let go of, where they are. None while no display is attached, for then
    /// there is no telling where anything is.
    std::vector<RevealTarget> revealTargets();

    bool hasTuckedWindow(const std::string& appPath) const;
    /// For an edge text that means `bottom`: whether the application is hidden. Else whether it has
    /// a tucked window, at whichever edge.
    bool isTucked(const std::string& appPath, std::string_view edgeRaw) const;
    /// In the order in which they were tucked.
    std::vector<TuckedWindow> tuckedWindows() const;
    /// Whether a window of the application is out of its edge at the moment.
    bool hasRevealedWindow(const std::string& appPath) const;
    /// Whether this window is; false for one that is not tucked.
    bool isRevealed(AXWindow window) const;
    bool isMoving(AXWindow window) const { return animator.isMoving(window); }
    /// Whether a window is on its way into or out of an edge, or home.
    bool isMovingAnyWindow() const { return animator.isMovingAny(); }

private:
    struct Meta {
        std::string appPath;
        TuckEdge edge;
        Rect screenCocoa;  ///< of the display it was tucked on, at that time
        std::optional<Point>
            expectedOrigin;  ///< AX space; where our last move left it; absent during one
    };

    struct PlacedEdge {
        std::optional<TuckEdge> edge;
        std::string_view whyNot;  ///< for the log, where there is no edge
    };

    void displaysChanged();
    bool wasMovedByOthers(const Meta& known, Point originAX) const;
    void release(AXWindow window);
    void unhideAll();

    std::optional<RunningApplication> runningApp(const std::string& appPath) const;
    void activate(const std::string& appPath);
    void tuckOrUntuck(AXWindow window, const std::string& appPath);
    PlacedEdge placedEdge(const std::string& appPath, const Rect& displayCocoa) const;
    void tuck(AXWindow window, const std::string& appPath, TuckEdge edge, const Rect& frameAX,
              const Rect& screenCocoa);
    /// From tucked to revealed or back; false when the window is not in the other of the two, or
    /// cannot be read.
    bool moveBetweenPositions(AXWindow window, bool revealed);
    void moveTracked(AXWindow window, Point from, Point to,
                     std::optional<TuckAnimationStyle> style);
    /// Hides the application or shows it again; returns whether it is hidden now.
    bool toggleHidden(const RunningApplication& application, const std::string& appPath);
    void toggleBottomTuck(const RunningApplication& application, const std::string& appPath);
    void hideInstead(const std::string& appPath, std::string_view reason);
    /// Hides the application unless it is hidden; returns whether it did.
    bool autoHide(std::int32_t pid, const std::string& appPath);
    void autoBottomTuck(std::int32_t pid, const std::string& appPath);

    std::vector<Rect> screenFramesCocoa() const;
    double primaryScreenMaxY() const;
    /// Nothing while no display is attached.
    std::optional<Rect> screenCocoa(const Rect& containingAX) const;
    Rect screenAX(const Rect& screenCocoa) const;
    bool edgeIsSharedWithAnotherDisplay(TuckEdge edge, const Rect& screenCocoa) const;

    AXWindows windows;
    Applications& applications;
    Screens& screens;
    RunLoop& runLoop;
    Trust& trust;
    Log& log;

    TuckRegistry<AXWindow> registry;
    std::unordered_map<AXWindow, Meta> meta;
    /// Those hidden here, by path, with the process that they were then: the path of an
    /// application may change with the settings.
    std::map<std::string, std::int32_t> hiddenApps;
    TuckAnimator animator;
    Subscription screenObserver;
    Lifetime life;
};

}  // namespace quorvel
