#pragma once

#include <cstdint>
#include <functional>

#include "main/shell/Interface.hpp"
#include "platform/Desktop.hpp"

namespace quorvel {

/// What the interface gets of the rest of the program.
struct InterfaceHost {
    Desktop desktop;

    /// Makes one of the interface's windows, by its identifier on the window server, the active
    /// one, whichever application has the keyboard. The window must have been shown before.
    std::function<void(std::uint64_t window)> bringToFront;

    /// Does not return when the window server is gone. For the moment at which the toolkit finds
    /// something amiss, since it may have noticed first.
    std::function<void()> endIfServerIsGone;
};

/// The file name of the module and of the one symbol that it exports.
inline constexpr const char* interfaceModuleName = "quorvel-interface.so";
inline constexpr const char* interfaceEntryName = "quorvelCreateInterface";

/// To be raised with every change of `Interface`, `InterfaceHost` or what they are made of.
inline constexpr std::uint32_t interfaceVersion = 4;

/// Makes the interface; the caller owns it. Null where there can be none: the module was built for
/// another version (then nothing but the version has been looked at), or its toolkit does not
/// start here. The host outlives it.
using CreateInterface = Interface* (*)(std::uint32_t version, const InterfaceHost* host);

}  // namespace quorvel
