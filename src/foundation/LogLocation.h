// Where the diagnostics log lies.
#pragma once

#include <string>

namespace skylet {

// The absolute path of the log file: Skylet/skylet.log below $XDG_STATE_HOME, which must be absolute to
// count, else below ~/.local/state. The directory is created with mode 0700, missing parents too; a failure
// is ignored, because writing the log then fails by itself.
[[nodiscard]] std::string prepareLogFilePath();

} // namespace skylet
