#include "tests/property/StepGenerator.hpp"

#include <array>
#include <initializer_list>
#include <random>
#include <vector>

namespace quorvel {
namespace {

/// Distributions of the standard library differ from one to the next; its engines do not.
class Chance {
public:
    explicit Chance(std::uint64_t seed) : engine(seed) {}

    int below(int count) { return static_cast<int>(engine() % static_cast<unsigned>(count)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool oneIn(int count) { return below(count) == 0; }
    int of(std::initializer_list<int> choices) {
        return choices.begin()[below(static_cast<int>(choices.size()))];
    }

private:
    std::mt19937_64 engine;
};

constexpr int applicationCount = 4;
constexpr int windowCount = 6;

struct Weighted {
    Deed deed;
    int weight;
};

constexpr std::array weights{
    Weighted{Deed::wait, 260},     Weighted{Deed::stall, 6},    Weighted{Deed::moveCursor, 50},
    Weighted{Deed::warpCursor, 4}, Weighted{Deed::rest, 60},    Weighted{Deed::hover, 110},
    Weighted{Deed::press, 14},     Weighted{Deed::release, 30}, Weighted{Deed::shortcut, 130},
    Weighted{Deed::open, 45},      Weighted{Deed::dialog, 5},   Weighted{Deed::close, 15},
    Weighted{Deed::kill, 6},       Weighted{Deed::quit, 5},     Weighted{Deed::activate, 90},
    Weighted{Deed::deactivate, 8}, Weighted{Deed::iconify, 12}, Weighted{Deed::deiconify, 8},
    Weighted{Deed::maximize, 6},   Weighted{Deed::drag, 30},    Weighted{Deed::resize, 14},
    Weighted{Deed::bind, 10},      Weighted{Deed::unbind, 4},   Weighted{Deed::place, 16},
    Weighted{Deed::unplace, 5},    Weighted{Deed::animate, 8},  Weighted{Deed::dwell, 4},
    Weighted{Deed::reload, 18},    Weighted{Deed::attach, 20},  Weighted{Deed::detach, 9},
    Weighted{Deed::detachAll, 4},  Weighted{Deed::install, 3},  Weighted{Deed::uninstall, 1},
    Weighted{Deed::trust, 2},      Weighted{Deed::fault, 2},
};

Deed anyDeed(Chance& chance) {
    int total = 0;
    for (const Weighted& each : weights) total += each.weight;
    int left = chance.below(total);
    for (const Weighted& each : weights) {
        if (left < each.weight) return each.deed;
        left -= each.weight;
    }
    return Deed::wait;
}

Step anyStep(Deed deed, Chance& chance) {
    const int application = chance.below(applicationCount);
    const int window = chance.below(windowCount);
    const int display = chance.below(3);
    switch (deed) {
        case Deed::wait:
            return {deed, {chance.of({0, 1, 17, 50, 80, 120, 200, 300, 500, 900, 1300, 6000})}};
        case Deed::stall:
            return {deed, {chance.between(1, 2000)}};
        case Deed::moveCursor:
        case Deed::warpCursor:
            return {deed, {chance.between(-1500, 3000), chance.between(-900, 1900)}};
        case Deed::rest:
            return {deed, {display, chance.below(4)}};
        case Deed::press:
        case Deed::release:
            return {deed, {chance.below(4) % 3}};
        case Deed::open:
            return {deed,
                    {application, chance.between(-100, 1300), chance.between(0, 800),
                     chance.between(200, 1500), chance.between(100, 1000)}};
        case Deed::dialog:
            return {deed, {window, chance.below(2)}};
        case Deed::drag:
            return chance.oneIn(2)
                       ? Step{deed, {window, chance.between(-45, 45), chance.between(-45, 45)}}
                       : Step{deed, {window, chance.between(-900, 900), chance.between(-500, 500)}};
        case Deed::resize:
            return {deed, {window, chance.between(100, 1500), chance.between(80, 1000)}};
        case Deed::bind:
            return {deed, {application, chance.oneIn(5) ? 0 : 1, chance.below(2)}};
        case Deed::place:
            return {deed,
                    {application, chance.oneIn(2) ? 0 : display, chance.below(5),
                     chance.oneIn(2) ? chance.below(2) : chance.below(8)}};
        case Deed::unplace:
            return {deed, {application, display}};
        case Deed::animate:
            return {deed, {chance.below(5)}};
        case Deed::dwell:
            return {deed, {chance.of({0, 100, 300, 1000})}};
        case Deed::attach:
            return {deed,
                    {display, chance.of({0, 1440, -1440, -1280, 1920}),
                     chance.of({0, 0, 0, 900, -800, 100}), chance.of({1440, 1440, 1280, 1920}),
                     chance.of({900, 900, 800, 1080})}};
        case Deed::detach:
            return {deed, {display}};
        case Deed::trust:
            return {deed, {chance.oneIn(4) ? 0 : 1}};
        case Deed::fault:
            return {deed, {window, chance.below(8)}};
        case Deed::shortcut:
        case Deed::quit:
        case Deed::unbind:
        case Deed::install:
        case Deed::uninstall:
            return {deed, {application}};
        case Deed::hover:
        case Deed::close:
        case Deed::kill:
        case Deed::activate:
        case Deed::iconify:
        case Deed::deiconify:
        case Deed::maximize:
            return {deed, {window}};
        case Deed::deactivate:
        case Deed::reload:
        case Deed::detachAll:
            break;
    }
    return {deed, {}};
}

}  // namespace

Script randomScript(std::uint64_t seed, std::size_t steps) {
    Chance chance(seed);
    Script script;
    for (int application = 0; application < applicationCount; ++application) {
        Step binding = anyStep(Deed::bind, chance);
        binding.arguments[0] = application;
        script.push_back(binding);
        for (int placed = chance.between(1, 2); placed > 0; --placed) {
            Step placement = anyStep(Deed::place, chance);
            placement.arguments[0] = application;
            script.push_back(placement);
        }
    }
    script.push_back({Deed::animate, {chance.below(5)}});
    script.push_back({Deed::reload, {}});
    // Faults and a missing permission excuse much: most scripts are without.
    const bool isHealthy = !chance.oneIn(4);
    while (script.size() < steps) {
        const Deed deed = anyDeed(chance);
        if (isHealthy && (deed == Deed::fault || deed == Deed::trust)) continue;
        script.push_back(anyStep(deed, chance));
    }
    script.resize(steps);
    return script;
}

}  // namespace quorvel
