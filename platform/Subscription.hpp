#pragma once

#include <functional>
#include <list>
#include <memory>
#include <utility>

namespace quorvel {

/// Owns one registration with a source of events; its destruction ends it. Ending it from within
/// the very callback is allowed. Outliving the source is allowed too.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel(std::exchange(other.cancel, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            cancel = std::exchange(other.cancel, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { reset(); }

    explicit operator bool() const { return static_cast<bool>(cancel); }

    void reset() {
        if (auto end = std::exchange(cancel, nullptr)) end();
    }

private:
    std::function<void()> cancel;
};

/// The source's side: callbacks in the order in which they came, safe against callbacks that
/// come or go while one is being made. A callback that came during a notification waits for the
/// next one.
template <class... Arguments>
class Subscribers {
public:
    using Callback = std::function<void(Arguments...)>;

    [[nodiscard]] Subscription add(Callback callback) {
        auto entry = std::make_shared<Callback>(std::move(callback));
        entries->push_back(entry);
        return Subscription([weak = std::weak_ptr(entries), entry] {
            *entry = nullptr;
            if (auto list = weak.lock()) list->remove(entry);
        });
    }

    void notify(Arguments... arguments) const {
        const auto snapshot = *entries;
        for (const auto& entry : snapshot) {
            // Called through a copy: the callback may end its own subscription.
            if (const Callback callback = *entry) callback(arguments...);
        }
    }

    bool empty() const { return entries->empty(); }

private:
    using Entries = std::list<std::shared_ptr<Callback>>;
    std::shared_ptr<Entries> entries = std::make_shared<Entries>();
};

/// Lets a closure hold its owner weakly: `[this, alive = life.watch()] { if (alive.expired()) … }`.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    std::weak_ptr<const void> watch() const { return token; }

private:
    std::shared_ptr<const void> token = std::make_shared<int>();
};

}  // namespace quorvel
