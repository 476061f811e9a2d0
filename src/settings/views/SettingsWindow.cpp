#include "settings/views/SettingsWindow.h"

#include "foundation/Notice.h"
#include "settings/ZentroSettingsMetrics.h"
#include "settings/ZentroWindowHelper.h"
#include "settings/views/ClosingWindow.h"
#include "settings/views/FormStyle.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>

#include <cmath>
#include <utility>

namespace skylet {

namespace {

using platform::Point;
using platform::Rect;
using platform::Size;

// Qt's coordinates have their origin at the top left of the primary screen.
double primaryHeight() {
    const QScreen* primary = QApplication::primaryScreen();
    return primary != nullptr ? primary->geometry().height() : 0;
}

Rect flipped(const QRect& rect) {
    return {double(rect.x()), primaryHeight() - rect.y() - rect.height(), double(rect.width()),
            double(rect.height())};
}

QPoint topLeft(Rect rect) {
    return {static_cast<int>(std::lround(rect.x)),
            static_cast<int>(std::lround(primaryHeight() - rect.y - rect.height))};
}

QSize toQSize(Size size) {
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

} // namespace

class SettingsWindow::Window : public ClosingWindow, public ZentroSettingsWindowSizer::Window {
  public:
    Window(const ZentroSettingsView::Configuration& configuration, QWidget* content,
           platform::LoginItem& loginItem, const BundleInfo& bundle)
        : ClosingWindow(configuration.appName + FormStyle::text(" — Impostazioni"))
        , view_(new ZentroSettingsView(configuration, content, loginItem, bundle, [this] { close(); })) {
        auto* whole = new QVBoxLayout(this);
        whole->setContentsMargins(0, 0, 0, 0);
        whole->addWidget(view_);
        whole->setSizeConstraint(QLayout::SetNoConstraint);
    }

    [[nodiscard]] ZentroSettingsView& view() { return *view_; }

    [[nodiscard]] Rect frame() const override { return flipped(frameGeometry()); }
    [[nodiscard]] Size contentSize() const override { return {double(width()), double(height())}; }
    [[nodiscard]] Size fittingSize() const override { return view_->fittingSize(); }
    [[nodiscard]] double titleBarHeight() const override {
        const int known = frameGeometry().height() - height();
        return known > 0 ? known : style()->pixelMetric(QStyle::PM_TitleBarHeight);
    }
    void setContentSize(Size size) override { setFixedSize(toQSize(size)); }
    void setFrame(Rect frame) override { move(topLeft(frame)); }
    [[nodiscard]] platform::Subscription observeDidChangeScreen(std::function<void()> notice) override {
        return screenChanges_.observe(std::move(notice));
    }

  protected:
    void showEvent(QShowEvent* event) override {
        ClosingWindow::showEvent(event);
        view_->refresh();
        if (!std::exchange(isObserving_, true)) {
            QObject::connect(windowHandle(), &QWindow::screenChanged, this,
                             [this] { screenChanges_.post(); });
        }
    }
    void changeEvent(QEvent* event) override {
        ClosingWindow::changeEvent(event);
        if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
            view_->refresh();
        } else if (event->type() == QEvent::ApplicationFontChange) {
            screenChanges_.post(); // the content wants another size
        }
    }

  private:
    ZentroSettingsView* view_;
    Notice<> screenChanges_;
    bool isObserving_ = false;
};

SettingsWindow::SettingsWindow(const Services& services, BundleInfo bundle)
    : services_(services)
    , bundle_(std::move(bundle)) {}

SettingsWindow::~SettingsWindow() = default;

QWidget* SettingsWindow::widget() const {
    return window_.get();
}

void SettingsWindow::showWindow(const ZentroSettingsView::Configuration& configuration,
                                const MakeContent& makeContent) {
    if (window_ != nullptr) {
        sizer_->clamp();
        window_->bringForward(services_.ownWindows);
        return;
    }
    create(configuration, makeContent());
    window_->bringForward(services_.ownWindows);
    scrollToTop();
    sizer_ = std::make_unique<ZentroSettingsWindowSizer>(*window_, services_.screens, services_.mainQueue);
    // Rows that come and go change the window rather than make it scroll.
    window_->view().onFittingSizeChange = [this] {
        sizer_->displaysChanged();
    };
}

void SettingsWindow::create(const ZentroSettingsView::Configuration& configuration, QWidget* content) {
    window_ = std::make_unique<Window>(configuration, content, services_.loginItem, bundle_);
    const QPoint pointer = QCursor::pos();
    const auto screen =
        ZentroWindowHelper::activeScreen(services_.screens.screens(), services_.screens.mainScreen(),
                                         Point{double(pointer.x()), primaryHeight() - pointer.y()});
    const auto visible = screen ? std::optional(screen->visibleFrame) : std::nullopt;
    const Size size =
        ZentroSettingsMetrics::contentSize(window_->fittingSize(), visible, window_->titleBarHeight());
    window_->setContentSize(size);
    if (visible) {
        const Point origin = ZentroWindowHelper::centreOnActiveDisplay(size, *visible);
        window_->setFrame({origin.x, origin.y, size.width, size.height});
    }
}

// Also takes the focus from whatever got it: no control is to look chosen before the user chooses one.
void SettingsWindow::scrollToTop() {
    for (const double delay : ZentroSettingsMetrics::scrollSettleDelays) {
        services_.mainQueue.after(delay, lifetime_.guard([this] {
            if (QWidget* focused = window_->focusWidget()) {
                focused->clearFocus();
            }
            window_->view().scrollToTop();
        }));
    }
}

} // namespace skylet
