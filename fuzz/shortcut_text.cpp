#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "main/shortcuts/HotKeySpec.hpp"

/// Whatever a text parses to, its canonical form parses to the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto spec = quorvel::HotKeySpec::parse({reinterpret_cast<const char*>(data), size});
    if (!spec) return 0;
    if (spec->modifiers.empty() || spec->display().empty()) std::abort();
    if (quorvel::HotKeySpec::parse(spec->canonicalText()) != spec) std::abort();
    return 0;
}
