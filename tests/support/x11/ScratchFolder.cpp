#include "tests/support/x11/ScratchFolder.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <system_error>

namespace quorvel::test {

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorvel-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), pattern);
    }
    folder = pattern;
}

ScratchFolder::~ScratchFolder() {
    if (testing::Test::HasFailure() || std::uncaught_exceptions() > 0) {
        std::cerr << "Logs and files of the failed test are kept in " << folder.string() << '\n';
        return;
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::filesystem::path ScratchFolder::write(std::string_view relativePath,
                                           std::string_view content) const {
    const std::filesystem::path path = folder / relativePath;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
    return path;
}

}  // namespace quorvel::test
