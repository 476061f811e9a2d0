#include "platform/qt/QtKeyDownMonitor.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QObject>
#include <QPointer>
#include <QWindow>

#include <memory>
#include <utility>

namespace skylet::platform::qt {

namespace {

class Filter : public QObject, public SubscriptionBase {
  public:
    Filter(const QtKeyDownMonitor::Translation& translation, KeyDownMonitor::Handler handler)
        : translation_(translation)
        , handler_(std::make_shared<const KeyDownMonitor::Handler>(std::move(handler))) {
        QCoreApplication::instance()->installEventFilter(this);
        grabFor(QGuiApplication::focusWindow());
        connect(qGuiApp, &QGuiApplication::focusWindowChanged, this,
                [this](QWindow* window) { grabFor(window); });
    }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
    ~Filter() override { grabFor(nullptr); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        // Accepted, it keeps the key from running a shortcut of the window; the key press follows.
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept();
            return true;
        }
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const auto& key = static_cast<const QKeyEvent&>(*event);
        event->accept();
        const auto translated =
            key.isAutoRepeat() ? std::nullopt : translation_(key.nativeScanCode(), key.nativeModifiers());
        if (translated) {
            // The handler may end this filter.
            const auto handler = handler_;
            (*handler)(*translated);
        }
        return true;
    }

  private:
    // Other programs' shortcuts come here, too, while the keyboard is grabbed. Without the focus it is not:
    // nobody could type anywhere else, and no screen could be locked.
    void grabFor(QWindow* window) {
        if (window == grabbing_) {
            return;
        }
        if (grabbing_ != nullptr) {
            grabbing_->setKeyboardGrabEnabled(false);
        }
        grabbing_ = window;
        if (grabbing_ != nullptr) {
            grabbing_->setKeyboardGrabEnabled(true);
        }
    }

    QtKeyDownMonitor::Translation translation_;
    QPointer<QWindow> grabbing_;
    std::shared_ptr<const KeyDownMonitor::Handler> handler_;
};

} // namespace

Subscription QtKeyDownMonitor::addLocalMonitorForKeyDown(Handler handler) {
    return std::make_unique<Filter>(translation_, std::move(handler));
}

} // namespace skylet::platform::qt
