// An interface module that was built with another version of the program.

#include "main/shell/InterfaceEntry.hpp"

extern "C" [[gnu::visibility("default")]] quorvel::Interface* quorvelCreateInterface(
    std::uint32_t version, const quorvel::InterfaceHost*) {
    if (version != quorvel::interfaceVersion + 1) return nullptr;
    __builtin_trap();  // it would make an interface here
}
