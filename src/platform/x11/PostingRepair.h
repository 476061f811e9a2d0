// Puts the desktop right after a Skylet that died in the middle of a forwarded click.
//
// The server takes back what a dead client grabbed, but not a button that its second pointer held down, a
// modifier that it locked, or a hole that it cut.
//
// Threads: any that owns the connection. Failure: what cannot be repaired is left for the next start.
#pragma once

#include "platform/x11/Connection.h"

#include <chrono>
#include <cstdint>

namespace skylet::platform::x11 {

// Toolkits that still think a button of a device is down fail when the device goes: it stays as long as this
// after the repair.
constexpr std::chrono::milliseconds settlingAfterRepair{100};

// Releases and closes what was left open. The second pointer that was left behind, which the caller may keep
// or remove; 0 for none. Two round trips.
[[nodiscard]] std::uint16_t repairPosting(Connection& connection);

// The same; then waits and removes the second pointer.
void cleanUpAfterPosting(Connection& connection);

} // namespace skylet::platform::x11
