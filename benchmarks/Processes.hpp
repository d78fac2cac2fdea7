#pragma once

#include <sys/types.h>

namespace quorvel::bench {

/// Voluntary context switches of all threads so far: each is a wake-up from a sleep.
long voluntarySwitches(pid_t process);

/// Processor time of all threads so far, in milliseconds. What /proc/PID/stat tells in hundredths
/// of a second, to the nanosecond.
double processorMilliseconds(pid_t process);

}  // namespace quorvel::bench
