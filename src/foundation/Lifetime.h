// Work that must do nothing once its owner is gone.
//
// An owner keeps a Lifetime as its last member and wraps every closure that it hands out with `guard`. The
// wrapper may be copied, kept and destroyed on any thread; it is called on the owner's thread only, because
// only there can the owner not vanish during the call.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace skylet {

class Lifetime {
  public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;
    ~Lifetime() = default;

    // A closure like `work` which, once this Lifetime is destroyed, does nothing and answers a zero value.
    template <class F>
    [[nodiscard]] auto guard(F work) const {
        return [alive = std::weak_ptr<const Token>(token_), work = std::move(work)](auto&&... arguments) {
            using Result = std::invoke_result_t<const F&, decltype(arguments)...>;
            if (alive.expired()) {
                return Result();
            }
            return work(std::forward<decltype(arguments)>(arguments)...);
        };
    }

  private:
    struct Token {};
    std::shared_ptr<const Token> token_ = std::make_shared<const Token>();
};

} // namespace skylet
