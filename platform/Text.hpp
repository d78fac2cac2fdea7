#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quorvel {

/// All texts are UTF-8; malformed bytes are passed through untouched.

/// Without the white space and line breaks (Unicode's, not only ASCII's) at both ends.
std::string trimmed(std::string_view text);

/// Without the white space at both ends, line breaks excepted.
std::string trimmedOfSpaces(std::string_view text);

/// ASCII letters folded to lower case; every other character as it stands.
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// Lower-cased, and without every character that is not a letter.
std::string lettersOnly(std::string_view text);

/// The last component of a path ("/a/b.desktop/" gives "b.desktop"); "/" for the root.
std::string lastPathComponent(std::string_view path);

/// The same without its extension; a name that begins with its only dot keeps it.
std::string nameWithoutExtension(std::string_view path);

std::string joined(const std::vector<std::string>& parts, std::string_view separator);

namespace detail {
std::string substitute(std::string_view pattern, const std::vector<std::string>& arguments);

inline std::string asText(std::string_view text) {
    return std::string(text);
}
template <class Number>
requires std::is_integral_v<Number> std::string asText(Number number) {
    return std::to_string(number);
}
/// A coordinate in a log line: no fraction, rounded to the nearest even as printf does.
std::string asText(double number);
}  // namespace detail

/// Replaces "%@", "%d", "%u" and "%.0f" in order by the arguments, whatever their kind, so that
/// a message stands in the source as it stands in the log.
template <class... Arguments>
std::string formatted(std::string_view pattern, const Arguments&... arguments) {
    return detail::substitute(pattern, {detail::asText(arguments)...});
}

}  // namespace quorvel
