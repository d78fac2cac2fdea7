#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorvel {

/// One row of the modifier vocabulary.
struct ModifierKey {
    std::string_view name;  ///< canonical
    std::uint32_t carbon;   ///< bit of the mask that a hot key is registered with
    std::uint32_t cocoa;    ///< bit of a key event's modifier flags
    std::string_view symbol;
};

/// In canonical order: the order of modifiers everywhere.
extern const std::array<ModifierKey, 4> modifierOrder;

/// Upper-case word → canonical modifier name.
const std::map<std::string, std::string, std::less<>>& modifierAliases();

/// Upper-case key name → virtual key code (a position on the ANSI layout).
const std::map<std::string, std::uint32_t, std::less<>>& virtualKeyCodes();

/// The exact inverse of `virtualKeyCodes`.
const std::map<std::uint32_t, std::string>& keyNamesByCode();

/// Key name → what the symbol form shows; a key that is not listed shows its name.
const std::map<std::string, std::string, std::less<>>& keyDisplayNames();

/// A global shortcut: one key and at least one modifier.
struct HotKeySpec {
    std::string keyName;                 ///< a name of `virtualKeyCodes`
    std::vector<std::string> modifiers;  ///< canonical names in canonical order, without repeats

    bool operator==(const HotKeySpec&) const = default;

    /// Comma-separated modifier words, then the key ("ctrl, alt, k"). Case and spacing are free;
    /// words that are no modifiers are skipped. Nothing without a known key or without a modifier.
    static std::optional<HotKeySpec> parse(std::string_view text);

    /// From a key press: nothing for a key without a name or without one of the four modifiers.
    static std::optional<HotKeySpec> from(std::uint32_t keyCode, std::uint32_t cocoaFlags);

    /// "control,option,K": what is stored and logged; parses back to an equal spec.
    std::string canonicalText() const;

    /// "⌃⌥K": what the user sees.
    std::string display() const;

    std::uint32_t carbonMask() const;
};

/// The outcome of one attempt to record a shortcut.
struct ShortcutCapture {
    struct Cancelled {
        bool operator==(const Cancelled&) const = default;
    };
    struct NeedsModifier {
        bool operator==(const NeedsModifier&) const = default;
    };
    struct UnsupportedKey {
        bool operator==(const UnsupportedKey&) const = default;
    };

    std::variant<HotKeySpec, Cancelled, NeedsModifier, UnsupportedKey> outcome;

    bool operator==(const ShortcutCapture&) const = default;

    static ShortcutCapture captured(HotKeySpec spec) { return {std::move(spec)}; }
    static ShortcutCapture cancelled() { return {Cancelled{}}; }
    static ShortcutCapture needsModifier() { return {NeedsModifier{}}; }
    static ShortcutCapture unsupportedKey() { return {UnsupportedKey{}}; }
};

}  // namespace quorvel
