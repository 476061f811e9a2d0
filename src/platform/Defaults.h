// The user's preferences store: single keys with typed values.
//
// Threads: reads from any thread, writes and notices on the main thread.
// Failure: a store that cannot be read holds no keys; a write that cannot be stored is kept for this run
// only.
#pragma once

#include "platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace skylet::platform {

enum class DefaultsStatus { absent, wrongType, value };

template <class T>
struct DefaultsRead {
    DefaultsStatus status = DefaultsStatus::absent;
    T value{}; // zero unless status is value

    [[nodiscard]] T valueOr(T otherwise) const { return status == DefaultsStatus::value ? value : otherwise; }
};

class Defaults {
  public:
    virtual ~Defaults() = default;

    [[nodiscard]] virtual DefaultsRead<bool> readBool(std::string_view key) const = 0;
    // A number with a fraction is cut towards zero.
    [[nodiscard]] virtual DefaultsRead<std::int64_t> readInteger(std::string_view key) const = 0;
    [[nodiscard]] virtual DefaultsRead<double> readDouble(std::string_view key) const = 0;
    // Text and data (bytes) alike.
    [[nodiscard]] virtual DefaultsRead<std::string> readText(std::string_view key) const = 0;

    virtual void setBool(std::string_view key, bool value) = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;
    virtual void setDouble(std::string_view key, double value) = 0;
    // `bytes` is UTF-8.
    virtual void setData(std::string_view key, std::string_view bytes) = 0;
    virtual void remove(std::string_view key) = 0;

    // Called after the store changed, by this program or from outside.
    [[nodiscard]] virtual Subscription observeDidChange(std::function<void()> notice) = 0;
};

} // namespace skylet::platform
