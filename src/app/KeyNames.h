// The names of keys as shortcuts show them.
#pragma once

#include <cstdint>
#include <string_view>

namespace skylet {

// The name of a virtual key code (UTF-8), empty when it has none.
[[nodiscard]] std::string_view keyName(std::uint16_t keyCode);

} // namespace skylet
