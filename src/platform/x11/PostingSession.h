// One target window being used through the second pointer, from its first event until a second after its
// last.
//
// A press goes out as one block: the server is grabbed, the windows above get a hole, the second pointer
// jumps to the point unnoticed and presses, the holes close. After that the implicit grab of the press
// carries motion and release to the target; for the release the holes are there again, so that it happens
// inside. Before a first press the target is made to believe that it has
// the focus, before a further one it is given time to deal with the last (see FocusLead); one that does not
// answer gets no first press.
//
// Coordinates: root coordinates. Threads: main thread. Failure: events that cannot be posted are dropped;
// whatever happens to the target, no button stays down and no hole stays open.
#pragma once

#include "platform/Queues.h"
#include "platform/x11/FocusLead.h"
#include "platform/x11/InputHoles.h"
#include "platform/x11/PointerWatch.h"
#include "platform/x11/PopupWatch.h"
#include "platform/x11/PostedInput.h"
#include "platform/x11/SecondPointer.h"

#include <deque>
#include <memory>
#include <optional>

namespace skylet::platform::x11 {

class PostingSession {
  public:
    // `over` is called when the session has ended by itself; never inside `post`.
    PostingSession(Connection& connection, MainQueue& mainQueue, SecondPointer& pointer, xcb_window_t client,
                   ProcessID pid, std::function<void()> over);
    PostingSession(const PostingSession&) = delete;
    PostingSession& operator=(const PostingSession&) = delete;
    // Leaves nothing behind.
    ~PostingSession();

    [[nodiscard]] xcb_window_t client() const { return client_; }
    void post(PostedInput input);

  private:
    void runQueue();
    [[nodiscard]] bool awaitsLead();
    void leadAnswered(FocusLead::Kind kind, bool ready);
    void press(const PostedInput& input);
    // The pointer, with its button down, goes to the input's place.
    void follow(const PostedInput& input);
    void holdServer(bool andUser);
    void openBlock(const PostedInput& input);
    void closeBlock();
    [[nodiscard]] bool userButtonIsDown();
    void release(const PostedInput& input);
    void wheel(const PostedInput& input);
    void letGo();
    void releaseSpare();
    void userPressed();
    void userReleased();
    void userMoved();
    [[nodiscard]] std::optional<PixelPoint> userPointer();
    void leadTo(PixelPoint place);
    void popupsGone();
    void closePopups(int attempt);
    void dismissPopups();
    void scheduleEnd();
    void waitForEnd(double seconds);
    void endIfIdle();
    // The target's place now and the windows above it; false when it cannot be reached there.
    [[nodiscard]] bool aim(const PostedInput& input);
    [[nodiscard]] bool aimBesideUser(const PostedInput& input);
    [[nodiscard]] bool findTopLevel();

    Connection& connection_;
    MainQueue& mainQueue_;
    SecondPointer& pointer_;
    xcb_window_t client_;
    std::function<void()> over_;
    xcb_window_t topLevel_ = XCB_WINDOW_NONE; // the root's child that holds the client
    std::uint16_t formerClientPointer_ = 0;
    std::deque<PostedInput> queue_;
    std::unique_ptr<FocusLead> lead_;
    bool isReady_ = false;   // believes that it has the focus
    bool isSettled_ = false; // has dealt with the last press and release
    bool dropsUntilRelease_ = false;
    std::uint8_t heldButton_ = 0;
    bool spareIsDown_ = false;
    int popupRound_ = 0; // counts each time that all popups are gone
    bool holdsUser_ = false;
    bool isAway_ = false; // from the parking place
    int x_ = 0;
    int y_ = 0;
    InputHoles holes_;
    PopupWatch popups_;
    std::unique_ptr<PointerWatch> userWatch_;
    Subscription clientEvents_;
    bool isGone_ = false;
    std::uint32_t leads_ = 0;
    double endTime_ = 0; // main queue time
    bool endIsScheduled_ = false;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

} // namespace skylet::platform::x11
