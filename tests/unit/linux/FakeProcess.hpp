#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::test {

/// A folder in the manner of /proc with processes that are only described.
struct FakeProcess {
    std::int32_t pid = 100;
    std::string executable;
    std::vector<std::string> arguments{};
    std::vector<std::string> environment{};
    std::int32_t parent = 1;
    std::string workingFolder = "/";
    std::string controlGroup = "0::/user.slice\n";
    std::string flatpakInfo{};

    void writeTo(const ScratchFolder& folder) const {
        const std::string process = "proc/" + std::to_string(pid);
        folder.write(process + "/cmdline", joined(arguments));
        folder.write(process + "/environ", joined(environment));
        folder.write(process + "/cgroup", controlGroup);
        folder.write(process + "/stat", std::to_string(pid) + " (a) b (c) S " +
                                            std::to_string(parent) + " 1 1 0 -1\n");
        std::filesystem::create_symlink(executable, folder / (process + "/exe"));
        std::filesystem::create_symlink(workingFolder, folder / (process + "/cwd"));
        if (!flatpakInfo.empty()) folder.write(process + "/root/.flatpak-info", flatpakInfo);
    }

private:
    static std::string joined(const std::vector<std::string>& parts) {
        std::string text;
        for (const std::string& part : parts) text.append(part).push_back('\0');
        return text;
    }
};

}  // namespace quorvel::test
