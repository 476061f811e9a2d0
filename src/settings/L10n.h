// Texts in the user's language: looked up by key in the table "Localizable" of the installed translations.
//
// Threads: any. Failure: a key that the table lacks, or no table at all, gives the default.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace skylet {

class L10n {
  public:
    L10n() = delete;

    using Argument = std::variant<std::string, std::int64_t, double>;

    // UTF-8.
    [[nodiscard]] static std::string string(const char* key, const char* defaultValue);
    // The looked-up text as a printf-style format: %@ and %s take texts, %d, %i, %u and their long forms
    // whole numbers, %f with or without a precision numbers, in the user's way of writing them; %% is a
    // percent sign, and %2$@ takes the second argument. A directive without a fitting argument stays as it
    // is.
    [[nodiscard]] static std::string format(const char* key, const char* defaultValue,
                                            const std::vector<Argument>& arguments);
};

} // namespace skylet
