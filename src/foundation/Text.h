// Text as people count it, and numbers as log lines show them. All text is UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace skylet {

// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isWellFormedUtf8(std::string_view bytes);

// The text itself when it has at most `limit` grapheme clusters, otherwise its first `limit` ones and "…".
[[nodiscard]] std::string shortened(const std::string& text, std::size_t limit);

// The shortest decimal form that reads back as the same number, always with a fraction or an exponent
// ("800.0").
[[nodiscard]] std::string formatNumber(double value);

[[nodiscard]] inline const char* formatBool(bool value) {
    return value ? "true" : "false";
}

} // namespace skylet
