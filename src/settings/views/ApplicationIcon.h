// The program's icon.
#pragma once

#include <QIcon>

namespace skylet {

// The installed one, else one drawn here.
[[nodiscard]] QIcon applicationIcon();

} // namespace skylet
