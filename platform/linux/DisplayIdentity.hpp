#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::native {

/// What a display's own data says about it.
struct Edid {
    std::uint16_t manufacturer = 0;
    std::uint16_t product = 0;
    std::uint32_t serial = 0;
    std::string serialText;
    std::string name;  ///< empty when it names none

    bool operator==(const Edid&) const = default;
};

/// Takes any bytes; nothing when they are no EDID or its checksum is wrong.
std::optional<Edid> parseEdid(std::span<const std::uint8_t> bytes);

struct ConnectedDisplay {
    std::string connector;  ///< "HDMI-1"
    std::optional<Edid> edid;

    /// What to call it in front of the user.
    std::string name() const;
    /// A panel that is part of the computer.
    bool isBuiltin() const;
};

/// One identifier for each, upper-case 8-4-4-4-12: made from what the EDID says, so that it stays
/// the same on another connector; from the connector without an EDID; from both for displays that
/// the EDID cannot tell apart.
std::vector<std::string> displayIdentifiers(const std::vector<ConnectedDisplay>& displays);

/// The version-5 UUID of a name within a name space of this program's own, upper-case.
std::string nameBasedUuid(std::string_view name);

}  // namespace quorvel::native
