#include "tests/property/Shrinker.hpp"

#include <algorithm>
#include <cstddef>

namespace quorvel {
namespace {

Script without(const Script& script, std::size_t from, std::size_t count) {
    const auto at = [&](std::size_t index) {
        return script.begin() + static_cast<std::ptrdiff_t>(std::min(index, script.size()));
    };
    Script rest(script.begin(), at(from));
    rest.insert(rest.end(), at(from + count), script.end());
    return rest;
}

/// Leaves out runs of steps, long ones first, until not even a single one can go.
Script withFewerSteps(Script script, const StillFails& stillFails) {
    std::size_t length = std::max<std::size_t>(script.size() / 2, 1);
    while (!script.empty()) {
        bool hasShrunk = false;
        for (std::size_t from = 0; from < script.size();) {
            Script candidate = without(script, from, length);
            if (stillFails(candidate)) {
                script = std::move(candidate);
                hasShrunk = true;
            } else {
                from += length;
            }
        }
        if (length == 1 && !hasShrunk) break;
        if (!hasShrunk || length > script.size()) length = std::max<std::size_t>(length / 2, 1);
    }
    return script;
}

bool makeSmaller(int& number, const Script& script, const StillFails& stillFails) {
    const int original = number;
    for (const int candidate : {0, 1, original / 100 * 100, original / 10 * 10, original / 2}) {
        if (std::abs(candidate) >= std::abs(original)) continue;
        number = candidate;
        if (stillFails(script)) return true;
    }
    number = original;
    return false;
}

bool withSmallerNumbers(Script& script, const StillFails& stillFails) {
    bool hasShrunk = false;
    for (Step& step : script) {
        for (std::size_t i = 0; i < step.argumentNames().size(); ++i) {
            while (makeSmaller(step.arguments[i], script, stillFails)) hasShrunk = true;
        }
    }
    return hasShrunk;
}

}  // namespace

Script shrunk(Script script, const StillFails& stillFails) {
    do {
        script = withFewerSteps(std::move(script), stillFails);
    } while (withSmallerNumbers(script, stillFails));
    return script;
}

}  // namespace quorvel
