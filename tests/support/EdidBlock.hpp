#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <string_view>
#include <vector>

namespace quorvel::test {

struct EdidBlock {
    std::uint16_t manufacturer = 0x1E6D;
    std::uint16_t product = 0x5B09;
    std::uint32_t serial = 123456;
    std::string_view serialText = "304NTABC";  ///< empty leaves the descriptor out
    std::string_view name = "LG ULTRAWIDE";    ///< the same

    /// The block of 128 bytes, as a display would send it.
    std::vector<std::uint8_t> bytes() const {
        std::vector<std::uint8_t> block(128);
        std::fill(block.begin() + 1, block.begin() + 7, std::uint8_t{0xFF});
        block[8] = static_cast<std::uint8_t>(manufacturer >> 8);
        block[9] = static_cast<std::uint8_t>(manufacturer);
        block[10] = static_cast<std::uint8_t>(product);
        block[11] = static_cast<std::uint8_t>(product >> 8);
        for (unsigned i = 0; i < 4; ++i) {
            block[12 + i] = static_cast<std::uint8_t>(serial >> (8 * i));
        }
        block[18] = 1;
        block[19] = 4;
        // A timing, then the two texts.
        block[54] = 0x02;
        block[55] = 0x3A;
        describe(block, 72, 0xFF, serialText);
        describe(block, 90, 0xFC, name);
        block[127] =
            static_cast<std::uint8_t>(256 - std::accumulate(block.begin(), block.end(), 0U) % 256);
        return block;
    }

private:
    static void describe(std::vector<std::uint8_t>& block, std::size_t begin, std::uint8_t tag,
                         std::string_view text) {
        if (text.empty()) return;
        block[begin + 3] = tag;
        for (std::size_t i = 0; i < 13; ++i) {
            const char c = i < text.size() ? text[i] : i == text.size() ? '\n' : ' ';
            block[begin + 5 + i] = static_cast<std::uint8_t>(c);
        }
    }
};

}  // namespace quorvel::test
