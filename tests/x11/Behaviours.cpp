#include "tests/x11/Behaviours.hpp"

#include <cmath>
#include <stdexcept>
#include <utility>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

constexpr Rect display{0, 0, 1280, 800};
constexpr Point middle{640, 400};
constexpr std::uint32_t windowColour = 0x3366CC;
constexpr std::uint32_t backgroundColour = 0x204020;
constexpr std::uint32_t otherColour = 0xAA5500;

struct Shortfall : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void need(bool isSo, const std::string& elseWhat) {
    if (!isSo) throw Shortfall(elseWhat);
}

std::string pixels(double count) {
    return std::to_string(std::lround(count)) + " px";
}

/// The program with one application bound, its window open and in front.
class Stage {
public:
    Stage(WindowManagerKind kind, const ProgramOnX::Binding& binding,
          XServerKind server = XServerKind::virtualFramebuffer)
        : program({.server = server, .windowManager = kind}) {
        ProgramOnX::Binding bound = binding;
        bound.appPath = program.path;
        bound.hotKey = ProgramWithNotes::shortcut;
        program.bind({bound});
        program.session.input().moveTo(int(middle.x), int(middle.y));
        program.start();
    }

    void open() {
        press();
        window = program.notes.waitForWindow();
        need(program.waitUntilActive(window), "is not in front after it was opened");
        home = program.settledFrame(window);
    }
    void press() { program.press(ProgramWithNotes::shortcut); }
    void point(double x, double y) { program.session.input().moveTo(int(x), int(y)); }
    void pointAway() { point(middle.x, display.maxY() - 20); }

    /// Another program comes to the front.
    void switchAway() {
        other.emplace(program.session.displayName());
        otherWindow = program.session.open(
            *other, {.title = "Other", .area = {700, 420, 300, 200}, .colour = otherColour});
        program.probe().activate(otherWindow);
        need(program.waitUntilActive(otherWindow), "another program does not come to the front");
    }

    Rect seen() const { return program.seen(window); }
    bool isPaintedOn(const Rect& area) const {
        const auto painted = program.probe().boundsOf(windowColour);
        return painted && painted->intersects(area);
    }
    bool isHidden() const {
        const XProbe& probe = program.probe();
        const bool isAway = probe.isIconic(window) || !seen().intersects(display);
        return isAway && !isPaintedOn(display);
    }

    void expectAt(const Rect& frame, const std::string& what) {
        if (program.waitForFrame(window, frame) && program.staysAt(window, frame)) return;
        const Rect now = seen();
        need(std::abs(now.x - frame.x) < 0.5,
             what + ": off by " + pixels(now.x - frame.x) + " across");
        need(std::abs(now.y - frame.y) < 0.5,
             what + ": off by " + pixels(now.y - frame.y) + " down");
        need(now.size() == frame.size(), what + ": changes its size");
        throw Shortfall(what + ": does not stay there");
    }
    void expectHome(const std::string& what) {
        expectAt(home, what);
        need(waitUntil([&] { return isPaintedOn(home); }), what + ": is not painted there");
    }
    /// Two points of it on the screen, at the left or the right.
    void expectTucked(bool left) {
        const auto visible = [&] {
            const Rect now = seen();
            return left ? now.maxX() : display.maxX() - now.x;
        };
        const bool isThere = waitUntil([&] { return visible() == 2; }, 1500ms);
        need(isThere, pixels(visible()) + " stay on the screen");
        need(neverWithin(300ms, [&] { return visible() != 2; }), "does not stay tucked");
        const Rect rest = left ? Rect{2, 0, display.width - 2, display.height}
                               : Rect{0, 0, display.width - 2, display.height};
        need(waitUntil([&] { return !isPaintedOn(rest); }, 1500ms),
             "moved, but still painted where it was");
    }
    void tuckLeft() {
        press();
        expectTucked(true);
    }

    ProgramWithNotes program;
    xcb_window_t window = XCB_WINDOW_NONE;
    xcb_window_t otherWindow = XCB_WINDOW_NONE;
    Rect home;
    std::optional<TestClient> other;
};

using Edge = ProgramOnX::Binding;

Edge at(const std::string& edge) {
    return {.appPath = "", .hotKey = "", .edge = edge};
}

void opens(WindowManagerKind kind) {
    Stage(kind, at("none")).open();
}

