// A preferences store in memory.
#pragma once

#include "foundation/Notice.h"
#include "platform/Defaults.h"

#include <map>
#include <string>
#include <utility>
#include <variant>

namespace skylet::sim {

struct SimDefaults final : platform::Defaults {
    template <class T>
    using Read = platform::DefaultsRead<T>;

    [[nodiscard]] bool contains(std::string_view key) const { return values_.contains(std::string(key)); }

    Read<bool> readBool(std::string_view key) const override { return read<bool>(key); }
    Read<std::int64_t> readInteger(std::string_view key) const override { return read<std::int64_t>(key); }
    Read<double> readDouble(std::string_view key) const override { return read<double>(key); }
    Read<std::string> readText(std::string_view key) const override { return read<std::string>(key); }
    void setBool(std::string_view key, bool value) override { set(key, value); }
    void setInteger(std::string_view key, std::int64_t value) override { set(key, value); }
    void setDouble(std::string_view key, double value) override { set(key, value); }
    void setData(std::string_view key, std::string_view bytes) override { set(key, std::string(bytes)); }
    void remove(std::string_view key) override {
        values_.erase(std::string(key));
        didChange_.post();
    }
    platform::Subscription observeDidChange(std::function<void()> notice) override {
        return didChange_.observe(std::move(notice));
    }

    using Value = std::variant<bool, std::int64_t, double, std::string>;
    template <class T>
    [[nodiscard]] Read<T> read(std::string_view key) const {
        using enum platform::DefaultsStatus;
        const auto found = values_.find(std::string(key));
        if (found == values_.end()) {
            return {};
        }
        const T* stored = std::get_if<T>(&found->second);
        return stored == nullptr ? Read<T>{.status = wrongType, .value = T{}}
                                 : Read<T>{.status = value, .value = *stored};
    }
    void set(std::string_view key, Value value) {
        values_[std::string(key)] = std::move(value);
        didChange_.post();
    }

    std::map<std::string, Value> values_;
    Notice<> didChange_;
};

} // namespace skylet::sim
