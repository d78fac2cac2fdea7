#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quorvel {

class Value;

/// Named values in the order in which they came, each name once. Records are small, so a look-up
/// walks them. Equal when they hold the same, in whatever order.
class ValueDictionary {
public:
    using Entry = std::pair<std::string, Value>;
    using value_type = Entry;
    using iterator = std::vector<Entry>::iterator;
    using const_iterator = std::vector<Entry>::const_iterator;

    ValueDictionary() = default;
    ValueDictionary(std::initializer_list<Entry> entries);
    template <class Iterator>
    ValueDictionary(Iterator first, Iterator last);

    bool operator==(const ValueDictionary& other) const;

    iterator begin() { return entries.begin(); }
    iterator end() { return entries.end(); }
    const_iterator begin() const { return entries.begin(); }
    const_iterator end() const { return entries.end(); }
    std::size_t size() const;
    bool empty() const;

    const_iterator find(std::string_view name) const;
    bool contains(std::string_view name) const;
    /// Must be there.
    const Value& at(std::string_view name) const;

    /// A new name goes to the end; a known one keeps its place and takes the new value.
    void insert_or_assign(std::string name, Value value);
    /// Without looking whether the name is there already: for names known to differ.
    void append(std::string name, Value value);
    /// How many there were: 0 or 1.
    std::size_t erase(std::string_view name);

private:
    std::vector<Entry> entries;
};

/// One value of a preferences domain: boolean, integer, real, text, array or dictionary. The
/// kinds never convert into one another here; the readers decide what they take for what.
class Value {
public:
    using Array = std::vector<Value>;
    using Dictionary = ValueDictionary;

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

inline ValueDictionary::ValueDictionary(std::initializer_list<Entry> entries)
    : ValueDictionary(entries.begin(), entries.end()) {}

template <class Iterator>
ValueDictionary::ValueDictionary(Iterator first, Iterator last) {
    for (; first != last; ++first) insert_or_assign(first->first, Value(first->second));
}

inline bool ValueDictionary::operator==(const ValueDictionary& other) const {
    return size() == other.size() &&
           std::all_of(entries.begin(), entries.end(), [&](const Entry& entry) {
               const auto found = other.find(entry.first);
               return found != other.end() && found->second == entry.second;
           });
}

inline std::size_t ValueDictionary::size() const {
    return entries.size();
}

inline bool ValueDictionary::empty() const {
    return entries.empty();
}

inline ValueDictionary::const_iterator ValueDictionary::find(std::string_view name) const {
    return std::find_if(entries.begin(), entries.end(),
                        [&](const Entry& entry) { return entry.first == name; });
}

inline bool ValueDictionary::contains(std::string_view name) const {
    return find(name) != entries.end();
}

inline const Value& ValueDictionary::at(std::string_view name) const {
    return find(name)->second;
}

inline void ValueDictionary::insert_or_assign(std::string name, Value value) {
    const auto known = find(name);
    if (known == entries.end()) {
        append(std::move(name), std::move(value));
    } else {
        entries[static_cast<std::size_t>(known - entries.begin())].second = std::move(value);
    }
}

inline void ValueDictionary::append(std::string name, Value value) {
    entries.emplace_back(std::move(name), std::move(value));
}

inline std::size_t ValueDictionary::erase(std::string_view name) {
    return std::erase_if(entries, [&](const Entry& entry) { return entry.first == name; });
}

}  // namespace quorvel
