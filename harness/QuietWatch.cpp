#include "QuietWatch.h"

#include <algorithm>
#include <chrono>

namespace skylet::desktop {

QuietWatch::QuietWatch(const std::string& display)
    : x_(display)
    , start_(look(x_))
    , thread_([this] { watch(); }) {}

QuietWatch::~QuietWatch() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    end_.notify_one();
    thread_.join();
}

QuietWatch::State QuietWatch::look(const XSession& x) {
    State state{.active = x.activeWindow(), .focus = x.inputFocus(), .order = {}};
    const auto stacking = x.numbers(x.root(), "_NET_CLIENT_LIST_STACKING");
    state.order.assign(stacking.begin(), stacking.end());
    if (state.order.empty()) {
        for (const Window window : x.children(x.root())) {
            if (!x.isOverrideRedirect(window) && x.isViewable(window)) {
                state.order.push_back(window);
            }
        }
    }
    return state;
}

void QuietWatch::expectPointer(std::pair<int, int> place) {
    const std::lock_guard lock(mutex_);
    pointer_ = place;
}

std::vector<std::string> QuietWatch::disturbances() const {
    const std::lock_guard lock(mutex_);
    return notes_;
}

void QuietWatch::note(const std::string& text) {
    if (std::ranges::find(notes_, text) == notes_.end()) {
        notes_.push_back(text);
    }
}

void QuietWatch::watch() {
    for (bool ends = false; !ends;) {
        const State now = look(x_);
        // Asked under the lock, so that the test cannot move the pointer between the question and the
        // comparison.
        std::unique_lock lock(mutex_);
        const auto pointer = x_.pointer();
        if (now.active != start_.active) {
            note("active window " + std::to_string(now.active));
        }
        if (now.focus != start_.focus) {
            note("focus on " + std::to_string(now.focus));
        }
        if (now.order != start_.order) {
            note("another order of the windows");
        }
        if (pointer_.first >= 0 && pointer != pointer_) {
            note("pointer at " + std::to_string(pointer.first) + "," + std::to_string(pointer.second));
        }
        ends = end_.wait_for(lock, std::chrono::milliseconds(2), [this] { return ends_; });
    }
}

} // namespace skylet::desktop
