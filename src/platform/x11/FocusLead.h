// Makes a window ready for a click without giving it the focus.
//
// A toolkit that believes itself unfocused takes the focus at a click. A synthetic FocusIn makes it believe
// otherwise; the answer to a ping sent after it proves that it has read it, which no fixed delay does for an
// application that is busy. Windows that do not answer pings have no such toolkit.
//
// The ping alone tells that the window has dealt with the last click. Browsers grab the pointer at a press
// and let go at the release; when they do so late, the next press loses its release.
//
// Threads: main thread. Failure: an application that does not answer in time is not ready, and nothing must
// be clicked in it unless it was before.
#pragma once

#include "platform/Queues.h"
#include "platform/x11/Connection.h"

#include <functional>
#include <memory>

namespace skylet::platform::x11 {

class FocusLead {
  public:
    using Answer = std::function<void(bool ready)>;
    enum class Kind { focusAndPing, pingOnly };

    // `answer` is called once, never inside the call. One round trip. Destroying the lead ends it without an
    // answer.
    FocusLead(Connection& connection, MainQueue& mainQueue, xcb_window_t client, Kind kind,
              std::uint32_t serial, Answer answer);
    FocusLead(const FocusLead&) = delete;
    FocusLead& operator=(const FocusLead&) = delete;
    ~FocusLead() = default;

    // Tells the window that it has lost what it never had.
    static void end(Connection& connection, xcb_window_t client);

  private:
    void handle(const xcb_generic_event_t& event);
    void finish(bool ready);

    Connection& connection_;
    xcb_window_t client_;
    std::uint32_t serial_;
    Answer answer_;
    Subscription rootEvents_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

} // namespace skylet::platform::x11
