#include <array>
#include <functional>

#include "benchmarks/HeldWindows.hpp"
#include "benchmarks/Measurements.hpp"
#include "benchmarks/Relay.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::bench {
namespace {

constexpr std::array<std::size_t, 4> sizes{1, 10, 100, 1000};
constexpr int timedPolls = 100;
constexpr int countedPolls = 5;
/// A window that is newly held is read until the server is known to tell of its changes.
constexpr int firstPolls = 5;

/// One sample for each size.
using Samples = std::array<Sample, sizes.size()>;

/// What has happened to the held windows since the poll before.
struct Figures {
    Samples still;  ///< nothing
    Samples moved;  ///< all have moved
};

/// `poll` gives one value of one poll.
Figures measure(FramedWindows& windows, Lookout& lookout, int polls,
                const std::function<double()>& poll) {
    Figures figures;
    for (std::size_t size = 0; size < sizes.size(); ++size) {
        lookout.hold(windows.open(sizes[size]));
        for (int index = 0; index < firstPolls; ++index) lookout.poll();
        for (int index = 0; index < polls; ++index) figures.still[size].add(poll());
        for (int index = 0; index < polls; ++index) {
            windows.moveAll();
            lookout.hearOfMoves();
            figures.moved[size].add(poll());
        }
    }
    return figures;
}

double bareRoundTrip(const test::XClient& client) {
    const Instant start = Clock::now();
    const test::XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        client.xcb(), xcb_query_pointer(client.xcb(), client.root()), nullptr));
    return milliseconds(Clock::now() - start);
}

Figures times(const std::string& displayName, Sample& floor) {
    FramedWindows windows(displayName);
    Lookout lookout(displayName);
    const test::XClient bare(displayName);
    return measure(windows, lookout, timedPolls, [&] {
        const double took = lookout.poll();
        floor.add(bareRoundTrip(bare));
        return took;
    });
}

double tripsOf(Relay& relay, const std::function<void()>& work) {
    relay.settle();
    const int before = relay.roundTrips();
    relay.count(true);
    work();
    relay.count(false);
    return relay.roundTrips() - before;
}

Figures roundTrips(const std::string& displayName) {
    Relay relay(displayName);
    FramedWindows windows(displayName);
    Lookout lookout(relay.displayName());
    return measure(windows, lookout, countedPolls,
                   [&] { return tripsOf(relay, [&] { lookout.poll(); }); });
}

/// The moves become known together with the answer about the pointer, too late to be asked about
/// before. Up to 100 windows.
Samples roundTripsWhileMoving(const std::string& displayName) {
    Relay relay(displayName);
    FramedWindows windows(displayName);
    Lookout lookout(relay.displayName());
    Samples samples;
    for (std::size_t size = 0; size + 1 < sizes.size(); ++size) {
        lookout.hold(windows.open(sizes[size]));
        for (int index = 0; index < firstPolls; ++index) lookout.poll();
        for (int index = 0; index < countedPolls; ++index) {
            samples[size].add(tripsOf(relay, [&] {
                windows.moveAll();
                lookout.poll();
            }));
        }
    }
    return samples;
}

double bareRoundTrips(const std::string& displayName) {
    Relay relay(displayName);
    const test::XClient bare(relay.displayName());
    return tripsOf(relay, [&] { bareRoundTrip(bare); });
}

void addTimes(std::vector<Row>& rows, const Samples& samples, const Sample& floor,
              const std::string& how) {
    for (std::size_t size = 0; size < sizes.size(); ++size) {
        const double median = samples[size].median();
        rows.push_back({"poll, " + std::to_string(sizes[size]) + " held, " + how + ", median µs",
                        std::to_string(samples[size].count()), text(1000 * median, 0),
                        text(1000 * floor.median(), 0), "", text(median / floor.median(), 2)});
        if (size > 0) {
            rows.back().goal = "(" + text(median / samples[0].median(), 1) + " × that of 1)";
        }
    }
}

Row roundTripRow(const Samples& samples, double floor, const std::string& how) {
    std::string held;
    std::string most;
    bool isOne = true;
    for (std::size_t size = 0; size < sizes.size(); ++size) {
        if (samples[size].count() == 0) continue;
        const std::string separator = held.empty() ? "" : "/";
        held += separator + std::to_string(sizes[size]);
        most += separator + text(samples[size].quantile(1), 0);
        isOne = isOne && samples[size].quantile(0) == 1 && samples[size].quantile(1) == 1;
    }
    return {"round trips of a poll, " + held + " held, " + how + ", most",
            std::to_string(countedPolls),
            most,
            text(floor, 0),
            "",
            "",
            "1",
            isOne};
}

}  // namespace

std::vector<Row> measurePolls() {
    // Without a window manager nobody else speaks to the windows.
    const test::XSession session({.windowManager = std::nullopt});
    const std::string& display = session.displayName();
    const double bareTrips = bareRoundTrips(display);
    const Figures trips = roundTrips(display);
    const Samples moving = roundTripsWhileMoving(display);
    Sample floor;
    const Figures figures = times(display, floor);
    std::vector<Row> rows{roundTripRow(trips.still, bareTrips, "none moved"),
                          roundTripRow(trips.moved, bareTrips, "all moved"),
                          roundTripRow(moving, bareTrips, "all move meanwhile")};
    addTimes(rows, figures.still, floor, "none moved");
    addTimes(rows, figures.moved, floor, "all moved");
    return rows;
}

}  // namespace quorvel::bench
