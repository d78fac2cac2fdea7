#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "platform/linux/DisplayIdentity.hpp"

using namespace quorvel::native;

/// Any bytes are taken; with header and checksum put right they give an identifier and a name that
/// can be shown.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    parseEdid({data, size});

    std::vector<std::uint8_t> block(data, data + size);
    block.resize(128);
    for (std::size_t i = 0; i < 8; ++i) block[i] = i == 0 || i == 7 ? 0x00 : 0xFF;
    block[127] = 0;
    block[127] = static_cast<std::uint8_t>(0U - std::accumulate(block.begin(), block.end(), 0U));
    const ConnectedDisplay display{"DP-1", parseEdid(block)};
    if (!display.edid || display.name().empty()) std::abort();
    for (const char c : display.name()) {
        if (c < 0x20 || c > 0x7E) std::abort();
    }
    if (displayIdentifiers({display}).at(0).size() != 36) std::abort();
    return 0;
}