void activates(WindowManagerKind kind) {
    Stage stage(kind, at("none"));
    stage.open();
    stage.switchAway();
    stage.press();
    need(stage.program.waitUntilActive(stage.window), "does not come to the front");
}

void hides(WindowManagerKind kind) {
    Stage stage(kind, at("none"));
    stage.open();
    stage.press();
    need(waitUntil([&] { return stage.isHidden(); }), "stays in sight");
}

void shows(WindowManagerKind kind) {
    Stage stage(kind, at("none"));
    stage.open();
    stage.press();
    need(waitUntil([&] { return stage.isHidden(); }), "stays in sight");
    stage.press();
    need(stage.program.waitUntilActive(stage.window), "does not come back to the front");
    stage.expectHome("shown again");
}

void tucks(WindowManagerKind kind, const std::string& edge, bool left) {
    Stage stage(kind, at(edge));
    stage.open();
    stage.press();
    stage.expectTucked(left);
}

void reveals(WindowManagerKind kind) {
    Stage stage(kind, at("left"));
    stage.open();
    stage.tuckLeft();
    stage.point(0, stage.home.y + stage.home.height / 2);
    stage.expectAt({0, stage.home.y, stage.home.width, stage.home.height}, "revealed");
    need(waitUntil([&] { return stage.isPaintedOn({20, 0, 1000, 800}); }), "is not painted");
}

void retucks(WindowManagerKind kind) {
    Stage stage(kind, at("left"));
    stage.open();
    stage.tuckLeft();
    stage.point(0, stage.home.y + stage.home.height / 2);
    need(waitUntil([&] { return stage.seen().x == 0; }), "is not revealed");
    stage.pointAway();
    stage.expectTucked(true);
}

void tucksByItself(WindowManagerKind kind) {
    Edge edge = at("left");
    edge.autoTuck = "true";
    Stage stage(kind, edge);
    stage.open();
    stage.switchAway();
    stage.expectTucked(true);
    stage.program.probe().activate(stage.window);
    stage.expectHome("chosen again");
}

void untucks(WindowManagerKind kind) {
    Stage stage(kind, at("left"));
    stage.open();
    stage.tuckLeft();
    stage.press();
    stage.expectHome("untucked");
    need(stage.program.waitUntilActive(stage.window), "is not in front when it is back");
}

void answersACorner(WindowManagerKind kind) {
    Edge corner = at("none");
    corner.corner = "topRight";
    Stage stage(kind, corner);
    stage.point(1279, 0);
    stage.window = stage.program.notes.waitForWindow();
    need(stage.program.waitUntilActive(stage.window), "is not in front after it was opened");
    need(stage.program.notes.launches() == 1, "is opened more than once");
}

void restoresOnDisplayChange(WindowManagerKind kind) {
    Stage stage(kind, at("left"), XServerKind::hotPlug);
    stage.open();
    stage.tuckLeft();
    stage.program.session.server().xrandr({"--output", "DUMMY0", "--mode", "1920x1080"});
    stage.expectHome("display resized");
}

void restoresOnQuit(WindowManagerKind kind) {
    Stage stage(kind, at("left"));
    stage.open();
    stage.tuckLeft();
    need(stage.program.terminate() == 0, "the program does not end well");
    stage.expectHome("after the end");
}

Behaviour behaviour(std::string name, std::function<void(WindowManagerKind)> act) {
    return {std::move(name), [act = std::move(act)](WindowManagerKind kind) -> std::string {
                try {
                    act(kind);
                    return "";
                } catch (const std::exception& failure) {
                    return failure.what();
                }
            }};
}

}  // namespace

const std::vector<Behaviour>& allBehaviours() {
    static const std::vector<Behaviour> all{
        behaviour("open", opens),
        behaviour("activate", activates),
        behaviour("hide", hides),
        behaviour("show", shows),
        behaviour("tuck left", [](auto kind) { tucks(kind, "left", true); }),
        behaviour("tuck right", [](auto kind) { tucks(kind, "right", false); }),
        behaviour("tuck half", [](auto kind) { tucks(kind, "topleft", true); }),
        behaviour("reveal", reveals),
        behaviour("re-tuck", retucks),
        behaviour("Auto", tucksByItself),
        behaviour("untuck", untucks),
        behaviour("hot corner", answersACorner),
        behaviour("display change", restoresOnDisplayChange),
        behaviour("quit", restoresOnQuit),
    };
    return all;
}

}  // namespace quorvel::test
