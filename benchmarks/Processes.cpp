#include "benchmarks/Processes.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace quorvel::bench {
namespace {

std::filesystem::directory_iterator threadsOf(pid_t process) {
    return std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task");
}

}  // namespace

long voluntarySwitches(pid_t process) {
    long total = 0;
    for (const auto& thread : threadsOf(process)) {
        std::ifstream status(thread.path() / "status");
        std::string line;
        const std::string label = "voluntary_ctxt_switches:";
        while (std::getline(status, line)) {
            if (line.starts_with(label)) total += std::stol(line.substr(label.size()));
        }
    }
    return total;
}

double processorMilliseconds(pid_t process) {
    double total = 0;
    for (const auto& thread : threadsOf(process)) {
        double nanoseconds = 0;
        if (!(std::ifstream(thread.path() / "schedstat") >> nanoseconds)) {
            throw std::runtime_error("the kernel does not tell the processor time of a thread");
        }
        total += nanoseconds / 1'000'000;
    }
    return total;
}

}  // namespace quorvel::bench
