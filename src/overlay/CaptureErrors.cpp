#include "overlay/CaptureErrors.h"

namespace skylet {

std::string describe(const platform::CaptureError& error) {
    return error.message.empty() ? error.domain + " " + std::to_string(error.code) : error.message;
}

bool isUserDeclined(const platform::CaptureError& error) {
    return error.domain == platform::captureErrorDomain && error.code == platform::captureErrorUserDeclined;
}

} // namespace skylet
