#include "benchmarks/Processes.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace quorvel::bench {

Activity Activity::of(pid_t process) {
    Activity activity;
    for (const auto& folder :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        Thread thread;
        std::ifstream status(folder.path() / "status");
        std::string line;
        const std::string label = "voluntary_ctxt_switches:";
        while (std::getline(status, line)) {
            if (line.starts_with(label)) thread.wakeUps = std::stol(line.substr(label.size()));
        }
        double nanoseconds = 0;
        if (!(std::ifstream(folder.path() / "schedstat") >> nanoseconds)) {
            throw std::runtime_error("the kernel does not tell the processor time of a thread");
        }
        thread.processorMilliseconds = nanoseconds / 1'000'000;
        activity.threads.emplace(std::stoi(folder.path().filename()), thread);
    }
    return activity;
}

Activity::Thread Activity::since(const Activity& earlier) const {
    Thread sum;
    for (const auto& [identifier, now] : threads) {
        const auto known = earlier.threads.find(identifier);
        const Thread before = known == earlier.threads.end() ? Thread{} : known->second;
        sum.wakeUps += now.wakeUps - before.wakeUps;
        sum.processorMilliseconds += now.processorMilliseconds - before.processorMilliseconds;
    }
    return sum;
}

}  // namespace quorvel::bench
