#include "platform/x11/MirrorSurface.h"

#include <utility>

namespace skylet::platform::x11 {

MirrorSurface::MirrorSurface(std::shared_ptr<TargetWindow> target) : target_(std::move(target)) {
    follow_ = target_->follow({[this] { wholeDamage_ = true; },
                               [] {
                               }});
}

PixelRect MirrorSurface::takeDamage() {
    const auto& shown = picture();
    if (!shown) {
        return {};
    }
    const PixelRect all{0, 0, shown->content.width, shown->content.height};
    const PixelRect damage = std::exchange(damage_, PixelRect{});
    if (std::exchange(wholeDamage_, false)) {
        return all;
    }
    const int border = shown->border;
    return intersection(damage.translated(border - shown->content.x, border - shown->content.y), all);
}

} // namespace skylet::platform::x11
