// Runs each test in a process of its own, as CTest does, also when several are asked for by hand:
// GLib and others read the environment of a session only once.

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

/// Those that the filter selects, by their full names.
std::vector<std::string> selectedTests(const std::string& program) {
    const std::string command =
        "'" + program + "' --gtest_list_tests '--gtest_filter=" + GTEST_FLAG_GET(filter) + "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> list(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> tests;
    std::string suite;
    std::array<char, 1024> line{};
    while (list && std::fgets(line.data(), line.size(), list.get()) != nullptr) {
        // "Suite." or "  Test", either with a remark behind it.
        const std::string text(line.data(), std::strcspn(line.data(), "#\n"));
        const std::size_t start = text.find_first_not_of(' ');
        if (start == std::string::npos) continue;
        const std::string name = text.substr(start, text.find(' ', start) - start);
        if (start == 0) {
            suite = name.ends_with('.') ? name : "";
        } else if (!suite.empty()) {
            tests.push_back(suite + name);
        }
    }
    return tests;
}

int run(const std::string& program, const std::string& test) {
    std::vector<std::string> words{program, "--gtest_brief=1", "--gtest_filter=" + test};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) == 0) {
        waitpid(child, &status, 0);
    }
    return status;
}

}  // namespace

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    const std::string filter = GTEST_FLAG_GET(filter);
    const bool namesOneTest = filter.find_first_of("*?:-") == std::string::npos;
    if (GTEST_FLAG_GET(list_tests) || namesOneTest) return RUN_ALL_TESTS();
    const std::vector<std::string> tests = selectedTests(arguments[0]);
    if (tests.size() <= 1) return RUN_ALL_TESTS();
    int failures = 0;
    for (const std::string& test : tests) {
        std::printf("%s\n", test.c_str());
        std::fflush(stdout);
        if (run(arguments[0], test) != 0) ++failures;
    }
    std::printf("%d of %zu tests failed\n", failures, tests.size());
    return failures == 0 ? 0 : 1;
}
