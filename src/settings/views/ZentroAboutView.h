// What the About window shows: icon, name, version, credit and tagline.
#pragma once

#include "settings/BundleInfo.h"

#include <QWidget>

#include <functional>

namespace skylet {

class ZentroAboutView : public QWidget {
  public:
    // `close` closes the window.
    ZentroAboutView(const QString& appName, const BundleInfo& bundle, std::function<void()> close);
};

} // namespace skylet
