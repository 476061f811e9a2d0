// Starting this program when the user logs in.
//
// Threads: main thread. Failure: false; the state is then as it was.
#pragma once

namespace skylet::platform {

class LoginItem {
  public:
    virtual ~LoginItem() = default;
    // Asked of the system each time: the user can change it there as well.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    [[nodiscard]] virtual bool registerItem() = 0;
    [[nodiscard]] virtual bool unregisterItem() = 0;
};

} // namespace skylet::platform
