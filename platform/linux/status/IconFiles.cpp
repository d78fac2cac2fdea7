#include "platform/linux/status/IconFiles.hpp"

#include <png.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <optional>

namespace quorvel::native {
namespace {

constexpr std::array sizes{16, 22, 24, 32, 48, 64};

std::string iconPath(const std::string& folder, int size) {
    const std::string name = std::to_string(size);
    return folder + "/hicolor/" + name + "x" + name + "/apps/com.tessivane.quorvel.png";
}

std::optional<IconImage> readPng(const std::string& path, int size) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return std::nullopt;
    const auto expected = static_cast<png_uint_32>(size);
    if (image.width != expected || image.height != expected) {
        png_image_free(&image);
        return std::nullopt;
    }
    image.format = PNG_FORMAT_RGBA;
    std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) == 0) return std::nullopt;

    IconImage icon{size, {}};
    icon.pixels.reserve(bytes.size() / 4);
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        icon.pixels.push_back(std::uint32_t{bytes[i + 3]} << 24 | std::uint32_t{bytes[i]} << 16 |
                              std::uint32_t{bytes[i + 1]} << 8 | bytes[i + 2]);
    }
    return icon;
}

}  // namespace

std::vector<std::string> iconFolders(const std::string& executable, const XdgFolders& folders) {
    const std::filesystem::path own = std::filesystem::path(executable).parent_path();
    std::vector<std::string> result{own / "share/icons",
                                    (own / "../share/icons").lexically_normal()};
    for (const std::string& folder : folders.dataFolders) result.push_back(folder + "/icons");
    return result;
}

std::optional<std::string> folderWithIcons(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        for (const int size : sizes) {
            if (access(iconPath(folder, size).c_str(), R_OK) == 0) return folder;
        }
    }
    return std::nullopt;
}

std::vector<IconImage> loadIcons(const std::string& folder) {
    std::vector<IconImage> icons;
    for (const int size : sizes) {
        auto icon = readPng(iconPath(folder, size), size);
        if (icon) icons.push_back(std::move(*icon));
    }
    return icons;
}

}  // namespace quorvel::native
