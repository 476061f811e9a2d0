// Posting input events to windows of other processes.
//
// The route is chosen here, per event: the second pointer, which every toolkit takes for a real one, or sent
// events where it cannot serve. See PostingSession and SendEventRoute.
//
// Threads: main thread. Failure: events that cannot be posted are dropped.
#pragma once

#include "platform/EventPoster.h"
#include "platform/x11/PostingSession.h"
#include "platform/x11/SendEventRoute.h"

#include <memory>

namespace skylet::platform::x11 {

class X11EventPoster : public EventPoster {
  public:
    // Repairs what an earlier run left behind. Two round trips.
    X11EventPoster(Connection& connection, const ModifierMap& modifiers, MainQueue& mainQueue);
    X11EventPoster(const X11EventPoster&) = delete;
    X11EventPoster& operator=(const X11EventPoster&) = delete;
    // Ends what is under way and removes the second pointer.
    ~X11EventPoster() override;

    void postToPid(const SyntheticEvent& event, ProcessID pid) override;

    // Whether the server can make events at all; it asks for no permission.
    [[nodiscard]] bool preflightPostAccess() override;
    bool requestPostAccess() override { return preflightPostAccess(); }

  private:
    [[nodiscard]] bool usesSecondPointer(const PostedInput& input);
    // Whether a press at the point ends at a window that listens, and not at its frame.
    [[nodiscard]] bool takesRealPress(const PostedInput& input);

    Connection& connection_;
    const ModifierMap& modifiers_;
    MainQueue& mainQueue_;
    WheelAccumulator accumulator_;
    std::unique_ptr<SecondPointer> pointer_;
    bool triedPointer_ = false;
    bool sentPress_ = false; // the press under way went out as a sent event
    std::unique_ptr<PostingSession> session_;
    SendEventRoute sendEvent_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

} // namespace skylet::platform::x11
