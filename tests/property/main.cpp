#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

#include "tests/property/Run.hpp"

namespace {

/// Plays one script and tells what happens, a line a step.
int replay(const char* path) {
    std::ifstream file(path);
    if (!file) {
        std::cerr << "cannot read " << path << "\n";
        return 2;
    }
    std::ostringstream contents;
    contents << file.rdbuf();
    const auto [script, error] = quorvel::parseScript(contents.str());
    if (!error.empty()) {
        std::cerr << error << "\n";
        return 2;
    }
    const auto breach = quorvel::run(script, &std::cout);
    std::cout << (breach ? "BROKEN — " + breach->what : "no rule is broken") << "\n";
    return breach ? 1 : 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (const char* const path = std::getenv("QUORVEL_PROPERTY_SCRIPT")) return replay(path);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
