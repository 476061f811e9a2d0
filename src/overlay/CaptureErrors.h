// The capture service's errors.
#pragma once

#include "platform/ScreenCapture.h"

#include <string>

namespace skylet {

// The error as log lines show it: its message, else domain and code.
[[nodiscard]] std::string describe(const platform::CaptureError& error);

// Whether the user declined screen recording, which trying again does not change.
[[nodiscard]] bool isUserDeclined(const platform::CaptureError& error);

} // namespace skylet
