#pragma once

#include <optional>

#include "platform/linux/FillingStateKeeper.hpp"
#include "platform/linux/WindowNotes.hpp"

namespace quorvel::native {

/// What the note on a held window says.
struct HoldNote {
    static constexpr std::size_t length = 15;

    HoldNote(const Rect& home, const std::optional<GivenUpStates>& given)
        : home(home), given(given) {}
    /// Of `length` numbers, whatever they are.
    explicit HoldNote(const WindowNotes::Content& content);

    WindowNotes::Content content() const;

    Rect home;  ///< root coordinates; where what is seen of it belongs
    std::optional<GivenUpStates> given;
};

}  // namespace quorvel::native
