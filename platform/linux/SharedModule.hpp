#pragma once

#include <string>
#include <vector>

#include "platform/Log.hpp"

namespace quorvel::native {

/// A part of the program in a shared library of its own, loaded when it is first needed and never
/// unloaded.
class SharedModule {
public:
    /// Looked for in the folders in order; the first file that exists is the one.
    SharedModule(std::string fileName, std::vector<std::string> folders, Log& log);

    /// The address of an exported symbol; null, and a line in the log, when the library cannot be
    /// found or loaded or lacks it. What failed is tried afresh by the next call.
    void* symbol(const std::string& name);

private:
    bool load();

    std::string fileName;
    std::vector<std::string> folders;
    Log& log;
    void* handle = nullptr;
};

}  // namespace quorvel::native
