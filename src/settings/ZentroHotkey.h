// A hotkey as it is published for other programs: a JSON object with the four fields below as its keys.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skylet {

struct ZentroHotkey {
    // Where the hotkey applies; stored as the case's name.
    enum class ActiveContext { anywhere, browser };

    std::string actionTitle;
    std::uint16_t keyCode = 0;   // virtual key code
    std::uint64_t modifiers = 0; // see platform::ModifierFlags
    ActiveContext activeContext = ActiveContext::anywhere;

    bool operator==(const ZentroHotkey&) const = default;
};

// A compact JSON array, its objects' keys in declaration order. None when a title is not UTF-8.
[[nodiscard]] std::optional<std::string> encodeHotkeys(const std::vector<ZentroHotkey>& hotkeys);

// None when the text is not such an array: a key missing, of the wrong type or out of range, an unknown
// context.
[[nodiscard]] std::optional<std::vector<ZentroHotkey>> decodeHotkeys(std::string_view json);

} // namespace skylet

template <>
struct std::hash<skylet::ZentroHotkey> {
    std::size_t operator()(const skylet::ZentroHotkey& hotkey) const noexcept;
};
