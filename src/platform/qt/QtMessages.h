// Where Qt's own messages go: to a sink instead of the console.
//
// Threads: the sink is called on any thread. One object at a time. A fatal message is not taken: it is the
// last word of the program and goes to the console.
#pragma once

#include <functional>
#include <string>

namespace skylet::platform::qt {

class QtMessages {
  public:
    using Sink = std::function<void(const std::string& message)>;

    // Without a sink the messages are dropped.
    QtMessages();
    QtMessages(const QtMessages&) = delete;
    QtMessages& operator=(const QtMessages&) = delete;
    ~QtMessages();

    void setSink(Sink sink);
};

} // namespace skylet::platform::qt
