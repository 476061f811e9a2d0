// Puts the desktop right after a Skylet that died in the middle of a forwarded click.
//
// The server takes back what a dead client grabbed, but not a button that its second pointer held down, a
// modifier that it locked, or a hole that it cut.
//
// Threads: any that owns the connection. Failure: what cannot be repaired is left for the next start.
#pragma once

#include "platform/x11/Connection.h"

namespace skylet::platform::x11 {

// Releases and closes what was left open; keeps the second pointer for the next use. Two round trips.
void repairPosting(Connection& connection);

// The same, and then removes the second pointer.
void cleanUpAfterPosting(Connection& connection);

} // namespace skylet::platform::x11
