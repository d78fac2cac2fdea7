#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/JsonDocument.hpp"

using namespace quorvel;

/// What is read survives being written, and a change of one member leaves the others alone.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string error;
    auto document = native::JsonDocument::parse({reinterpret_cast<const char*>(data), size}, error);
    if (!document) return error.empty() ? std::abort(), 0 : 0;
    const auto again = native::JsonDocument::parse(document->text(), error);
    if (!again || again->text() != document->text() || again->values() != document->values()) {
        std::abort();
    }

    Value::Dictionary expected = document->values();
    expected.insert_or_assign("added", Value(1));
    if (!document->set("added", 1, error)) std::abort();
    const auto changed = native::JsonDocument::parse(document->text(), error);
    if (!changed || changed->values() != expected) std::abort();
    return 0;
}
