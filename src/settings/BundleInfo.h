// What the program says about itself. UTF-8.
#pragma once

#include <optional>
#include <string>

namespace skylet {

struct BundleInfo {
    std::optional<std::string> name;
    std::optional<std::string> shortVersion;
};

} // namespace skylet
