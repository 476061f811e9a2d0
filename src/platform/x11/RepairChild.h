// A small process beside the program that puts the desktop right when the program dies without doing so
// itself.
//
// It waits at a pipe whose other end only the program holds. The pipe's end without a farewell means that the
// program was killed or crashed; the process then connects to the X server and repairs (see PostingRepair).
#pragma once

#include <sys/types.h>

namespace skylet::platform::x11 {

class RepairChild {
  public:
    // Forks: comes before any thread and any connection. A fork that fails leaves repairs to the next start.
    RepairChild();
    RepairChild(const RepairChild&) = delete;
    RepairChild& operator=(const RepairChild&) = delete;
    // Says farewell and waits for its end.
    ~RepairChild();

  private:
    pid_t pid_ = -1;
    int pipe_ = -1; // the writing end
};

} // namespace skylet::platform::x11
