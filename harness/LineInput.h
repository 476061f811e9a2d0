// The lines of the standard input, for programs that wait for other things as well.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <unistd.h>

namespace skylet::desktop {

class LineInput {
  public:
    // Hands over what has come, line by line, and waits if nothing has; false at the end of the input.
    [[nodiscard]] bool read(const std::function<void(const std::string&)>& take) {
        std::array<char, 4096> buffer{};
        const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            return false;
        }
        pending_.append(buffer.data(), static_cast<std::size_t>(count));
        for (auto feed = pending_.find('\n'); feed != std::string::npos; feed = pending_.find('\n')) {
            const std::string line = pending_.substr(0, feed);
            pending_.erase(0, feed + 1);
            take(line);
        }
        return true;
    }

  private:
    std::string pending_;
};

} // namespace skylet::desktop
