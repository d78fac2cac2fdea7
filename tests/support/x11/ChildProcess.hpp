#pragma once

#include <signal.h>
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/x11/Waiting.hpp"

namespace quorvel::test {

using Environment = std::map<std::string, std::string>;

/// Owns one file descriptor.
class FileDescriptor {
public:
    explicit FileDescriptor(int value = -1) : value(value) {}
    FileDescriptor(FileDescriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    int get() const { return value; }

private:
    int value;
};

/// What arrives on `descriptor` up to the first line end, without it; nothing when the other side
/// closes or the time is up before.
std::optional<std::string> readLine(int descriptor, std::chrono::milliseconds limit = patience);

struct Command {
    std::vector<std::string> arguments;            ///< the program first; looked up in PATH
    Environment environment;                       ///< all of it: nothing is inherited
    std::filesystem::path logFile;                 ///< standard output and error, appended
    std::vector<std::pair<int, int>> descriptors;  ///< (ours, its) handed down
};

/// A program in a process group of its own. The group ends with this object, and the program also
/// when the test dies without warning.
class ChildProcess {
public:
    /// Throws when it cannot be started. `ending` is the signal that asks it to end.
    explicit ChildProcess(const Command& command, int ending = SIGKILL);
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    pid_t pid() const { return child; }
    bool isRunning() const;
    void signal(int number) const;

    /// The wait status; nothing when it still runs at the end of the time.
    std::optional<int> waitForExit(std::chrono::milliseconds limit = patience);

    /// Ends the whole group and waits for the program itself.
    void end();

private:
    bool exitedWithin(std::chrono::milliseconds limit) const;

    pid_t child = -1;
    FileDescriptor handle;
    int ending;
    std::optional<int> status;
};

/// Runs a command to its end; throws when it fails or takes too long.
void runToEnd(const Command& command);

}  // namespace quorvel::test
