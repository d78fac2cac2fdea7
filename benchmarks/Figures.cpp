#include "benchmarks/Figures.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace quorvel::bench {
namespace {

/// Columns that it takes on a terminal: UTF-8, nothing wide.
std::size_t columns(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

}  // namespace

double Sample::quantile(double share) const {
    if (values.empty()) return std::numeric_limits<double>::quiet_NaN();
    std::vector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    const double rank = std::ceil(share * static_cast<double>(sorted.size()));
    return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

std::string text(double value, int digits) {
    if (std::isnan(value)) return "–";
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.*f", digits, value);
    return buffer.data();
}

std::string table(const std::vector<Row>& rows) {
    constexpr std::size_t width = 8;
    std::vector<std::array<std::string, width>> lines{
        {"figure", "n", "Quorvel", "floor", "sxhkd", "to floor", "goal", ""}};
    for (const Row& row : rows) {
        lines.push_back({row.figure, row.count, row.program, row.floor, row.other, row.ratio,
                         row.goal, row.met ? (*row.met ? "met" : "MISSED") : ""});
    }
    std::array<std::size_t, width> widths{};
    for (const auto& line : lines) {
        for (std::size_t i = 0; i < width; ++i) widths[i] = std::max(widths[i], columns(line[i]));
    }

    std::string result;
    const auto rule = [&] {
        std::size_t total = 2 * (width - 1);
        for (const std::size_t one : widths) total += one;
        result += std::string(total, '-') + "\n";
    };
    for (std::size_t index = 0; index < lines.size(); ++index) {
        for (std::size_t i = 0; i < width; ++i) {
            const std::string pad(widths[i] - columns(lines[index][i]), ' ');
            const bool isNumber = i >= 1 && i <= 5;
            result += isNumber ? pad + lines[index][i] : lines[index][i] + pad;
            result += i + 1 < width ? "  " : "\n";
        }
        if (index == 0) rule();
    }
    return result;
}

}  // namespace quorvel::bench
