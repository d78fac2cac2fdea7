#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/support/x11/ChildProcess.hpp"

namespace quorvel::bench {

/// Stands between one X client and the server. While it counts, it keeps back what the server says
/// until the client has fallen silent, so that each time the client goes on with what it was given
/// it has waited for that: a round trip, however many requests and replies it carried.
class Relay {
public:
    explicit Relay(const std::string& displayName);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// To connect to in place of the server, once.
    const std::string& displayName() const { return name; }

    void count(bool wanted) { isCounting = wanted; }
    /// So far, while it counted.
    int roundTrips() const { return trips; }
    /// Returns when nothing has come from either side for a while.
    void settle() const;

private:
    void run();
    void pass(int client, int server);

    std::filesystem::path serverSocket;
    std::string name;
    test::FileDescriptor listener;
    test::FileDescriptor stop;
    std::atomic<bool> isCounting = false;
    std::atomic<int> trips = 0;
    std::atomic<long> bytes = 0;
    std::atomic<bool> holdsBack = false;
    std::thread thread;
};

}  // namespace quorvel::bench
