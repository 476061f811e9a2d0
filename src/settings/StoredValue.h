// One preference as a control shows and writes it.
//
// It keeps the value as last seen and follows the store: a change from outside counts like one made here.
// Threads: main thread. Failure: a key that is absent or of another type reads as the given default.
#pragma once

#include "foundation/Notice.h"
#include "platform/Defaults.h"
#include "platform/Subscription.h"

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace skylet {

template <class T>
class StoredValue {
    static_assert(std::is_same_v<T, bool> || std::is_same_v<T, double>);

  public:
    // The store must outlive the value.
    StoredValue(platform::Defaults& defaults, std::string_view key, T whenAbsent)
        : defaults_(defaults)
        , key_(key)
        , whenAbsent_(whenAbsent)
        , value_(read())
        , changes_(defaults.observeDidChange([this] { follow(); })) {}
    StoredValue(const StoredValue&) = delete;
    StoredValue& operator=(const StoredValue&) = delete;

    [[nodiscard]] T value() const { return value_; }
    // Writes at once.
    void set(T value) {
        if constexpr (std::is_same_v<T, bool>) {
            defaults_.setBool(key_, value);
        } else {
            defaults_.setDouble(key_, value);
        }
        follow();
    }

    // Called after every change, wherever it was made.
    [[nodiscard]] platform::Subscription observeDidChange(std::function<void()> observer) {
        return didChange_.observe(std::move(observer));
    }

  private:
    [[nodiscard]] T read() const {
        if constexpr (std::is_same_v<T, bool>) {
            return defaults_.readBool(key_).valueOr(whenAbsent_);
        } else {
            return defaults_.readDouble(key_).valueOr(whenAbsent_);
        }
    }
    void follow() {
        const T present = read();
        if (present == value_) {
            return;
        }
        value_ = present;
        didChange_.post();
    }

    platform::Defaults& defaults_;
    std::string key_;
    T whenAbsent_;
    T value_;
    Notice<> didChange_;
    platform::Subscription changes_;
};

} // namespace skylet
