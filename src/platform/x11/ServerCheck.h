// Whether there is an X server that the program can work with, asked before anything else is started.
#pragma once

#include <optional>
#include <string>

namespace skylet::platform::x11 {

// One English line with the way out when there is none; nothing when all is well.
[[nodiscard]] std::optional<std::string> findServerProblem();

} // namespace skylet::platform::x11
