// Which core modifier bits the keyboard mapping gives to Alt, Super and the locks.
//
// Option is Alt and Command is Super. Shift, Lock and Control have fixed bits; the others are found through
// their keysyms, and read again when the mapping changes. Threads: main thread. Failure: a modifier without a
// key has no bit.
#pragma once

#include "platform/x11/Connection.h"

#include <cstdint>

namespace skylet::platform::x11 {

class ModifierMap {
  public:
    // Two round trips.
    explicit ModifierMap(Connection& connection) { read(connection); }
    void read(Connection& connection);

    // 0 when no key gives it.
    [[nodiscard]] std::uint16_t alt() const { return alt_; }
    [[nodiscard]] std::uint16_t super() const { return super_; }
    [[nodiscard]] std::uint16_t numLock() const { return numLock_; }
    [[nodiscard]] std::uint16_t scrollLock() const { return scrollLock_; }

    // Core state bits to modifier flags (Shift, Control, Option, Command and Caps Lock), and the first four
    // back.
    [[nodiscard]] std::uint64_t flags(std::uint16_t state) const;
    [[nodiscard]] std::uint16_t state(std::uint64_t flags) const;

  private:
    std::uint16_t alt_ = 0;
    std::uint16_t super_ = 0;
    std::uint16_t numLock_ = 0;
    std::uint16_t scrollLock_ = 0;
};

} // namespace skylet::platform::x11
