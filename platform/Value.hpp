#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace quorvel {

/// One value of a preferences domain: boolean, integer, real, text, array or dictionary. The
/// kinds never convert into one another here; the readers decide what they take for what.
class Value {
public:
    using Array = std::vector<Value>;
    using Dictionary = std::map<std::string, Value>;

    Value() : Value(std::string()) {}
    Value(bool boolean) : content(boolean) {}
    Value(std::int64_t integer) : content(integer) {}
    Value(int integer) : content(std::int64_t{integer}) {}
    Value(double real) : content(real) {}
    Value(std::string text) : content(std::move(text)) {}
    Value(const char* text) : content(std::string(text)) {}
    Value(Array array) : content(std::move(array)) {}
    Value(Dictionary dictionary) : content(std::move(dictionary)) {}

    bool operator==(const Value&) const = default;

    const bool* boolean() const { return std::get_if<bool>(&content); }
    const std::int64_t* integer() const { return std::get_if<std::int64_t>(&content); }
    const double* real() const { return std::get_if<double>(&content); }
    const std::string* text() const { return std::get_if<std::string>(&content); }
    const Array* array() const { return std::get_if<Array>(&content); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&content); }

private:
    std::variant<bool, std::int64_t, double, std::string, Array, Dictionary> content;
};

}  // namespace quorvel
