#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel::test {

/// A temporary folder of one test. It is removed at the end, unless the running test has failed:
/// then it stays, and its path is printed.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return folder; }
    std::filesystem::path operator/(std::string_view name) const { return folder / name; }

    /// Makes the folders that lead to it. Gives the absolute path.
    std::filesystem::path write(std::string_view relativePath, std::string_view content) const;

private:
    std::filesystem::path folder;
};

}  // namespace quorvel::test
