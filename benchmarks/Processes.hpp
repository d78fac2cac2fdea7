#pragma once

#include <sys/types.h>

#include <map>

namespace quorvel::bench {

/// What the threads of a process have done since they began.
struct Activity {
    struct Thread {
        long wakeUps = 0;  ///< voluntary context switches: each is a wake-up from a sleep
        /// What /proc/PID/stat tells in hundredths of a second, to the nanosecond.
        double processorMilliseconds = 0;

        bool operator==(const Thread&) const = default;
    };

    std::map<pid_t, Thread> threads;

    bool operator==(const Activity&) const = default;

    static Activity of(pid_t process);

    /// What was done since an earlier look. A thread that has ended since is left out, whatever it
    /// did at its end.
    Thread since(const Activity& earlier) const;
};

}  // namespace quorvel::bench
