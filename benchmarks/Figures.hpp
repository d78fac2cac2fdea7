#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorvel::bench {

/// Measured values of one kind, in one unit.
struct Sample {
    std::vector<double> values;

    void add(double value) { values.push_back(value); }
    std::size_t count() const { return values.size(); }

    /// The smallest value that `share` of all do not exceed (nearest rank); NaN when there are
    /// none.
    double quantile(double share) const;
    double median() const { return quantile(0.5); }
};

/// A number with so many digits after the point; "–" for NaN.
std::string text(double value, int digits);

/// One line of the table. A figure that was not measured is empty.
struct Row {
    std::string figure;
    std::string count = {};  ///< how often it was measured
    std::string program = {};
    std::string floor = {};
    std::string other = {};
    std::string ratio = {};  ///< program to floor
    std::string goal = {};
    std::optional<bool> met = {};  ///< nothing where there is no goal
};

/// The table with aligned columns, headings first.
std::string table(const std::vector<Row>& rows);

}  // namespace quorvel::bench
