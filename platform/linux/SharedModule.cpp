#include "platform/linux/SharedModule.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <utility>

#include "platform/Text.hpp"

namespace quorvel::native {

SharedModule::SharedModule(std::string fileName, std::vector<std::string> folders, Log& log)
    : fileName(std::move(fileName)), folders(std::move(folders)), log(log) {}

void* SharedModule::symbol(const std::string& name) {
    if (handle == nullptr && !load()) return nullptr;
    void* const address = dlsym(handle, name.c_str());
    if (address == nullptr) {
        log.line(formatted("Quorvel: %@ has no %@", fileName, name));
    }
    return address;
}

bool SharedModule::load() {
    for (const std::string& folder : folders) {
        const std::string path = folder + "/" + fileName;
        if (access(path.c_str(), F_OK) != 0) continue;
        // All symbols at once: a library that does not fit fails here and not in mid-flight.
        handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        if (handle == nullptr) {
            const char* const reason = dlerror();
            log.line(formatted("Quorvel: cannot load %@ — %@", path,
                               reason != nullptr ? reason : "unknown error"));
        }
        return handle != nullptr;
    }
    log.line(formatted("Quorvel: %@ not found in %@", fileName, joined(folders, ", ")));
    return false;
}

}  // namespace quorvel::native
