// The surface that capture hands to panels: a window's picture in the X server, with what changed since it
// was shown.
//
// Threads: main thread; only the reference count is touched elsewhere.
#pragma once

#include "platform/ScreenCapture.h"
#include "platform/x11/TargetWindow.h"

#include <memory>

namespace skylet::platform::x11 {

class MirrorSurface : public Surface {
  public:
    explicit MirrorSurface(std::shared_ptr<TargetWindow> target);

    // Null as long as the window was never viewable.
    [[nodiscard]] const std::shared_ptr<const NamedPixmap>& picture() const { return target_->picture(); }
    // `rect` is in the window's coordinates, without its border.
    void addDamage(const PixelRect& rect) { damage_ = united(damage_, rect); }
    void addWholeDamage() { wholeDamage_ = true; }
    // What changed since the last call, in coordinates of the picture's content.
    [[nodiscard]] PixelRect takeDamage();

  private:
    std::shared_ptr<TargetWindow> target_;
    PixelRect damage_;
    bool wholeDamage_ = true;
    Subscription follow_;
};

} // namespace skylet::platform::x11
