#include "main/shell/InterfaceEntry.hpp"

#include "main/interface/QtInterface.hpp"

extern "C" [[gnu::visibility("default")]] quorvel::Interface* quorvelCreateInterface(
    std::uint32_t version, const quorvel::InterfaceHost* host) {
    if (version != quorvel::interfaceVersion) return nullptr;
    return quorvel::QtInterface::create(*host).release();
}

// The name and the type are what the other side casts to.
static_assert(std::is_same_v<decltype(&quorvelCreateInterface), quorvel::CreateInterface>);
