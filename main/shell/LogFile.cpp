#include "main/shell/LogFile.hpp"

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

// A failed `freopen` has closed the stream already, and the next file or socket to be opened would
// take its number and receive whatever is written to it. So it is only tried where it will work.
bool canAppendTo(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "a");
    return file != nullptr && std::fclose(file) == 0;
}

}  // namespace

void redirectStandardStreamsToLogFile(const std::string& executablePath,
                                      const std::string& homeDirectory) {
    const std::string baseName =
        executablePath.empty() ? "Quorvel" : lastPathComponent(executablePath);
    const std::string folder = homeDirectory + "/Library/Logs";
    const std::string path = folder + "/" + baseName + ".log";

    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    for (std::FILE* stream : {stdout, stderr}) {
        if (canAppendTo(path)) static_cast<void>(std::freopen(path.c_str(), "a", stream));
        std::setvbuf(stream, nullptr, _IOLBF, 0);
    }
}

}  // namespace quorvel
