#pragma once

#include "platform/Files.hpp"

namespace quorvel::native {

class PosixFiles final : public Files {
public:
    bool exists(std::string_view path) const override;
    std::optional<bool> isOnReadOnlyVolume(std::string_view path) const override;
    /// $HOME if it is absolute, else what the password database says; "/" when neither knows.
    std::string homeDirectory() const override;
};

}  // namespace quorvel::native
