#pragma once

#include <time.h>

#include <chrono>

namespace quorvel::test {

using namespace std::chrono_literals;

/// Long enough for a machine with many times more to do than it has cores; what is waited for
/// normally happens within milliseconds.
inline constexpr std::chrono::milliseconds patience = 30s;

/// Asks until `observed` is true or the time is up; tells which.
template <class Predicate>
bool waitUntil(Predicate&& observed, std::chrono::milliseconds limit = patience) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!observed()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        const timespec pause{0, 2'000'000};
        nanosleep(&pause, nullptr);
    }
    return true;
}

/// Whether `observed` stays false for all of `span`: how the absence of something is shown.
template <class Predicate>
bool neverWithin(std::chrono::milliseconds span, Predicate&& observed) {
    return !waitUntil(observed, span);
}

}  // namespace quorvel::test
