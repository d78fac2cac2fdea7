#include "platform/linux/StandardErrorLog.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <string>

namespace quorvel::native {
namespace {

/// The message as it stands in the line.
std::string written(std::string_view message) {
    const std::string line = StandardErrorLog::lineText(message, {}, 42);
    const std::size_t begin = line.find("[42] ") + 5;
    EXPECT_EQ(line.back(), '\n');
    return line.substr(begin, line.size() - begin - 1);
}

TEST(StandardErrorLogTest, TimeAndProcessStandInFront) {
    setenv("TZ", "UTC-2", 1);
    tzset();
    using namespace std::chrono;
    const system_clock::time_point time{sys_days{2024y / 2 / 29} + 21h + 59min + 9s + 7ms};
    EXPECT_EQ(StandardErrorLog::lineText("Quorvel: ready", time, 1234),
              "2024-02-29 23:59:09.007 Quorvel[1234] Quorvel: ready\n");
    EXPECT_EQ(StandardErrorLog::lineText("", system_clock::time_point{-1ms}, 1),
              "1970-01-01 01:59:59.999 Quorvel[1] \n");
    unsetenv("TZ");
    tzset();
}

TEST(StandardErrorLogTest, ControlCharactersAreEscapedAndNothingElse) {
    using namespace std::string_view_literals;
    EXPECT_EQ(written("a\nb\r\tc\x1b[31m\x7f\0d"sv), "a\\nb\\r\\tc\\x1b[31m\\x7f\\x00d");
    EXPECT_EQ(written("\xC2\x85|\xC2\x9B|\xE2\x80\xA8|\xE2\x80\xA9"),
              "\\x85|\\x9b|\\u2028|\\u2029");
    EXPECT_EQ(written("⌘ü日🙂 \"%s\" \\n \xff\xC2"), "⌘ü日🙂 \"%s\" \\n \xff\xC2");
}

TEST(StandardErrorLogTest, LineGoesToStandardErrorInOneWrite) {
    // A packet pipe keeps writes apart.
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_DIRECT), 0);
    const int before = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    StandardErrorLog log;
    log.line("Quorvel: first\nline");
    dup2(before, STDERR_FILENO);
    close(before);
    close(ends[1]);

    char buffer[4096];
    const ssize_t length = read(ends[0], buffer, sizeof buffer);
    ASSERT_GT(length, 0);
    const std::string line(buffer, static_cast<std::size_t>(length));
    EXPECT_THAT(line,
                testing::MatchesRegex("[0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+:[0-9]+\\.[0-9]+ "
                                      "Quorvel\\[" +
                                      std::to_string(getpid()) + "\\] Quorvel: first\\\\nline\n"));
    EXPECT_EQ(read(ends[0], buffer, sizeof buffer), 0) << "more than one write";
    close(ends[0]);
}

TEST(StandardErrorLogTest, ClosedStandardErrorIsNoFailure) {
    const int before = dup(STDERR_FILENO);
    close(STDERR_FILENO);
    StandardErrorLog log;
    log.line("Quorvel: nobody reads this");
    dup2(before, STDERR_FILENO);
    close(before);
}

}  // namespace
}  // namespace quorvel::native
