#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/Geometry.hpp"

namespace quorvel {

/// What is known of every tucked window, in the order in which they were tucked. A plain value.
template <class Key>
struct TuckRegistry {
    struct Record {
        Rect originalFrameAX;   ///< where it stood when it was tucked
        bool revealed = false;  ///< whether it stands in its revealed position

        bool operator==(const Record&) const = default;
    };

    std::unordered_map<Key, Record> records;
    std::vector<Key> order;  ///< the keys of `records`

    Record* find(const Key& key) {
        const auto at = records.find(key);
        return at == records.end() ? nullptr : &at->second;
    }
    const Record* find(const Key& key) const {
        const auto at = records.find(key);
        return at == records.end() ? nullptr : &at->second;
    }

    void insert(const Key& key, Record record) {
        if (records.insert_or_assign(key, record).second) order.push_back(key);
    }

    std::optional<Record> remove(const Key& key) {
        const auto node = records.extract(key);
        if (node.empty()) return std::nullopt;
        std::erase(order, key);
        return node.mapped();
    }
};

}  // namespace quorvel
