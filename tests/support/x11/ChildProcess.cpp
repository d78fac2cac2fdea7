#include "tests/support/x11/ChildProcess.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace quorvel::test {
namespace {

std::string programPath(const std::string& name, const Environment& environment) {
    if (name.find('/') != std::string::npos) return name;
    const auto found = environment.find("PATH");
    std::string rest = found == environment.end() ? "/usr/bin:/bin" : found->second;
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::string candidate = rest.substr(0, colon) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return candidate;
        rest = colon == std::string::npos ? "" : rest.substr(colon + 1);
    }
    throw std::runtime_error("not installed: " + name);
}

int milliseconds(std::chrono::steady_clock::time_point deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::int64_t>(0, left.count()));
}

}  // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(value, other.value);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (value >= 0) close(value);
}

std::optional<std::string> readLine(int descriptor, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::string line;
    while (true) {
        pollfd waiting{descriptor, POLLIN, 0};
        const int ready = poll(&waiting, 1, milliseconds(deadline));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return std::nullopt;
        char next = 0;
        const ssize_t got = read(descriptor, &next, 1);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return std::nullopt;
        if (next == '\n') return line;
        line += next;
    }
}

ChildProcess::ChildProcess(const Command& command, int ending) : ending(ending) {
    // Everything that allocates happens before the fork: the child only makes system calls.
    const std::string program = programPath(command.arguments.at(0), command.environment);
    std::vector<std::string> settings;
    for (const auto& [name, value] : command.environment) settings.push_back(name + "=" + value);
    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts) result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    };
    std::vector<std::string> arguments = command.arguments;
    const std::vector<char*> argumentPointers = pointers(arguments);
    const std::vector<char*> settingPointers = pointers(settings);
    const std::string log = command.logFile.empty() ? "/dev/null" : command.logFile.string();
    const pid_t parent = getpid();

    child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) _exit(127);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        ::signal(SIGPIPE, SIG_DFL);
        ::signal(SIGTERM, SIG_DFL);
        const int input = open("/dev/null", O_RDONLY);
        dup2(input, STDIN_FILENO);
        const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        for (const auto& [ours, theirs] : command.descriptors) {
            if (ours == theirs) {
                fcntl(ours, F_SETFD, 0);
            } else {
                dup2(ours, theirs);
            }
        }
        execve(program.c_str(), argumentPointers.data(), settingPointers.data());
        _exit(127);
    }
    setpgid(child, child);
    handle = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    if (handle.get() < 0) {
        const int error = errno;
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        throw std::system_error(error, std::generic_category(), "pidfd_open");
    }
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : child(std::exchange(other.child, -1)),
      handle(std::move(other.handle)),
      ending(other.ending),
      status(std::exchange(other.status, std::nullopt)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(child, other.child);
    std::swap(handle, other.handle);
    std::swap(ending, other.ending);
    std::swap(status, other.status);
    return *this;
}

ChildProcess::~ChildProcess() {
    end();
}

bool ChildProcess::exitedWithin(std::chrono::milliseconds limit) const {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (true) {
        pollfd waiting{handle.get(), POLLIN, 0};
        const int ready = poll(&waiting, 1, milliseconds(deadline));
        if (ready > 0) return true;
        if (ready == 0) return false;
        if (errno != EINTR) return false;
    }
}

bool ChildProcess::isRunning() const {
    return child > 0 && !status && !exitedWithin(0ms);
}

void ChildProcess::signal(int number) const {
    if (child > 0 && !status) kill(child, number);
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds limit) {
    if (status) return status;
    if (child <= 0 || !exitedWithin(limit)) return std::nullopt;
    // While the leader is not yet reaped its number cannot have become that of another group.
    kill(-child, SIGKILL);
    int result = 0;
    while (waitpid(child, &result, 0) < 0 && errno == EINTR) {
    }
    status = result;
    return status;
}

void ChildProcess::end() {
    if (child <= 0 || status) return;
    kill(-child, ending);
    kill(-child, SIGCONT);
    if (!waitForExit(2s)) {
        kill(-child, SIGKILL);
        waitForExit();
    }
}

void runToEnd(const Command& command) {
    ChildProcess process(command);
    const std::optional<int> status = process.waitForExit();
    if (status != 0) {
        std::string text;
        for (const std::string& argument : command.arguments) text += argument + " ";
        throw std::runtime_error((status ? "failed: " : "took too long: ") + text);
    }
}

}  // namespace quorvel::test
