#include "settings/views/AboutWindow.h"

#include "settings/views/ClosingWindow.h"
#include "settings/views/FormStyle.h"
#include "settings/views/ZentroAboutView.h"

#include <QVBoxLayout>

#include <utility>

namespace skylet {

AboutWindow::AboutWindow(platform::OwnWindows& ownWindows, BundleInfo bundle)
    : ownWindows_(ownWindows)
    , bundle_(std::move(bundle)) {}

AboutWindow::~AboutWindow() = default;

void AboutWindow::showWindow(const QString& appName) {
    if (window_ == nullptr) {
        window_ = std::make_unique<ClosingWindow>(FormStyle::text("Informazioni su ") + appName);
        auto* whole = new QVBoxLayout(window_.get());
        whole->setContentsMargins(0, 0, 0, 0);
        whole->setSizeConstraint(QLayout::SetFixedSize);
        whole->addWidget(
            new ZentroAboutView(appName, bundle_, [window = window_.get()] { window->close(); }));
    }
    window_->bringForward(ownWindows_);
}

} // namespace skylet
