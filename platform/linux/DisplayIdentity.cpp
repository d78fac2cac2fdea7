#include "platform/linux/DisplayIdentity.hpp"

#include <glib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <numeric>

#include "platform/Text.hpp"

namespace quorvel::native {
namespace {

constexpr std::size_t blockSize = 128;
constexpr std::size_t descriptorSize = 18;
constexpr std::array<std::size_t, 4> descriptors{54, 72, 90, 108};
constexpr std::uint8_t nameTag = 0xFC;
constexpr std::uint8_t serialTag = 0xFF;

// Picked at random once. Changing it renames every display that users have placed something on.
constexpr std::array<std::uint8_t, 16> nameSpace{0x5B, 0x8E, 0x1D, 0x3A, 0x0C, 0x47, 0x4F, 0x62,
                                                 0x9A, 0xD1, 0x7E, 0x26, 0xB4, 0x93, 0x58, 0xEF};

/// The text of the first descriptor with this tag.
std::string descriptorText(std::span<const std::uint8_t> block, std::uint8_t tag) {
    for (const std::size_t begin : descriptors) {
        const auto descriptor = block.subspan(begin, descriptorSize);
        // Anything but zeros here is a timing.
        if (descriptor[0] != 0 || descriptor[1] != 0 || descriptor[2] != 0 || descriptor[3] != tag)
            continue;
        std::string text;
        for (const std::uint8_t c : descriptor.subspan(5)) {
            if (c == '\n') break;
            if (c >= 0x20 && c < 0x7F) text += static_cast<char>(c);
        }
        return trimmed(text);
    }
    return {};
}

std::string identityOf(const Edid& edid) {
    std::array<char, 64> numbers{};
    std::snprintf(numbers.data(), numbers.size(),
                  "EDID:%04x:%04x:%08x:", unsigned{edid.manufacturer}, unsigned{edid.product},
                  unsigned{edid.serial});
    return numbers.data() + edid.serialText;
}

}  // namespace

std::optional<Edid> parseEdid(std::span<const std::uint8_t> bytes) {
    constexpr std::array<std::uint8_t, 8> header{0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};
    if (bytes.size() < blockSize) return std::nullopt;
    const auto block = bytes.first(blockSize);
    if (!std::equal(header.begin(), header.end(), block.begin())) return std::nullopt;
    if (std::accumulate(block.begin(), block.end(), 0U) % 256 != 0) return std::nullopt;

    Edid edid;
    edid.manufacturer = static_cast<std::uint16_t>(block[8] << 8 | block[9]);
    edid.product = static_cast<std::uint16_t>(block[10] | block[11] << 8);
    edid.serial = std::uint32_t{block[12]} | std::uint32_t{block[13]} << 8 |
                  std::uint32_t{block[14]} << 16 | std::uint32_t{block[15]} << 24;
    edid.serialText = descriptorText(block, serialTag);
    edid.name = descriptorText(block, nameTag);
    return edid;
}

std::string ConnectedDisplay::name() const {
    return edid && !edid->name.empty() ? edid->name : connector;
}

bool ConnectedDisplay::isBuiltin() const {
    const std::string folded = lowercased(connector);
    return folded.starts_with("edp") || folded.starts_with("lvds") || folded.starts_with("dsi");
}

std::vector<std::string> displayIdentifiers(const std::vector<ConnectedDisplay>& displays) {
    std::vector<std::string> identities;
    for (const ConnectedDisplay& display : displays) {
        identities.push_back(display.edid ? identityOf(*display.edid)
                                          : "connector:" + display.connector);
    }
    std::vector<std::string> identifiers;
    for (std::size_t i = 0; i < displays.size(); ++i) {
        const bool isShared = std::count(identities.begin(), identities.end(), identities[i]) > 1;
        identifiers.push_back(
            nameBasedUuid(isShared ? identities[i] + "@" + displays[i].connector : identities[i]));
    }
    return identifiers;
}

std::string nameBasedUuid(std::string_view name) {
    const std::unique_ptr<GChecksum, void (*)(GChecksum*)> checksum(g_checksum_new(G_CHECKSUM_SHA1),
                                                                    g_checksum_free);
    g_checksum_update(checksum.get(), nameSpace.data(), nameSpace.size());
    g_checksum_update(checksum.get(), reinterpret_cast<const guchar*>(name.data()),
                      static_cast<gssize>(name.size()));
    std::array<guint8, 20> digest{};
    gsize length = digest.size();
    g_checksum_get_digest(checksum.get(), digest.data(), &length);
    digest[6] = static_cast<guint8>((digest[6] & 0x0F) | 0x50);
    digest[8] = static_cast<guint8>((digest[8] & 0x3F) | 0x80);

    std::string text;
    for (std::size_t i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        std::array<char, 3> hex{};
        std::snprintf(hex.data(), hex.size(), "%02X", unsigned{digest[i]});
        text += hex.data();
    }
    return text;
}

}  // namespace quorvel::native
