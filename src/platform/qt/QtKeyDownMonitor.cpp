#include "platform/qt/QtKeyDownMonitor.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QObject>

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
    }

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
    QtKeyDownMonitor::Translation translation_;
    std::shared_ptr<const KeyDownMonitor::Handler> handler_;
};

} // namespace

Subscription QtKeyDownMonitor::addLocalMonitorForKeyDown(Handler handler) {
    return std::make_unique<Filter>(translation_, std::move(handler));
}

} // namespace skylet::platform::qt
